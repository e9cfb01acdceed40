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
process.stdout.write(execFileSync(process.env.ENDPIN_WEB_BITS, [folder]));
const file = (name) => readFileSync(join(folder, name));

test("blocks are estimated to the same floats", () => {
  const module = instance("endpin-bits");
  const blocks = file("blocks.bin");
  const native = file("estimates.bin");
  const count = blocks.length / (4 + BLOCK_BYTES);
  assert.ok(count > 300 && native.length === 8 * count);
  const wrong = { estimate: [], fineEstimate: [] };
  const seconds = { estimate: 0, fineEstimate: 0 };
  let pitches = 0;
  const answer = new DataView(new ArrayBuffer(4));
  for (let i = 0; i < count; i++) {
    const start = i * (4 + BLOCK_BYTES);
    const byteLength = blocks.readUInt32LE(start);
    const block = new Uint8Array(module.memory.buffer, module.block(), BLOCK_BYTES);
    block.set(blocks.subarray(start + 4, start + 4 + BLOCK_BYTES));
    ["estimate", "fineEstimate"].forEach((name, column) => {
      const begin = performance.now();
      answer.setFloat32(0, module[name](byteLength), true);
      seconds[name] += (performance.now() - begin) / 1000;
      const expected = native.readUInt32LE(8 * i + 4 * column);
      pitches += expected !== 0;
      if (answer.getUint32(0, true) !== expected) {
        wrong[name].push([i, answer.getFloat32(0, true), native.readFloatLE(8 * i + 4 * column)]);
      }
    });
  }
  assert.ok(pitches > count / 2, "hardly a block had a pitch");
  const cost = (name) => `${((1000 * seconds[name]) / count).toFixed(2)} ms`;
  console.log(`${count} blocks; an estimate ${cost("estimate")}, fine ${cost("fineEstimate")}`);
  assert.deepEqual(wrong, { estimate: [], fineEstimate: [] });
});

test("tones are rendered to the same frames", () => {
  const module = instance("endpin-tone");
  const tones = file("tones.bin");
  const native = file("frames.bin");
  let compared = 0;
  for (let row = 0; row < tones.length; row += 12) {
    const [frequency, waveform] = [tones.readFloatLE(row), tones.readUInt32LE(row + 4)];
    module.set(frequency, waveform);
    for (let left = tones.readUInt32LE(row + 8); left > 0; ) {
      const count = Math.min(left, MOST_FRAMES);
      const rendered = Buffer.from(module.memory.buffer, module.render(count), 4 * count);
      const expected = native.subarray(compared, compared + 4 * count);
      assert.ok(rendered.equals(expected), `${frequency} Hz, waveform ${waveform}, ${left} to go`);
      compared += 4 * count;
      left -= count;
    }
  }
  assert.ok(compared === native.length && compared > 1e6);
  console.log(`${compared} bytes of tone`);
});
