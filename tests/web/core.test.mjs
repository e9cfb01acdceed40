// The whole tuner in its module, driven as a page drives it.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import test from "node:test";

import { Tuner } from "../../web/core.mjs";
import { moduleOf, Storage } from "./modules.mjs";

const core = moduleOf("endpin-core");
const german = JSON.parse(
  readFileSync(new URL("../../resources/texts/Localizable/de.json", import.meta.url)),
);
const SIZE = { width: 390, height: 844 };

// A tuner that has started, what it told the page, and a clock.
async function started({ storage = new Storage(), texts = german, ...size } = {}) {
  const tuner = await Tuner.load(core, { texts, storage });
  const told = [];
  for (const name of ["Tone", "Sound", "Listen", "UseMicrophone", "KeepAwake", "SettingsLost"]) {
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
  };
  tuner.start({ ...SIZE, ...size, now });
  return { tuner, told, show, wait, bow, storage };
}

const lamp = (page) => page.show("LEDDisplay").image;

test("the screen is announced whole, in the language of the page", async () => {
  const { tuner, told, show } = await started();
  assert.ok(tuner.outlets.size > 50 && tuner.actions.size > 20);
  for (const [name, properties] of tuner.outlets) {
    assert.equal(typeof properties.hidden, "boolean", name);
    assert.equal(typeof properties.alpha, "number", name);
  }
  assert.equal(show("calibrationLabel").text, german.CalibrationTitle);
  assert.deepEqual(show("calibrationFrequencyValue").text, "440");
  assert.equal(show("soundNotificationSwitch").on, true);
  assert.equal(tuner.actions.get("setFrequencyValue"), "stepper");
  assert.deepEqual(told, [["KeepAwake", true], ["Listen", true]]);
  const gaps = await started({ texts: {} });
  assert.equal(gaps.show("calibrationLabel").text, "CalibrationTitle");
});

test("each device has its pictures", async () => {
  for (const [size, string, chart] of [
    [{ width: 320, height: 480 }, "tunedString", "chartiphone440.png"],
    [{ width: 390, height: 844 }, "tunedString5", "chartiphone440.png"],
    [{ width: 844, height: 390 }, "tunedString5", "chartiphone440.png"],
    [{ width: 1024, height: 1366 }, "tunedStringiPad", "chartipad440.png"],
    [{ width: 1920, height: 1080, touch: false }, "tunedString5", "chartiphone440.png"],
  ]) {
    const page = await started(size);
    page.bow(220, 2);
    assert.equal(page.show(string).hidden, false, JSON.stringify(size));
    page.tuner.perform("setA440");
    assert.equal(page.show("chartDisplay").image, chart, JSON.stringify(size));
  }
});

test("a string in tune lights up, whatever rate the microphone has", async () => {
  for (const rate of [8000, 16000, 44100, 48000, 96000, 192000]) {
    const page = await started();
    page.bow(146.832, 2, rate);
    assert.equal(lamp(page), "green64.png", `${rate} Hz`);
    assert.equal(page.show("noteDisplay").text, "D3");
    assert.notEqual(page.show("ring2").image, "");
    assert.equal(page.show("ring1").image, "");
    page.bow(146.832 * 1.006, 1.5, rate); // ten cents
    assert.equal(lamp(page), "yellow64.png", `${rate} Hz`);
  }
});

// C2 has no bin at 443: only fine hearing can tell that it is in tune.
test("fine hearing is on until it is switched off", async () => {
  const storage = new Storage();
  for (const [on, image] of [[true, "green64.png"], [false, "yellow64.png"]]) {
    const page = await started({ storage });
    assert.equal(page.show("fineHearingSwitch").on, on);
    page.tuner.perform("setA443");
    page.bow(65.8523, 2);
    assert.equal(lamp(page), image);
    page.tuner.perform("toggleFineHearing", "fineHearingSwitch", false);
  }
});

test("what is no sound does no harm", async () => {
  const page = await started();
  const odd = [NaN, Infinity, -Infinity, 1e30, -1e30, 1, -1, 0];
  for (const rate of [0, -1, NaN, Infinity, 1e9]) {
    assert.equal(page.tuner.feed(Float32Array.from(odd), rate), false, `${rate}`);
  }
  assert.equal(page.tuner.feed(new Float32Array(0), 48000), true);
  for (let i = 0; i < 10000; i++) page.tuner.feed(Float32Array.from(odd), 48000);
  page.wait(0.1);
  assert.equal(lamp(page), "yellow64.png");
  page.tuner.lose();
  page.bow(220, 2);
  assert.equal(lamp(page), "green64.png");
});

test("settings are found again, and nobody else's are touched", async () => {
  const storage = new Storage();
  storage.setItem("neighbour", "stays");
  const first = await started({ storage });
  assert.ok(first.tuner.perform("setFrequencyValue", "setFrequencyValueStepper", 442));
  assert.ok(first.tuner.perform("micSensitivity", "micSensitivitySlider", "2.4"));
  assert.ok(first.tuner.perform("soundNotificationAction", "soundNotificationSwitch", false));
  assert.equal(first.show("micSensitivitySlider").value, 2);
  const second = await started({ storage });
  assert.equal(second.show("calibrationFrequencyValue").text, "442");
  assert.equal(second.show("setFrequencyValueStepper").value, 442);
  assert.equal(second.show("micSensitivitySlider").value, 2);
  assert.equal(second.show("soundNotificationSwitch").on, false);
  assert.equal(storage.getItem("neighbour"), "stays");
  assert.deepEqual(second.told.filter(([name]) => name === "SettingsLost"), []);

  // What somebody else wrote under our names reads as if there were nothing, or as its number.
  for (const [stored, slider] of [["d3.75e0x9", 3], ["s 4.5 of 10", 4], ["?7", 0], ["", 0], ["d0x7", 0]]) {
    storage.setItem("endpin.savedSliderValue", stored);
    const page = await started({ storage });
    assert.equal(page.show("micSensitivitySlider").value, slider, stored);
  }
});

test("where nothing can be kept the tuner goes on and says so once", async () => {
  class Full extends Storage {
    setItem() {
      throw new Error("full");
    }
  }
  class Swallowing extends Storage {
    setItem() {}
  }
  class Locked {
    getItem() {
      throw new Error("locked");
    }
    key() {
      throw new Error("locked");
    }
  }
  for (const storage of [new Full(), new Swallowing(), new Locked(), null]) {
    const page = await started({ storage });
    const what = storage?.constructor.name ?? "none";
    page.tuner.perform("setFrequencyValue", "setFrequencyValueStepper", 443);
    page.tuner.perform("returnToMainScreen");
    assert.equal(page.show("calibrationFrequencyValue").text, "443", what);
    page.tuner.perform("playA3");
    assert.equal(page.show("tfFreqLabel").text, "221.5Hz", what);
    assert.equal(page.told.filter(([name]) => name === "SettingsLost").length, 1, what);
  }
});

test("after a pause timers go on, and nothing is replayed", async () => {
  const page = await started();
  page.bow(220, 2, 48000, 0.3);
  const loud = page.show("inputLevel").level;
  page.tuner.feed(new Float32Array(48000), 48000);
  page.wait(3600);
  assert.equal(page.show("inputLevel").level, loud - 1, "one tick falls one step");
  const next = page.wait(0);
  page.tuner.advance(0); // a clock that goes backward
  assert.equal(page.wait(0), next);
  page.wait(0.1);
  assert.equal(page.show("inputLevel").level, loud - 2);
});

test("the tone is told when it starts, changes and stops", async () => {
  const { tuner, told } = await started();
  const tones = () => told.splice(0).filter(([name]) => name === "Tone").map(([, tone]) => tone);
  tones();
  tuner.perform("setA415");
  assert.deepEqual(tones(), [], "a tone that is silent is no news");
  tuner.perform("playA3");
  tuner.perform("playA3");
  tuner.perform("playC2");
  const [a3, c2, ...more] = tones();
  assert.deepEqual(more, []);
  assert.deepEqual({ ...a3, frequency: Math.fround(207.5) }, a3);
  assert.ok(a3.playing && a3.waveform === 3 && Math.abs(c2.frequency - 61.69) < 0.01);
  tuner.perform("returnToMainScreen");
  assert.deepEqual(tones().map((tone) => tone.playing), [false]);
});

test("what the page knows of the microphones is shown", async () => {
  const { tuner, told, show, wait } = await started();
  const connected = [
    { id: "a", name: "Ein\tMikrofon" },
    { id: "ä b", name: "Zwei" },
  ];
  tuner.tellMicrophones({ trouble: "NotAllowed" });
  for (let i = 0; i < 6; i++) wait(0.1);
  assert.equal(show("troubleTitle").text, german.TroubleNotAllowed);
  tuner.tellMicrophones({ nameInUse: "Zwei", connected });
  wait(0.1);
  assert.equal(show("troubleTitle").text, "");
  assert.equal(show("microphoneName").text, "Zwei");
  assert.deepEqual(show("microphoneChoices").choices.split("\n").slice(1), ["Ein Mikrofon", "Zwei"]);
  assert.ok(tuner.perform("chooseMicrophone", "microphoneChoices", 2));
  assert.deepEqual(told.at(-1), ["UseMicrophone", "ä b"]);
  assert.throws(() => tuner.tellMicrophones({ trouble: "Sunspots" }), RangeError);
});

test("an action that is none changes nothing", async () => {
  const { tuner, show } = await started();
  for (const [action, sender, value] of [
    ["", "", ""],
    ["fly", "", ""],
    ["micSensitivity", "", 1],
    ["micSensitivity", "freqChartSwitch", false],
    ["micSensitivity", "nobody", 1],
    ["setA415", "nobody", 1],
  ]) {
    assert.equal(tuner.perform(action, sender, value), false, `${action} ${sender}`);
  }
  assert.equal(show("freqChartSwitch").on, true);
  assert.equal(show("calibrationFrequencyValue").text, "440");
});

test("a handler may call the core, and its own faults stop nothing", async () => {
  const { tuner, show } = await started();
  const faults = [];
  tuner.onError = (error) => faults.push(error.message);
  tuner.onOutlet = (name) => {
    if (name !== "calibrationFrequencyValue") return;
    tuner.onOutlet = () => {};
    tuner.perform("playA3");
    throw new Error("the page's own");
  };
  assert.ok(tuner.perform("setA415"));
  assert.equal(show("tfFreqLabel").text, "207.5Hz");
  assert.deepEqual(faults, ["the page's own"]);
});

test("a core that has failed says so at each call", async () => {
  const tuner = await Tuner.load(core);
  assert.throws(() => tuner.advance(1), WebAssembly.RuntimeError); // not started
  assert.throws(() => tuner.start(SIZE), WebAssembly.RuntimeError);
});
