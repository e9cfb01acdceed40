// Collects what the microphone captures and posts it to the page: 1024 samples (Float32Array) at a
// time, of the first channel. Thread: audio render.

const BLOCK = 1024; // samples, 21 ms at 48000 Hz

class Capture extends AudioWorkletProcessor {
  #block = new Float32Array(BLOCK);
  #collected = 0;

  process([input]) {
    const samples = input[0]; // none while nothing is connected
    if (samples) this.#collect(samples);
    return true;
  }

  #collect(samples) {
    let taken = 0;
    while (taken < samples.length) {
      const count = Math.min(samples.length - taken, BLOCK - this.#collected);
      this.#block.set(samples.subarray(taken, taken + count), this.#collected);
      taken += count;
      this.#collected += count;
      if (this.#collected === BLOCK) this.#post();
    }
  }

  #post() {
    const block = this.#block;
    this.port.postMessage(block, [block.buffer]);
    this.#block = new Float32Array(BLOCK);
    this.#collected = 0;
  }
}

registerProcessor("endpin-capture", Capture);
