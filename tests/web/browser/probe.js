// Runs in the page before its own scripts, and writes down what a user would see and hear of it.
// All times are in milliseconds of the machine's clock. ?stand-in=NAME makes the browser refuse
// something, in place of a user or a device that no test has.
window.probe = {
  faults: [], // what the page would have written to the console in red
  beeps: [], // {at}
  shown: [], // {at, name, value}: each change of an element of the screen, a picture or a text
  greens: [], // {at, note}: each time the lamp became green
  wanted: [], // what was asked of each microphone that was granted
  streams: [], // of these
  onsets: [], // when the microphone began to hear something after silence, each
  context: null, // the AudioContext that listens
  whileHidden: [], // the states that it took while the page was hidden
  awake: 0, // how often the screen was asked to stay so
  away: "", // when not empty: the microphone cannot be had, by the name of the error
  tone: null, // an AnalyserNode on what the tone's context plays
};

{
  const { probe } = window;
  const now = () => performance.timeOrigin + performance.now();
  const LAMP = /^LEDDisplay(128)?$/; // whichever of the two the layout has
  const GREEN = /^green(64|128)\.png$/;
  const fault = (text) => probe.faults.push(String(text));
  const refuse = (name) => {
    throw new DOMException("stand-in", name);
  };

  // Puts `work` before a method: it sees this and the arguments.
  const before = (owner, method, work) => {
    const original = owner.prototype[method];
    owner.prototype[method] = function (...details) {
      work(this, ...details);
      return original.apply(this, details);
    };
  };

  const listenTo = (source) => {
    probe.context = source.context;
    const analyser = new AnalyserNode(source.context, { fftSize: 1024 });
    const samples = new Float32Array(analyser.fftSize);
    let lastHeard = 0;
    let quiet = Infinity; // looks in a row that found silence: none while the page stood still
    source.connect(analyser);
    setInterval(() => {
      analyser.getFloatTimeDomainData(samples);
      quiet++;
      if (!samples.some((sample) => Math.abs(sample) > 0.01)) return;
      if (quiet > 5 && now() - lastHeard > 600) probe.onsets.push(now());
      lastHeard = now();
      quiet = 0;
    }, 20);
    source.context.addEventListener("statechange", ({ target }) => {
      if (document.hidden) probe.whileHidden.push(target.state);
    });
  };

  const { error } = console;
  console.error = (...words) => {
    fault(words.join(" "));
    error.apply(console, words);
  };
  const failed = ({ message, target }) => fault(message ?? `cannot load ${target.src ?? target.href}`);
  addEventListener("error", failed, true);
  addEventListener("unhandledrejection", (event) => fault(event.reason));
  addEventListener("securitypolicyviolation", (event) =>
    fault(`${event.violatedDirective} forbids ${event.blockedURI} in ${event.sourceFile}`),
  );

  before(window.AudioBufferSourceNode, "start", ({ buffer }) => {
    if (buffer && buffer.duration > 0.02) probe.beeps.push({ at: now() }); // shorter: to wake the speaker
  });
  before(window.AudioNode, "connect", (node, target) => {
    if (node instanceof MediaStreamAudioSourceNode && !(target instanceof AnalyserNode)) listenTo(node);
    // Of the two worklets the tone's is connected last.
    if (!(node instanceof AudioWorkletNode && target instanceof AudioDestinationNode)) return;
    probe.tone = new AnalyserNode(node.context, { fftSize: 32768 });
    node.connect(probe.tone);
  });
  before(window.WakeLock, "request", () => probe.awake++);
  const { getUserMedia } = MediaDevices.prototype;
  MediaDevices.prototype.getUserMedia = async function (wanted) {
    if (probe.away) refuse(probe.away);
    const stream = await getUserMedia.call(this, wanted);
    probe.wanted.push(wanted);
    probe.streams.push(stream);
    return stream;
  };

  // In place of a device that is pulled out and put back.
  probe.endStreams = () => {
    for (const track of probe.streams.flatMap((stream) => stream.getTracks())) {
      track.dispatchEvent(new Event("ended"));
      track.stop();
    }
  };
  probe.tellDevices = () => navigator.mediaDevices.dispatchEvent(new Event("devicechange"));

  const standIns = {
    "microphone-refused": () => (probe.away = "NotAllowedError"),
    "microphone-missing": () => (probe.away = "NotFoundError"),
    "storage-refused": () =>
      Object.defineProperty(window, "localStorage", { get: () => refuse("SecurityError") }),
    "storage-full": () => (Storage.prototype.setItem = () => refuse("QuotaExceededError")),
    "old-browser": () => delete window.AudioWorkletNode,
  };
  standIns[new URLSearchParams(location.search).get("stand-in")]?.();

  const note = () => document.querySelector('[data-outlet="noteDisplay"]').textContent;
  new MutationObserver((changes) => {
    for (const { target } of changes) {
      const element = (target.closest ? target : target.parentElement)?.closest("[data-outlet]");
      if (!element) continue;
      const { outlet: name, image: value = element.textContent } = element.dataset;
      probe.shown.push({ at: now(), name, value });
      if (LAMP.test(name) && GREEN.test(value)) probe.greens.push({ at: now(), note: note() });
    }
  }).observe(document, {
    subtree: true,
    childList: true,
    characterData: true,
    attributeFilter: ["data-image"],
  });
}
