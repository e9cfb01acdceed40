// Plays the tone of the tuning fork with the tone module, whose bytes come in processorOptions as
// `module`. The page posts what is to sound: {playing, frequency, waveform}. Every change goes
// through silence, so that nothing clicks. In a context that runs at 44100 Hz; thread: audio render.

const RAMP = 353; // frames from silence to full and back, 8 ms
const MOST = 1024; // frames that the module makes at a time
const FULL_SCALE = 32768;

class Tone extends AudioWorkletProcessor {
  #module;
  #memory;
  #now = { playing: false, frequency: 0, waveform: 0 };
  #next = null; // what follows when the ramp has come down
  #gain = 0; // in steps, up to RAMP

  constructor({ processorOptions }) {
    super();
    const module = new WebAssembly.Module(processorOptions.module);
    const { exports } = new WebAssembly.Instance(module, Tone.#nothing(module));
    exports._initialize();
    this.#module = exports;
    this.#memory = exports.memory;
    this.port.onmessage = ({ data }) => (this.#next = data);
  }

  // What the C library may ask for and never does here.
  static #nothing(module) {
    const imports = {};
    for (const { module: from, name } of WebAssembly.Module.imports(module)) {
      imports[from] = { ...imports[from], [name]: () => 0 };
    }
    return imports;
  }

  #change() {
    this.#now = this.#next;
    this.#next = null;
    if (this.#now.playing) this.#module.set(this.#now.frequency, this.#now.waveform);
  }

  process(inputs, [output]) {
    const left = output[0];
    for (let done = 0; done < left.length; done += MOST) {
      this.#render(left.subarray(done, done + MOST));
    }
    for (const channel of output.slice(1)) channel.set(left);
    return true;
  }

  // What follows begins at the beginning of a call: until then there is silence.
  #render(samples) {
    if (this.#gain === 0 && this.#next !== null) this.#change();
    if (this.#gain === 0 && !this.#now.playing) return;
    const start = this.#module.render(samples.length);
    const frames = new Int16Array(this.#memory.buffer, start, 2 * samples.length);
    for (let i = 0; i < samples.length; i++) {
      this.#gain = this.#nextGain();
      samples[i] = (frames[2 * i] / FULL_SCALE) * (this.#gain / RAMP);
    }
  }

  #nextGain() {
    const up = this.#next === null && this.#now.playing;
    return up ? Math.min(this.#gain + 1, RAMP) : Math.max(this.#gain - 1, 0);
  }
}

registerProcessor("endpin-tone", Tone);
