// Puts the page together: texts, tuner, microphone, sounds, screen and panels. One tap starts it.
import { bind } from "./bind.mjs";
import { Tuner } from "./core.mjs";
import { Microphone } from "./microphone.mjs";
import { keepOffline } from "./offline.mjs";
import { setUpPanels } from "./panels.mjs";
import { loadPictures } from "./pictures.mjs";
import { Screen } from "./screen.mjs";
import { ScreenLock, Sounds, ToneOutput } from "./sound.mjs";
import { Texts } from "./texts.mjs";

const BEEP = "resources/beep-full.mp3";
const BREATH = 200; // milliseconds that a permission may take before the user is told of it
const GRACE = 0.1; // seconds, longer than what a browser captures at a time
const NOTICE = 8000; // milliseconds that a notice stays

const seconds = () => performance.now() / 1000;
const page = document.documentElement;

// localStorage, or null: reading the property is enough to be refused.
function storage() {
  try {
    return globalThis.localStorage ?? null;
  } catch {
    return null;
  }
}

// Something to be spoken, also where it was said just before.
function announce(text) {
  if (!text) return;
  const place = document.getElementById("spoken");
  place.textContent = "";
  setTimeout(() => (place.textContent = text), 50);
}

// A calm line over the screen, that goes by itself.
function notice(text) {
  const line = document.createElement("p");
  line.textContent = text;
  document.getElementById("notices").append(line);
  setTimeout(() => line.remove(), NOTICE);
}

// Lets the tuner's timers fire when they are due; nothing fires while nobody looks. As long as samples
// come, a timer waits a little for them, that both wake the page together: returns what is to be
// called after they came.
function keepTime(tuner) {
  let timer = 0;
  let due = 0;
  let heard = -Infinity; // when samples came last
  const advance = () => {
    due = tuner.advance(seconds());
    clearTimeout(timer);
    const grace = seconds() - heard < 2 * GRACE ? GRACE : 0;
    const wait = Math.max(0, due - seconds()) + grace;
    if (!document.hidden) timer = setTimeout(advance, 1000 * wait);
  };
  document.addEventListener("visibilitychange", advance);
  advance();
  return () => {
    heard = seconds();
    if (heard >= due) advance();
  };
}

async function begin() {
  let tapped = false; // maybe before there is a tuner to start
  document.querySelector(".tap").addEventListener("click", () => (tapped = true));
  const texts = await Texts.load();
  texts.fill(page);
  const module = await WebAssembly.compileStreaming(fetch("endpin-core.wasm"));
  const tuner = await Tuner.load(module, { texts: texts.table, storage: storage() });
  const screen = new Screen(tuner, texts);
  const tone = new ToneOutput();
  const sounds = new Sounds();
  const lock = new ScreenLock();
  let heard = () => {};
  const microphone = new Microphone(tuner, {
    onHeard: () => heard(),
    onInterrupted: (yes) => announce(screen.interrupt(yes)),
    onProcessed: (yes) => yes && notice(texts.of("SoundProcessed")),
  });

  tuner.onTone = (wanted) => tone.play(wanted).catch(console.error);
  tuner.onSound = (path) => sounds.play(path, microphone.context).catch(console.error);
  tuner.onKeepAwake = (wanted) => lock.keep(wanted);
  tuner.onUseMicrophone = (id) => microphone.use(id);
  tuner.onSettingsLost = () => notice(texts.of("SettingsNotKept"));
  tuner.onFailure = () => microphone.close(); // failure.js tells the user

  async function listen() {
    if (page.dataset.state !== "ready") return;
    page.dataset.state = "asking";
    const promise = document.getElementById("promise");
    const patience = setTimeout(() => (promise.textContent = texts.of("AllowMicrophone")), BREATH);
    await microphone.open();
    clearTimeout(patience);
    if (microphone.context) sounds.load(BEEP, microphone.context).catch(console.error);
    const { width, height } = globalThis.screen;
    const touch = matchMedia("(pointer: coarse)").matches;
    tuner.start({ width, height, touch, now: seconds() });
    heard = keepTime(tuner);
    page.dataset.state = "listening";
    const shown = document.getElementById("screen");
    shown.removeAttribute("aria-hidden");
    shown.focus({ preventScroll: true });
    await microphone.tell();
  }

  setUpPanels(tuner, texts, announce);
  bind(tuner, document, { start: listen, retry: () => microphone.retry() }, () => screen.follow());
  page.dataset.state = "ready";
  performance.mark("ready"); // for bench/page.mjs
  loadPictures();
  if (tapped) listen();
  keepOffline(() => page.dataset.state === "ready");
}

begin(); // not awaited: some browsers tell failure.js nothing of a module that rejects
