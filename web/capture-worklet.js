// Collects what the microphone captures and posts it to the page: 2048 samples (Float32Array) at a
// time, of the first channel. Thread: audio render.

const BLOCK = 2048; // samples, 43 ms at 48000 Hz; each wakes the page up

class Capture extends AudioWorkletProcessor {
  #block = new Float32Array(BLOCK);
  #collected = 0;

  process([input]) {
    const samples = input[0]; // none while nothing is connected
    if (samples) this.#collect(samples);
    return true;
  }

  #collect(samples) {
    const count = Math.min(samples.length, BLOCK - this.#collected);
    const all = count === samples.length; // as ever, where the quantum divides the block
    this.#block.set(all ? samples : samples.subarray(0, count), this.#collected);
    this.#collected += count;
    if (this.#collected === BLOCK) this.#post();
    if (!all) this.#collect(samples.subarray(count));
  }

  // A copy: blocks that were given away would grow the audio thread's heap for twenty minutes before
  // a browser thinks of collecting them.
  #post() {
    this.port.postMessage(this.#block);
    this.#collected = 0;
  }
}

registerProcessor("endpin-capture", Capture);
