// The modules of the page give the same bits as the native core: every estimate of a block, and
// every frame of a tone.
import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { mkdtempSync, readFileSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import test from "node:test";

import { instance } from "./modules.mjs";

const BLOCK_BYTES = 8192;
const MOST_FRAMES = 1024;

const folder = mkdtempSync(join(tmpdir(), "endpin-bits-"));
test.after(() => rmSync(folder, { recursive: true }));
execFileSync(process.env.ENDPIN_WEB_BITS, [folder]);
const file = (name) => readFileSync(join(folder, name));

test("blocks are estimated to the same floats", () => {
  const module = instance("endpin-bits");
  const native = file("blocks.bin");
  const wrong = [];
  let count = 0;
  let pitches = 0;
  for (let row = 0; row < native.length; row += 4 + BLOCK_BYTES + 8, count++) {
    const byteLength = native.readUInt32LE(row);
    const samples = native.subarray(row + 4, row + 4 + BLOCK_BYTES);
    new Uint8Array(module.memory.buffer, module.block(), BLOCK_BYTES).set(samples);
    const answers = new Float32Array([module.estimate(byteLength), module.fineEstimate(byteLength)]);
    const expected = native.subarray(row + 4 + BLOCK_BYTES, row + 4 + BLOCK_BYTES + 8);
    if (!expected.equals(Buffer.from(answers.buffer))) wrong.push([count, ...answers]);
    pitches += answers[0] !== 0;
  }
  assert.deepEqual(wrong, []);
  assert.ok(count > 300 && pitches > count / 2, `${pitches} of ${count} blocks had a pitch`);
});

test("tones are rendered to the same frames", () => {
  const module = instance("endpin-tone");
  const native = file("tones.bin");
  let compared = 0;
  for (let row = 0; row < native.length; ) {
    const [frequency, waveform] = [native.readFloatLE(row), native.readUInt32LE(row + 4)];
    module.set(frequency, waveform);
    let left = native.readUInt32LE(row + 8);
    for (row += 12; left > 0; ) {
      const count = Math.min(left, MOST_FRAMES);
      const rendered = Buffer.from(module.memory.buffer, module.render(count), 4 * count);
      const expected = native.subarray(row, row + 4 * count);
      assert.ok(rendered.equals(expected), `${frequency} Hz, waveform ${waveform}, ${left} to go`);
      compared += count;
      row += 4 * count;
      left -= count;
    }
  }
  assert.ok(compared > 1e6, `${compared} frames`);
});
