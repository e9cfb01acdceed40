// The two worklets, in a stand-in for the audio thread.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import test from "node:test";

const registered = {};
globalThis.registerProcessor = (name, Processor) => (registered[name] = Processor);
globalThis.AudioWorkletProcessor = class {
  posted = [];
  port = { postMessage: (message) => this.posted.push(message) };
};
await import("../../web/capture-worklet.js");
await import("../../web/tone-worklet.js");

test("every captured sample is posted once, in order, whatever the quantum", () => {
  for (const quantum of [128, 100, 1024, 3000]) {
    const capture = new registered["endpin-capture"]();
    let next = 0;
    for (let i = 0; i < 60; i++) {
      capture.process([[Float32Array.from({ length: quantum }, () => next++)]]);
      assert.ok(capture.process([[]]), "nothing connected");
    }
    const blocks = capture.posted;
    assert.equal(blocks.length, Math.floor(next / 2048));
    assert.ok(blocks.every((block) => block.length === 2048));
    assert.ok(blocks.every((block, i) => block.every((sample, j) => sample === 2048 * i + j)));
  }
});

const bytes = readFileSync(new URL("../../build/web/endpin-tone.wasm", import.meta.url));

function player() {
  const tone = new registered["endpin-tone"]({ processorOptions: { module: bytes } });
  return {
    post: (data) => tone.port.onmessage({ data }),
    // Both channels are the same; the result is one, and whether the node lives on.
    play: (seconds, quantum = 128) => {
      const sound = [];
      let lives = true;
      for (let done = 0; done < seconds * 44100; done += quantum) {
        const output = [new Float32Array(quantum), new Float32Array(quantum)];
        lives = tone.process([], [output]);
        assert.deepEqual(output[0], output[1]);
        sound.push(...output[0]);
      }
      return { sound, lives };
    },
  };
}

const peak = (sound) => Math.max(...sound.map(Math.abs));
const steepest = (sound) => Math.max(...sound.slice(1).map((value, i) => Math.abs(value - sound[i])));
const SINE = 0;

test("no start, stop or change clicks", () => {
  const { post, play } = player();
  assert.equal(peak(play(0.01).sound), 0);
  const sound = [];
  const wanted = [
    { playing: true, frequency: 220, waveform: SINE },
    { playing: true, frequency: 65.4, waveform: SINE },
    { playing: true, frequency: 97.9, waveform: SINE },
    { playing: false, frequency: 0, waveform: SINE },
    { playing: true, frequency: 220, waveform: SINE },
    { playing: false, frequency: 0, waveform: SINE },
  ];
  for (const tone of wanted) {
    post(tone);
    sound.push(...play(0.0503).sound); // anywhere in a period
  }
  assert.ok(peak(sound) > 0.9);
  // The steepest sine of all, and a little for the ramp on top of it.
  const slope = (0.91 * 2 * Math.PI * 220) / 44100;
  assert.ok(steepest(sound) < slope + 1 / 353, `${steepest(sound)}`);
  assert.equal(peak(sound.slice(-1000)), 0, "silence at the end");
  const dip = sound.slice(2304, 2304 + 600);
  assert.ok(dip.some((value, i) => i > 340 && value === 0), "a change goes through silence");
});

test("the last wish counts, and a full tone has the module's own frames", () => {
  const { post, play } = player();
  post({ playing: true, frequency: 440, waveform: SINE });
  play(0.1);
  post({ playing: true, frequency: 65.4, waveform: SINE });
  play(0.003);
  post({ playing: true, frequency: 1000, waveform: SINE });
  play(0.1);
  const { sound } = play(1, 2048); // longer than the module makes at a time
  const crossings = sound.slice(1).filter((value, i) => value >= 0 && sound[i] < 0).length;
  assert.ok(Math.abs(crossings - (1000 * sound.length) / 44100) <= 1);
  assert.ok(sound.every((value) => Number.isInteger(value * 32768)));
});

test("a node that is told to go fades out and goes", () => {
  const { post, play } = player();
  post({ playing: true, frequency: 220, waveform: SINE });
  play(0.1);
  post(null);
  assert.ok(play(0.002).lives);
  assert.ok(!play(0.1).lives);
  const idle = player();
  idle.post(null);
  assert.ok(!idle.play(0.01).lives);
});
