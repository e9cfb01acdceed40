// What the page sounds: the tuning fork, in a context of its own, and the beep. And what keeps the
// screen from going dark. Browsers let a page sound only after it was tapped.

const TONE_RATE = 44100; // hertz, what the tone is made for
const FADE = 300; // milliseconds after a tone: it is silent by then

async function bytesOf(path) {
  const answer = await fetch(path);
  if (!answer.ok) throw new Error(`${path}: ${answer.status}`);
  return answer.arrayBuffer();
}

// The tuning fork's tone, made by the tone module on the audio thread, which rests in between.
export class ToneOutput {
  #node = null; // a promise of it
  #playing = false;

  // Sounds what the tuner wants: {playing, frequency, waveform}. When another app has taken the
  // sound away, the tone comes back with the page.
  async play(wanted) {
    this.#playing = wanted.playing;
    if (!wanted.playing && !this.#node) return;
    this.#node ??= this.#open();
    try {
      const { port, context } = await this.#node;
      port.postMessage(wanted);
      if (wanted.playing) await context.resume();
      else setTimeout(() => this.#playing || context.suspend(), FADE);
    } catch (error) {
      this.#node = null; // the next tone tries again
      throw error;
    }
  }

  async #open() {
    const context = new AudioContext({ sampleRate: TONE_RATE });
    document.addEventListener("visibilitychange", () => {
      if (this.#playing && !document.hidden) context.resume();
    });
    const [module] = await Promise.all([
      bytesOf("endpin-tone.wasm"),
      context.audioWorklet.addModule("tone-worklet.js"),
    ]);
    const node = new AudioWorkletNode(context, "endpin-tone", {
      outputChannelCount: [2],
      processorOptions: { module },
    });
    node.connect(context.destination);
    return node;
  }
}

// Plays sound files in a context that already runs: nothing has to be tapped for that.
export class Sounds {
  #sounds = new Map(); // promises, by path

  async load(path, context) {
    if (!this.#sounds.has(path)) {
      this.#sounds.set(path, bytesOf(path).then((bytes) => context.decodeAudioData(bytes)));
    }
    try {
      return await this.#sounds.get(path);
    } catch (error) {
      this.#sounds.delete(path); // the next one tries again
      throw error;
    }
  }

  async play(path, context) {
    if (context?.state !== "running") return;
    const source = context.createBufferSource();
    source.buffer = await this.load(path, context);
    source.connect(context.destination);
    source.start();
  }
}

// Keeps the screen on while it is wanted. Browsers take the lock back when the page is hidden, and
// some have none: then the screen follows the system.
export class ScreenLock {
  #wanted = false;
  #lock = null; // a promise of it, or of null

  constructor() {
    document.addEventListener("visibilitychange", () => this.#follow());
  }

  keep(wanted) {
    this.#wanted = wanted;
    this.#follow();
  }

  async #follow() {
    const before = await this.#lock;
    const held = before && !before.released;
    const wanted = this.#wanted && !document.hidden;
    if (held === wanted) return;
    if (held) return before.release();
    this.#lock = wanted ? (navigator.wakeLock?.request("screen").catch(() => null) ?? null) : null;
  }
}
