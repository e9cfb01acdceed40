// A bare page over the core: one tap starts the microphone, labels and pictures show as words.
import { Tuner } from "./core.mjs";

const now = () => performance.now() / 1000;

async function listen(tuner) {
  const stream = await navigator.mediaDevices.getUserMedia({
    audio: { echoCancellation: false, noiseSuppression: false, autoGainControl: false },
  });
  const context = new AudioContext();
  await context.audioWorklet.addModule("capture-worklet.js");
  const capture = new AudioWorkletNode(context, "endpin-capture");
  capture.port.onmessage = ({ data }) => tuner.feed(data, context.sampleRate);
  context.createMediaStreamSource(stream).connect(capture).connect(context.destination);
  await context.resume();
}

async function toneNode(bytes) {
  const context = new AudioContext({ sampleRate: 44100 });
  await context.audioWorklet.addModule("tone-worklet.js");
  const node = new AudioWorkletNode(context, "endpin-tone", {
    outputChannelCount: [2],
    processorOptions: { module: bytes },
  });
  node.connect(context.destination);
  return node;
}

async function begin() {
  const module = await WebAssembly.compileStreaming(fetch("endpin-core.wasm"));
  const toneBytes = await (await fetch("endpin-tone.wasm")).arrayBuffer();
  const texts = await (await fetch("texts/en.json")).json();
  const tuner = await Tuner.load(module, { texts, storage: localStorage });
  globalThis.tuner = tuner;

  let tone;
  tuner.onTone = async (wanted) => (await (tone ??= toneNode(toneBytes))).port.postMessage(wanted);
  tuner.onSound = (path) => new Audio(path).play();
  tuner.onOutlet = (name, property, value) => {
    if (property !== "text" && property !== "image") return;
    const element = document.querySelector(`[data-outlet="${name}"]`);
    if (element) element.textContent = value;
  };
  for (const button of document.querySelectorAll("[data-action]")) {
    const action = button.dataset.action;
    button.onclick = () => (action === "start" ? listen(tuner) : tuner.perform(action));
  }
  tuner.start({ width: screen.width, height: screen.height, now: now() });
  setInterval(() => tuner.advance(now()), 50);
}

await begin();
