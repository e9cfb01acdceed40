// Runs in the page before its own scripts, and writes down what a user would see and hear of it.
// All times are in milliseconds of the machine's clock. ?stand-in=NAME makes the browser refuse
// something, in place of a user or a device that no test has.
window.probe = {
  faults: [], // what the page would have written to the console in red
  beeps: [], // {at}
  shown: [], // {at, name, value}: each change of an element of the screen, a picture or a text
  streams: [], // {at, wanted, stream}: microphones that were granted
  onsets: [], // when the microphone began to hear something after silence, each
  context: null, // the AudioContext that listens
  whileHidden: [], // its state each time the page was hidden, half a second later
  away: "", // when not empty: the microphone cannot be had, by the name of the error
  tone: null, // an AnalyserNode on what the tone's context plays
};

{
  const { probe } = window;
  const now = () => performance.timeOrigin + performance.now();
  const fault = (text) => probe.faults.push(String(text));

  // Puts `work` before a method: it sees this and the arguments.
  const before = (owner, method, work) => {
    const original = owner?.prototype[method];
    if (!original) return;
    owner.prototype[method] = function (...details) {
      work(this, ...details);
      return original.apply(this, details);
    };
  };

  const probed = new WeakSet();
  const listenTo = (source) => {
    probe.context = source.context;
    const analyser = new AnalyserNode(source.context, { fftSize: 1024 });
    const samples = new Float32Array(analyser.fftSize);
    let lastHeard = 0;
    source.connect(analyser);
    setInterval(() => {
      analyser.getFloatTimeDomainData(samples);
      if (!samples.some((sample) => Math.abs(sample) > 0.01)) return;
      if (now() - lastHeard > 600) probe.onsets.push(now());
      lastHeard = now();
    }, 20);
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

  before(window.HTMLMediaElement, "play", (element) => {
    if (!element.muted && element.currentSrc + element.src) probe.beeps.push({ at: now() });
  });
  before(window.AudioBufferSourceNode, "start", ({ buffer }) => {
    if (buffer && buffer.duration > 0.02) probe.beeps.push({ at: now() }); // shorter: to wake the speaker
  });
  before(window.AudioNode, "connect", (node, target) => {
    if (node instanceof MediaStreamAudioSourceNode && !probed.has(node)) {
      probed.add(node);
      listenTo(node);
    }
    if (!(target instanceof AudioDestinationNode) || node.context.sampleRate !== 44100) return;
    // What listens, and beeps, may have the same rate.
    if (!(node instanceof AudioWorkletNode) || node.context === probe.context) return;
    if (probe.tone?.context === node.context) return;
    probe.tone = new AnalyserNode(node.context, { fftSize: 32768 });
    node.connect(probe.tone);
  });
  const { getUserMedia } = window.MediaDevices?.prototype ?? {};
  if (getUserMedia) {
    MediaDevices.prototype.getUserMedia = async function (wanted) {
      if (probe.away) throw new DOMException("stand-in", probe.away);
      const stream = await getUserMedia.call(this, wanted);
      probe.streams.push({ at: now(), wanted, stream });
      return stream;
    };
  }

  // In place of a device that is pulled out and put back.
  probe.endStreams = () => {
    for (const track of probe.streams.flatMap(({ stream }) => stream.getTracks())) {
      track.dispatchEvent(new Event("ended"));
      track.stop();
    }
  };
  probe.tellDevices = () => navigator.mediaDevices.dispatchEvent(new Event("devicechange"));

  document.addEventListener("visibilitychange", () => {
    if (document.hidden) setTimeout(() => probe.whileHidden.push(probe.context?.state), 500);
  });

  const refuse = (name) => {
    throw new DOMException("stand-in", name);
  };
  const standIns = {
    "microphone-refused": () => (probe.away = "NotAllowedError"),
    "microphone-missing": () => (probe.away = "NotFoundError"),
    "storage-refused": () =>
      Object.defineProperty(window, "localStorage", { get: () => refuse("SecurityError") }),
    "storage-full": () => (Storage.prototype.setItem = () => refuse("QuotaExceededError")),
    "old-browser": () => delete window.AudioWorkletNode,
  };
  standIns[new URLSearchParams(location.search).get("stand-in")]?.();

  new MutationObserver((changes) => {
    for (const { target } of changes) {
      const element = (target.closest ? target : target.parentElement)?.closest("[data-outlet]");
      if (!element) continue;
      const { outlet: name, image: value = element.textContent } = element.dataset;
      probe.shown.push({ at: now(), name, value });
    }
  }).observe(document, {
    subtree: true,
    childList: true,
    characterData: true,
    attributeFilter: ["data-image"],
  });
}
