// What of the two worklets no browser shows: each sample, and what is between two tones.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import test from "node:test";

const registered = {};
globalThis.registerProcessor = (name, Processor) => (registered[name] = Processor);
globalThis.AudioWorkletProcessor = class {
  posted = [];
  port = { postMessage: (message) => this.posted.push(structuredClone(message)) };
};
await import("../../web/capture-worklet.js");
await import("../../web/tone-worklet.js");

test("every captured sample is posted once, in order, whatever the quantum", () => {
  for (const quantum of [128, 100, 3000]) {
    const capture = new registered["endpin-capture"]();
    let next = 0;
    for (let i = 0; i < 60; i++) {
      capture.process([[Float32Array.from({ length: quantum }, () => next++)]]);
      assert.ok(capture.process([[]]), "nothing connected");
    }
    const samples = capture.posted.flatMap((block) => [...block]);
    assert.equal(samples.length, next - (next % 2048));
    assert.ok(samples.every((sample, i) => sample === i));
  }
});

test("no start, stop or change clicks, and the last wish counts", () => {
  const module = readFileSync(new URL("../../build/web/endpin-tone.wasm", import.meta.url));
  const tone = new registered["endpin-tone"]({ processorOptions: { module } });
  const sound = [];
  // Anywhere in a period.
  const play = (seconds, wanted, quantum = 128) => {
    if (wanted) tone.port.onmessage({ data: { playing: true, waveform: 0, ...wanted } });
    const start = sound.length;
    while (sound.length - start < seconds * 44100) {
      const output = [new Float32Array(quantum), new Float32Array(quantum)];
      tone.process([], [output]);
      assert.deepEqual(output[0], output[1]);
      sound.push(...output[0]);
    }
    return sound.slice(start);
  };
  const peak = (part) => Math.max(...part.map(Math.abs));
  const stopped = { playing: false, frequency: 0 };

  assert.equal(peak(play(0.01)), 0);
  play(0.0503, { frequency: 220 });
  const change = play(0.0503, { frequency: 65.4 });
  assert.ok(change.some((value, i) => i > 340 && i < 600 && value === 0), "a change goes through silence");
  play(0.003, { frequency: 97.9 });
  play(0.05, { frequency: 200 });
  const last = play(1, null, 2048).slice(0, 44100); // longer than the module makes at a time
  const crossings = last.slice(1).filter((value, i) => value >= 0 && last[i] < 0).length;
  assert.ok(Math.abs(crossings - 200) <= 1, `${crossings} Hz`);
  for (const wanted of [stopped, { frequency: 220 }, stopped]) play(0.0503, wanted);
  assert.equal(peak(sound.slice(-1000)), 0, "silence at the end");
  assert.ok(peak(sound) > 0.9);
  // The steepest sine of all, and a little for the ramp on top of it.
  const steepest = Math.max(...sound.slice(1).map((value, i) => Math.abs(value - sound[i])));
  assert.ok(steepest < (0.91 * 2 * Math.PI * 220) / 44100 + 1 / 353, `${steepest}`);
});
