// The tuner for JavaScript: loads the core module, passes texts and samples across, and keeps what
// the screen shows. Runs in pages and in node alike. What crosses the bridge is described in
// web/README.md.

const MODULE = "endpin";
const PREFIX = "endpin."; // of our keys in a storage that other pages may share
const TROUBLES = [
  "None",
  "NoSoundService",
  "NotAllowed",
  "NoMicrophone",
  "MicrophoneNotFound",
  "MicrophoneMuted",
];
const VALUE_OF = [(text) => text === "true", Number, (text) => text];

// What the C library of the module asks of an operating system. There is none.
function systemCalls(memory, write) {
  const view = () => new DataView(memory().buffer);
  const BAD_DESCRIPTOR = 8;
  return {
    environ_sizes_get: (count, size) => {
      view().setUint32(count, 0, true);
      view().setUint32(size, 0, true);
      return 0;
    },
    environ_get: () => 0,
    clock_time_get: (clock, precision, time) => {
      view().setBigUint64(time, BigInt(Date.now()) * 1000000n, true);
      return 0;
    },
    fd_close: () => BAD_DESCRIPTOR,
    fd_seek: () => BAD_DESCRIPTOR,
    fd_write: (descriptor, parts, count, written) => {
      let size = 0;
      for (let i = 0; i < count; i++) {
        const start = view().getUint32(parts + 8 * i, true);
        const length = view().getUint32(parts + 8 * i + 4, true);
        write(new Uint8Array(memory().buffer, start, length));
        size += length;
      }
      view().setUint32(written, size, true);
      return 0;
    },
    proc_exit: (code) => {
      throw new Error(`the core ended with code ${code}`);
    },
  };
}

// Settings in a browser's storage (localStorage or null), each value read back after it was
// written: some browsers swallow it without a word.
class KeptSettings {
  constructor(storage, refused) {
    this.storage = storage;
    this.refused = refused;
    this.kept = true;
  }

  attempt(work, otherwise) {
    try {
      return work();
    } catch (error) {
      this.refuse(error);
      return otherwise;
    }
  }

  refuse(error) {
    if (this.kept) this.refused(error);
    this.kept = false;
  }

  read(key) {
    return this.attempt(() => this.storage?.getItem(PREFIX + key) ?? null, null);
  }

  write(key, value) {
    const kept = this.attempt(() => {
      this.storage?.setItem(PREFIX + key, value);
      return this.storage?.getItem(PREFIX + key) === value;
    }, false);
    if (!kept) this.refuse(new Error("the storage does not keep what is written"));
    return kept;
  }

  clear() {
    this.attempt(() => {
      const count = this.storage?.length ?? 0;
      const keys = Array.from({ length: count }, (_, i) => this.storage.key(i));
      for (const key of keys) if (key.startsWith(PREFIX)) this.storage.removeItem(key);
    });
  }
}

export class Tuner {
  // Instantiates `module`, a WebAssembly.Module. `options`:
  //   texts    the default table in the user's language, with English where that has gaps
  //   storage  keeps the settings: localStorage, or null where there is none
  static async load(module, options = {}) {
    const tuner = new Tuner(options);
    const instance = await WebAssembly.instantiate(module, tuner.#imports());
    tuner.#exports = instance.exports;
    instance.exports._initialize();
    return tuner;
  }

  // What the screen shows: by the name of each element its kind and its properties, such as
  // {kind: "label", text: "A3", hidden: false, alpha: 1, blinking: false}.
  outlets = new Map();
  // The actions of the user: by name the kind of the control they want, "" for none.
  actions = new Map();

  // Called after a call into the core has returned, in the order in which things happened. A
  // handler may call the core; what it throws stops nothing.
  onOutlet = (name, property, value) => {};
  onTone = ({ playing, frequency, waveform }) => {};
  onSound = (path) => {};
  onListen = (wanted) => {};
  onUseMicrophone = (id) => {};
  onKeepAwake = (wanted) => {};
  onSettingsLost = (error) => {}; // once: from now on nothing outlives the page
  onFailure = (error) => {}; // once: the core has failed, and answers no more
  onLog = (line) => {};
  onError = (error) => console.error(error); // of another handler

  #exports;
  #texts;
  #settings;
  #decoder = new TextDecoder();
  #encoder = new TextEncoder();
  #events = [];
  #inside = false;
  #failure = null;

  constructor({ texts = {}, storage = null }) {
    this.#texts = texts;
    this.#settings = new KeptSettings(storage, (error) => this.#tell("onSettingsLost", error));
  }

  // Starts the application on a screen of this size in points. `now`: seconds, of any origin, the
  // same for `advance`. Once.
  start({ width, height, touch = true, now = 0 }) {
    this.#enter(() => this.#exports.start(width, height, touch, now));
  }

  // The time is `now`: timers fire. Returns when the next one is due.
  advance(now) {
    return this.#enter(() => this.#exports.advance(now));
  }

  // Hears samples (Float32Array, 1 is full scale) taken at `rate` hertz. False for a rate that is
  // none.
  feed(samples, rate) {
    return this.#enter(() => {
      const start = this.#exports.sampleBuffer(samples.length);
      new Float32Array(this.#exports.memory.buffer, start, samples.length).set(samples);
      return Boolean(this.#exports.feed(rate));
    });
  }

  // The microphone delivers no more.
  lose() {
    this.#enter(() => this.#exports.lose());
  }

  // What the page knows of the microphones: the trouble there is (a name of TROUBLES), the one in
  // use, and those that can be chosen, in the system's order.
  tellMicrophones({ trouble = "None", nameInUse = "", connected = [] } = {}) {
    const number = TROUBLES.indexOf(trouble);
    if (number < 0) throw new RangeError(`there is no trouble called ${trouble}`);
    const flat = (text) => text.replace(/[\t\n]/g, " ");
    const lines = connected.map(({ id, name }) => `${flat(id)}\t${flat(name)}`).join("\n");
    this.#enter(() => {
      const [nameLength, linesLength] = this.#send([flat(nameInUse), lines]);
      this.#exports.tellMicrophones(number, nameLength, linesLength);
    });
  }

  // The user did `action` with the control of that name, whose value is now `value` (a flag or a
  // number; none leaves it). False when there is no such action, or no such control for it.
  perform(action, sender = "", value = "") {
    return this.#enter(() =>
      Boolean(this.#exports.perform(...this.#send([action, sender, String(value)]))),
    );
  }

  // A text of the application, or its key.
  text(key) {
    return this.#texts[key] ?? key;
  }

  // A core that failed once is in no state to be asked again: each later call throws the same.
  #enter(work) {
    if (this.#failure) throw this.#failure;
    if (this.#inside) throw new Error("the core is asked while it answers");
    this.#inside = true;
    try {
      return work();
    } catch (error) {
      this.#failure = error;
      this.#tell("onFailure", error);
      throw error;
    } finally {
      this.#inside = false;
      this.#deliver();
    }
  }

  #tell(handler, ...details) {
    this.#events.push([handler, details]);
  }

  #deliver() {
    while (!this.#inside && this.#events.length > 0) {
      const [handler, details] = this.#events.shift();
      try {
        this[handler](...details);
      } catch (error) {
        this.onError(error);
      }
    }
  }

  // Writes texts into the exchange buffer, one after the other, and returns their lengths.
  #send(texts) {
    const parts = texts.map((text) => this.#encoder.encode(text));
    const lengths = parts.map((part) => part.length);
    const size = lengths.reduce((sum, length) => sum + length, 0);
    const start = this.#exports.exchangeBuffer(size); // first: it may move the memory
    const buffer = new Uint8Array(this.#exports.memory.buffer, start, size);
    let offset = 0;
    for (const part of parts) {
      buffer.set(part, offset);
      offset += part.length;
    }
    return lengths;
  }

  // Answers the core with a text, null for none.
  #answer(text) {
    return text === null || text === undefined ? -1 : this.#send([text])[0];
  }

  #imports() {
    const memory = () => this.#exports.memory;
    const read = (start, length) =>
      this.#decoder.decode(new Uint8Array(memory().buffer, start, length));
    // Wraps a function of texts, each of which comes as two numbers: where, and how long.
    const ofTexts = (count, work) => (...numbers) => {
      const texts = Array.from({ length: count }, (_, i) =>
        read(numbers[2 * i], numbers[2 * i + 1]),
      );
      return work(...texts);
    };
    return {
      [MODULE]: {
        log: ofTexts(1, (line) => this.#tell("onLog", line)),
        text: ofTexts(2, (key, table) => this.#answer(table ? null : this.#texts[key])),
        settingRead: ofTexts(1, (key) => this.#answer(this.#settings.read(key))),
        settingWrite: ofTexts(2, (key, value) => this.#settings.write(key, value)),
        settingsClear: () => this.#settings.clear(),
        listen: (wanted) => this.#tell("onListen", Boolean(wanted)),
        useMicrophone: ofTexts(1, (id) => this.#tell("onUseMicrophone", id)),
        playSound: ofTexts(1, (path) => this.#tell("onSound", path)),
        tone: (playing, frequency, waveform) =>
          this.#tell("onTone", { playing: Boolean(playing), frequency, waveform }),
        keepAwake: (wanted) => this.#tell("onKeepAwake", Boolean(wanted)),
        outletExists: ofTexts(2, (name, kind) => this.outlets.set(name, { kind })),
        actionExists: ofTexts(2, (name, sender) => this.actions.set(name, sender)),
        outletChanged: (name, nameLength, property, propertyLength, type, value, valueLength) =>
          this.#changed(
            read(name, nameLength),
            read(property, propertyLength),
            VALUE_OF[type](read(value, valueLength)),
          ),
      },
      wasi_snapshot_preview1: systemCalls(memory, (bytes) =>
        this.#tell("onLog", this.#decoder.decode(bytes)),
      ),
    };
  }

  #changed(name, property, value) {
    this.outlets.get(name)[property] = value;
    this.#tell("onOutlet", name, property, value);
  }
}
