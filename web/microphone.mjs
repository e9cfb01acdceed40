// The microphone of the page: opens the one that is wanted, feeds its samples to the tuner, tells it
// which ones there are and why nothing is heard, and comes back by itself as soon as it can.

const PLAIN = { echoCancellation: false, noiseSuppression: false, autoGainControl: false };
const PATIENCE = 500; // milliseconds for a context to run again before the user is asked

// Names of the tuner's troubles by what getUserMedia says.
function troubleOf({ name }, id) {
  if (name === "NotAllowedError" || name === "SecurityError") return "NotAllowed";
  if (name === "NotFoundError") return id ? "MicrophoneNotFound" : "NoMicrophone";
  if (name === "OverconstrainedError") return "MicrophoneNotFound";
  return "Taken"; // by another app: not one of the tuner's
}

export class Microphone {
  context = null; // runs while something is to be heard
  trouble = "None";

  #tuner;
  #handlers;
  #id = ""; // the one that was chosen, empty for the system's choice
  #stream = null;
  #source = null;
  #capture = null; // a promise of the worklet's node
  #opening = 0; // how many times it was opened: what comes of the last one counts
  #told = ""; // what the tuner was told last
  #impatience = 0;

  // `handlers`:
  //   onHeard()            the tuner has got samples
  //   onInterrupted(yes)   the browser holds the sound back; `retry`, in a tap, may bring it back
  //   onProcessed(yes)     the browser goes on processing what it was asked to leave alone
  constructor(tuner, handlers) {
    this.#tuner = tuner;
    this.#handlers = handlers;
    navigator.mediaDevices.addEventListener("devicechange", () => this.#devicesChanged());
    document.addEventListener("visibilitychange", () => this.#shown());
    this.#watchPermission();
  }

  // Opens the microphone; within a tap, the first time. Resolves when it is open or refused.
  async open() {
    const opening = ++this.#opening;
    this.#wake();
    try {
      const audio = this.#id ? { ...PLAIN, deviceId: { exact: this.#id } } : PLAIN;
      const stream = await navigator.mediaDevices.getUserMedia({ audio });
      if (opening !== this.#opening) return stop(stream);
      await this.#take(stream);
    } catch (error) {
      if (opening === this.#opening) this.#fail(troubleOf(error, this.#id));
    }
    await this.tell();
  }

  // A tap on what said that something is wrong.
  async retry() {
    this.#wake();
    if (!this.#stream) await this.open();
  }

  use(id) {
    const changed = id !== this.#id;
    this.#id = id;
    if (changed && this.#opening > 0) this.open();
  }

  // Tells the tuner what there is. Names come only after the user has allowed the microphone.
  async tell() {
    const devices = await navigator.mediaDevices.enumerateDevices().catch(() => []);
    const inputs = devices.filter(({ kind }) => kind === "audioinput");
    const real = inputs.filter(({ deviceId }) => !["", "default", "communications"].includes(deviceId));
    const track = this.#stream?.getAudioTracks()[0];
    const group = track?.getSettings().groupId;
    const used = real.find(({ groupId, label }) => track && (groupId === group || label === track.label));
    const facts = {
      trouble: this.trouble === "Taken" ? "None" : this.trouble,
      nameInUse: used?.label ?? track?.label ?? "",
      connected: real.map(({ deviceId, label }) => ({ id: deviceId, name: label || deviceId })),
    };
    const told = JSON.stringify(facts);
    if (told !== this.#told && this.#started) {
      this.#tuner.tellMicrophones(facts);
      this.#told = told;
    }
  }

  // For good.
  close() {
    this.#opening = 0;
    this.#release();
    this.context?.close();
  }

  // The tuner can be asked only after its start.
  get #started() {
    return this.#tuner.outlets.size > 0;
  }

  // It failed to open, and not because the user wanted so: it may be there again.
  get #missed() {
    return !this.#stream && !["None", "NotAllowed"].includes(this.trouble);
  }

  #lose() {
    if (this.#started) this.#tuner.lose();
  }

  #wake() {
    if (!this.context) {
      // At the rate of the device. A tenth of a second, a tick of the tuner, comes together: browsers
      // would otherwise wake up several threads a hundred times a second.
      this.context = new AudioContext({ latencyHint: 0.1 });
      this.context.addEventListener("statechange", () => this.#followContext());
      this.#capture = this.#makeCapture(this.context);
      this.#capture.catch(() => (this.context = null)); // the next attempt begins anew
    }
    this.context.resume().catch(() => {});
  }

  async #makeCapture(context) {
    await context.audioWorklet.addModule("capture-worklet.js");
    const node = new AudioWorkletNode(context, "endpin-capture");
    node.port.onmessage = ({ data }) => {
      if (this.trouble !== "None" || !this.#started) return;
      this.#tuner.feed(data, context.sampleRate);
      this.#handlers.onHeard();
    };
    node.connect(context.destination); // silent; some browsers run only what is heard
    return node;
  }

  async #take(stream) {
    this.#release();
    this.#stream = stream;
    const [track] = stream.getAudioTracks();
    track.addEventListener("ended", () => this.#ended(stream));
    track.addEventListener("mute", () => this.#muted(stream));
    track.addEventListener("unmute", () => this.#muted(stream));
    const capture = await this.#capture;
    if (stream !== this.#stream) return;
    this.#source = this.context.createMediaStreamSource(stream);
    this.#source.connect(capture);
    this.trouble = track.muted ? "MicrophoneMuted" : "None";
    this.#handlers.onInterrupted(false);
    const granted = track.getSettings();
    this.#handlers.onProcessed(Object.keys(PLAIN).some((name) => granted[name] === true));
  }

  #release() {
    this.#source?.disconnect();
    this.#source = null;
    if (this.#stream) stop(this.#stream);
    this.#stream = null;
  }

  #fail(trouble) {
    this.#release();
    this.trouble = trouble;
    this.#lose();
    this.#handlers.onInterrupted(trouble === "Taken");
  }

  // The device went away, or the permission: another one may take its place, but nobody is asked
  // for a permission that he has just taken back.
  async #ended(stream) {
    if (stream !== this.#stream) return;
    const { deviceId } = stream.getAudioTracks()[0].getSettings();
    this.#release();
    this.#lose();
    if (!(await takenBack(deviceId))) return this.open();
    this.#fail("NotAllowed");
    await this.tell();
  }

  #muted(stream) {
    if (stream !== this.#stream) return;
    this.trouble = stream.getAudioTracks()[0].muted ? "MicrophoneMuted" : "None";
    if (this.trouble !== "None") this.#lose();
    this.tell();
  }

  // A missing one may have come back.
  #devicesChanged() {
    if (this.#opening === 0) return;
    if (this.#missed) this.open();
    else this.tell();
  }

  async #watchPermission() {
    const status = await permission().catch(() => null);
    status?.addEventListener?.("change", () => {
      if (status.state === "granted" && this.trouble === "NotAllowed") this.open();
    });
  }

  // Nobody looks: nothing is listened to. The stream stays, for asking anew may ask the user.
  #shown() {
    if (!this.context || this.#opening === 0) return;
    if (!document.hidden) {
      this.#wake();
      if (this.#missed) this.open();
      return;
    }
    this.#lose();
    this.context.suspend().catch(() => {});
  }

  // "interrupted" while a call has the sound, "suspended" when the browser holds it back.
  #followContext() {
    clearTimeout(this.#impatience);
    if (!this.context) return;
    if (this.context.state === "running") {
      if (this.trouble !== "Taken") this.#handlers.onInterrupted(false);
      return;
    }
    if (document.hidden || this.#opening === 0) return;
    this.#lose();
    this.context.resume().catch(() => {});
    this.#impatience = setTimeout(() => this.#handlers.onInterrupted(true), PATIENCE);
  }
}

function stop(stream) {
  for (const track of stream.getTracks()) track.stop();
}

// Whether it was the user who ended the stream of a device. Some browsers say "prompt" of a permission
// that still stands; then it was, if the device is still there.
async function takenBack(deviceId) {
  const state = await permission().then(({ state }) => state, () => "granted");
  if (state !== "prompt") return state === "denied";
  const devices = await navigator.mediaDevices.enumerateDevices().catch(() => []);
  return devices.some((device) => device.deviceId === deviceId);
}

// Rejects in browsers that tell nobody.
async function permission() {
  return navigator.permissions.query({ name: "microphone" });
}
