// What the main screen makes of several outlets together: the lamp with the light around it, the
// caption, what stands in place of the read-out, where a trouble stands, and what is spoken of all
// that. Its counterparts are ReadOut, Lamp, WaitingDots and Trouble in ui/components/.
import { metrics, onMetrics } from "./metrics.mjs";
import { drawingOf } from "./pictures.mjs";

const HALO_LIGHT = [0.4, 0.5, 0.6, 0.7, 0.8, 0.87, 0.93, 1]; // by the level
const HALO_SIZE = [0.88, 0.92, 0.94, 0.96, 1, 1.02, 1.04, 1.06];
const CALM_STEPS = [0, 2, 2, 2, 6, 6, 6, 6]; // of the level, where less motion is wanted
const TOO_QUIET = 3; // the highest level that is
const ROUND = 1800; // milliseconds, a light through the three dots
const GAP = 20; // between the hint and the dots
const BELOW = 0.24; // of the size, what a line of text has under its baseline
const STEP = 225; // milliseconds; each is a repaint

const byId = (id) => document.getElementById(id);
const byOutlet = (name) => document.querySelector(`[data-outlet="${name}"]`);
const lessMotion = matchMedia("(prefers-reduced-motion: reduce)");

// Sets what is not so already: browsers lay out anew what was set to the same.
function put(element, name, value) {
  if (element.getAttribute(name) !== value) element.setAttribute(name, value);
}
function putText(element, text) {
  if (element.textContent !== text) element.textContent = text;
}

// Hides an element, whose focus does not get lost.
function hide(element, hidden) {
  if (element.hidden === hidden) return;
  if (hidden && element === document.activeElement) byId("screen").focus();
  element.hidden = hidden;
}

// Makes `element` four fifths of its size at least where its words do not fit into `room` in a line,
// and as wide as its lines are: a text that wraps would keep the whole room.
function fit(element, room) {
  const { style } = element;
  style.setProperty("--fit", 1);
  style.width = "max-content";
  style.setProperty("--fit", Math.max(0.8, Math.min(1, room / element.offsetWidth)));
  style.width = `${room}px`;
  const words = document.createRange();
  words.selectNodeContents(element);
  style.width = `${Math.ceil(words.getBoundingClientRect().width)}px`;
}

// Puts a warning where the metrics want it. A long one grows upwards, away from the lamp; one that
// still does not fit is smaller.
function place(warning) {
  const { style } = warning;
  const room = metrics.troubleLimit - metrics.troubleCeiling;
  style.setProperty("--crowded", 1);
  const tooWide = [...warning.children].some((part) => part.scrollWidth > part.clientWidth);
  if (warning.offsetHeight > room || tooWide) style.setProperty("--crowded", 0.8);
  const height = warning.offsetHeight;
  const top = metrics.warningBeside
    ? metrics.warningMiddle - height / 2
    : Math.min(metrics.middle, metrics.troubleLimit - height + BELOW * metrics.caption);
  style.top = `${top}px`;
}

export class Screen {
  #tuner;
  #texts;
  #interrupted = false; // a trouble of the page's own
  #laidOut = new Map(); // by element, what it was laid out for
  #asked = false; // a refresh is due
  #dots = document.querySelectorAll(".level > i");
  #timer = 0;
  #phase = 0;

  constructor(tuner, texts) {
    this.#tuner = tuner;
    this.#texts = texts;
    const refresh = () => this.follow();
    onMetrics(refresh);
    lessMotion.addEventListener("change", refresh);
    document.addEventListener("visibilitychange", refresh);
  }

  // Something changed: shown before the next frame, once for all that changes together.
  follow() {
    if (this.#asked) return;
    this.#asked = true;
    queueMicrotask(() => {
      this.#asked = false;
      if (this.#tuner.outlets.size > 0) this.#refresh();
    });
  }

  // The browser holds the sound back, or no more. Returns what is to be spoken of it.
  interrupt(interrupted) {
    if (interrupted === this.#interrupted) return "";
    this.#interrupted = interrupted;
    this.follow();
    const of = (key) => this.#texts.of(key);
    if (!interrupted) return of("ListeningTitle");
    return `${of("ListeningStopped")}. ${of("ListeningStoppedRemedy")}`;
  }

  #of(name) {
    return this.#tuner.outlets.get(name);
  }

  #refresh() {
    const a4 = this.#of("calibrationFrequencyValue").text;
    putText(byId("caption"), a4 ? `A4 = ${a4}Hz` : "");
    const troubled = this.#showTroubles();
    const level = this.#of("inputLevel").level;
    const step = lessMotion.matches ? CALM_STEPS[level] : level;
    this.#showLamp(step);
    this.#showWaiting(!troubled && this.#of("freq_label").text === "", step);
    this.#speakable(level);
  }

  #showTroubles() {
    const trouble = byId("trouble");
    const interruption = byId("interruption");
    const title = this.#of("troubleTitle").text;
    const told = title !== "";
    hide(trouble, !told);
    trouble.disabled = title !== this.#texts.of("TroubleNotAllowed"); // a tap helps there only
    hide(interruption, told || !this.#interrupted);
    for (const warning of [trouble, interruption, byId("volumeWarning")]) {
      this.#layOut(warning, () => place(warning));
    }
    const troubled = told || this.#interrupted;
    document.documentElement.classList.toggle("troubled", troubled);
    return troubled;
  }

  // Once for each text and each size of the window.
  #layOut(element, work) {
    const what = `${element.hidden} ${element.textContent} ${metrics.width} ${metrics.height}`;
    if (this.#laidOut.get(element) !== what) work();
    this.#laidOut.set(element, what);
  }

  #showLamp(step) {
    const green = this.#of("LEDDisplay").image.startsWith("green");
    const light = green ? Math.max(0.7, HALO_LIGHT[step]) : HALO_LIGHT[step];
    const halo = byId("halo");
    put(halo, "src", drawingOf(green ? "haloGreen.png" : "haloYellow.png"));
    halo.style.setProperty("--halo-light", light);
    halo.style.setProperty("--halo-size", HALO_SIZE[step]);
  }

  #showWaiting(waiting, step) {
    const area = byId("waiting");
    const hint = byOutlet("firstNoteHint");
    const swing = byId("swing");
    area.hidden = !waiting;
    area.classList.toggle("hinting", hint.textContent !== "");
    area.classList.toggle("swinging", step > 0);
    swing.hidden = step === 0;
    if (step > 0) put(swing, "src", drawingOf(`levelSwing${step}.png`));
    this.#travel(waiting && step === 0 && !lessMotion.matches && !document.hidden);
    if (!waiting || !hint.textContent) return;
    this.#layOut(hint, () => {
      const { width } = byOutlet("inputLevel").getBoundingClientRect();
      fit(hint, metrics.promptRoom - GAP - width);
    });
  }

  // A light goes through the dots, or stands.
  #travel(on) {
    if (on === Boolean(this.#timer)) return;
    clearInterval(this.#timer);
    for (const dot of this.#dots) dot.style.opacity = "";
    this.#timer = on ? setInterval(() => this.#travelOn(), STEP) : 0;
  }

  #travelOn() {
    this.#phase = (this.#phase + STEP / ROUND) % 1;
    this.#dots.forEach((dot, index) => {
      const glow = 0.5 + 0.5 * Math.cos(2 * Math.PI * (this.#phase - index / 4));
      dot.style.opacity = 0.25 + 0.65 * glow;
    });
  }

  // For who asks a screen reader; what is spoken of its own accord comes from the tuner.
  #speakable(level) {
    const texts = this.#texts;
    const note = this.#of("noteDisplay").text;
    const frequency = this.#of("freq_label").text;
    const green = this.#of("LEDDisplay").image.startsWith("green");
    const quiet = level >= 1 && level <= TOO_QUIET;
    put(byOutlet("noteDisplay"), "aria-label", note && `${texts.of("NoteName")} ${note}`);
    put(
      byOutlet("freq_label"),
      "aria-label",
      `${texts.of("ReadOut")}, ${frequency || texts.of(quiet ? "HeardTooQuiet" : "ListeningTitle")}`,
    );
    put(
      byId("lamp"),
      "aria-label",
      green && note ? texts.of("NoteInTune", note) : texts.of(green ? "InTune" : "NotInTune"),
    );
  }
}
