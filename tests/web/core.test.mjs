// The whole tuner in its module, driven as a page drives it: what cannot be seen in a browser, or
// what browsers do not do.
import assert from "node:assert/strict";
import test from "node:test";

import { Tuner } from "../../web/core.mjs";
import { moduleOf } from "./modules.mjs";

const core = moduleOf("endpin-core");
const SIZE = { width: 390, height: 844 };

// Like localStorage.
class Storage {
  items = new Map();
  get length() {
    return this.items.size;
  }
  key = (index) => [...this.items.keys()][index] ?? null;
  getItem = (key) => this.items.get(key) ?? null;
  setItem = (key, value) => void this.items.set(key, String(value));
  removeItem = (key) => void this.items.delete(key);
}

// A tuner that has started, what it told the page, and a clock.
async function started({ storage = new Storage(), ...size } = {}) {
  const tuner = await Tuner.load(core, { storage });
  const told = [];
  for (const name of ["Listen", "UseMicrophone", "KeepAwake", "SettingsLost"]) {
    tuner[`on${name}`] = (what) => told.push([name, what]);
  }
  let now = 1000;
  const show = (name) => tuner.outlets.get(name);
  const wait = (seconds) => tuner.advance((now += seconds));
  // Twelve partials of a string, as a microphone of this rate captures them.
  const bow = (hertz, seconds, rate = 48000, level = 0.1) => {
    const count = 1024;
    for (let start = 0; start < seconds * rate; start += count) {
      const block = Float32Array.from({ length: count }, (_, i) => {
        const turn = (2 * Math.PI * hertz * (start + i)) / rate;
        let sum = 0;
        for (let k = 1; k <= 12; k++) sum += Math.sin(k * turn) / k;
        return level * sum;
      });
      assert.ok(tuner.feed(block, rate));
      wait(count / rate);
    }
    return show("LEDDisplay").image;
  };
  tuner.start({ ...SIZE, ...size, now });
  return { tuner, told, show, wait, bow, perform: (...what) => tuner.perform(...what) };
}

test("each device has its pictures, and the page is asked for sound and light", async () => {
  for (const [size, chart] of [
    [{ width: 1024, height: 1366 }, "chartipad440.png"],
    [{ width: 1024, height: 1366, touch: false }, "chartiphone440.png"],
  ]) {
    const { told, show, perform } = await started(size);
    assert.deepEqual(told, [["KeepAwake", true], ["Listen", true]]);
    perform("setA440");
    assert.equal(show("chartDisplay").image, chart);
  }
  const { show } = await started();
  assert.equal(show("calibrationLabel").text, "CalibrationTitle", "a text that is missing");
});

test("a string in tune lights up, whatever rate the microphone has", async () => {
  for (const rate of [8000, 44100, 96000, 192000]) {
    const { bow } = await started();
    assert.equal(bow(146.832, 2, rate), "green64.png", `${rate} Hz`);
    assert.equal(bow(146.832 * 1.006, 1.5, rate), "yellow64.png", `ten cents, ${rate} Hz`);
  }
});

// C2 has no bin at 443: only fine hearing can tell that it is in tune.
test("fine hearing is on until it is switched off", async () => {
  const storage = new Storage();
  for (const [on, image] of [[true, "green64.png"], [false, "yellow64.png"]]) {
    const { show, perform, bow } = await started({ storage });
    assert.equal(show("fineHearingSwitch").on, on);
    perform("setA443");
    assert.equal(bow(65.8523, 2), image);
    perform("toggleFineHearing", "fineHearingSwitch", false);
  }
});

test("what is no sound does no harm", async () => {
  const { tuner, bow } = await started();
  const odd = Float32Array.of(NaN, Infinity, -Infinity, 1e30, -1e30, 1, -1, 0);
  for (const rate of [0, -1, NaN, Infinity, 1e9]) assert.equal(tuner.feed(odd, rate), false, `${rate}`);
  assert.equal(tuner.feed(new Float32Array(0), 48000), true);
  for (let i = 0; i < 10000; i++) tuner.feed(odd, 48000);
  tuner.lose();
  assert.equal(bow(220, 2), "green64.png");
});

test("settings are found again, and nobody else's are touched", async () => {
  const storage = new Storage();
  storage.setItem("neighbour", "stays");
  const { perform } = await started({ storage });
  assert.ok(perform("setFrequencyValue", "setFrequencyValueStepper", 442));
  assert.ok(perform("micSensitivity", "micSensitivitySlider", "2.4"));
  const { show, told } = await started({ storage });
  assert.equal(show("calibrationFrequencyValue").text, "442");
  assert.equal(show("micSensitivitySlider").value, 2);
  assert.equal(storage.getItem("neighbour"), "stays");
  assert.ok(told.every(([name]) => name !== "SettingsLost"));

  // What somebody else wrote under our names reads as if there were nothing, or as its number.
  for (const [stored, slider] of [["d3.75e0x9", 3], ["s 4.5 of 10", 4], ["?7", 0], ["", 0]]) {
    storage.setItem("endpin.savedSliderValue", stored);
    const page = await started({ storage });
    assert.equal(page.show("micSensitivitySlider").value, slider, stored);
  }
});

test("where nothing can be kept the tuner goes on and says so once", async () => {
  const storage = Object.assign(new Storage(), { setItem: () => {} }); // swallowed
  const { perform, show, told } = await started({ storage });
  perform("setFrequencyValue", "setFrequencyValueStepper", 443);
  perform("returnToMainScreen");
  assert.equal(show("calibrationFrequencyValue").text, "443");
  assert.equal(told.filter(([name]) => name === "SettingsLost").length, 1);
});

test("after a pause timers go on, and nothing is replayed", async () => {
  const { tuner, bow, show, wait } = await started();
  const level = () => show("inputLevel").level;
  bow(220, 2, 48000, 0.3);
  const loud = level();
  tuner.feed(new Float32Array(48000), 48000);
  wait(3600);
  assert.equal(level(), loud - 1, "one tick falls one step");
  const next = wait(0);
  tuner.advance(0); // a clock that goes backward
  assert.equal(wait(0), next);
  wait(0.1);
  assert.equal(level(), loud - 2);
});

test("what the page knows of the microphones is shown", async () => {
  const { tuner, told, show, wait, perform } = await started();
  const connected = [
    { id: "a", name: "Ein\tMikrofon" },
    { id: "ä b", name: "Zwei" },
  ];
  tuner.tellMicrophones({ nameInUse: "Zwei", connected });
  wait(0.1);
  assert.equal(show("microphoneName").text, "Zwei");
  assert.deepEqual(show("microphoneChoices").choices.split("\n").slice(1), ["Ein Mikrofon", "Zwei"]);
  assert.ok(perform("chooseMicrophone", "microphoneChoices", 2));
  assert.deepEqual(told.at(-1), ["UseMicrophone", "ä b"]);
  assert.throws(() => tuner.tellMicrophones({ trouble: "Sunspots" }), RangeError);
});

test("an action that is none changes nothing", async () => {
  const { perform, show } = await started();
  for (const [action, sender, value] of [
    ["fly", "", ""],
    ["micSensitivity", "", 1],
    ["micSensitivity", "freqChartSwitch", false],
    ["setA415", "nobody", 1],
  ]) {
    assert.equal(perform(action, sender, value), false, `${action} ${sender}`);
  }
  assert.equal(show("freqChartSwitch").on, true);
  assert.equal(show("calibrationFrequencyValue").text, "440");
});

test("a handler may call the core, and its own faults stop nothing", async () => {
  const { tuner, perform, show } = await started();
  const faults = [];
  tuner.onError = (error) => faults.push(error.message);
  tuner.onOutlet = (name) => {
    if (name !== "calibrationFrequencyValue") return;
    tuner.onOutlet = () => {};
    perform("playA3");
    throw new Error("the page's own");
  };
  assert.ok(perform("setA415"));
  assert.equal(show("tfFreqLabel").text, "207.5Hz");
  assert.deepEqual(faults, ["the page's own"]);
});

test("a core that has failed says so at each call", async () => {
  const tuner = await Tuner.load(core);
  assert.throws(() => tuner.advance(1), WebAssembly.RuntimeError); // not started
  assert.throws(() => tuner.start(SIZE), WebAssembly.RuntimeError);
});
