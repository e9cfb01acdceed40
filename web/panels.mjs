// The four panels over the room: tuning fork, chart, settings, about. One of them at most is open.
import { MicrophoneChooser, setUpPresets, setUpSlider, setUpStepper } from "./controls.mjs";
import { keepFitting } from "./fit.mjs";
import { followMetrics } from "./panel-metrics.mjs";
import { drawingOf } from "./pictures.mjs";
import { Sheet } from "./sheet.mjs";

const DONE = 3000; // milliseconds for which it is said that fine hearing is on

function outlet(name, root) {
  return root.querySelector(`[data-outlet="${name}"]`);
}

// When the settings close, the main screen appears again, so that what was changed is true at once.
function setUpSettings(sheet, tuner) {
  const { element } = sheet;
  setUpStepper(element.querySelector(".stepper"));
  setUpPresets(element.querySelector(".presets"));
  setUpSlider(outlet("micSensitivitySlider", element));
  const list = outlet("microphoneChoices", element);
  const row = element.querySelector("[aria-controls]");
  const chooser = new MicrophoneChooser(row, list, (part) => sheet.reveal(part));
  sheet.fold = () => chooser.fold();
  sheet.onClose = () => {
    chooser.fold();
    tuner.perform("returnToMainScreen");
  };
}

// Entering the fork keeps the beep of the tuner quiet; returning to the main screen stops the tone.
function setUpFork(sheet, tuner, texts) {
  const { element } = sheet;
  const note = outlet("tfnoteDisplay", element);
  const stop = outlet("stopTFButton", element);
  const tones = [...element.querySelectorAll(".tone")];
  const follow = () => {
    const sounding = stop.disabled ? "" : note.textContent;
    for (const tone of tones) {
      tone.setAttribute("aria-pressed", tone.dataset.argument === sounding);
    }
    note.closest(".fork").toggleAttribute("data-silent", !note.textContent);
    stop.setAttribute("aria-label", texts.of(stop.disabled ? "StopUnavailable" : "StopTitle"));
  };
  for (const part of [note, stop]) part.addEventListener("outlet", follow);
  // It is about to be unavailable: the focus would be lost with it.
  stop.addEventListener("click", () => {
    if (document.activeElement === stop) tones[0].focus();
  });
  follow();
  sheet.onOpen = () => tuner.perform("disableTemporarilySoundConfirmation");
  sheet.onClose = () => {
    tuner.perform("enableSoundConfirmation");
    tuner.perform("returnToMainScreen");
  };
}

// Shows the drawing of a chart in the page itself: as an image it would have none of its fonts.
async function drawChart(place, picture) {
  place.replaceChildren();
  if (!picture) return;
  const answer = await fetch(drawingOf(picture));
  if (!answer.ok || place.dataset.image !== picture) return;
  const drawing = new DOMParser().parseFromString(await answer.text(), "image/svg+xml");
  place.replaceChildren(document.adoptNode(drawing.documentElement));
}

// Below the chart: which string the lamp cannot hear, and the way out of it. After that was taken it
// says so for a while, and keeps its room until the panel closes.
function setUpByEar(sheet, texts, announce) {
  const place = sheet.element.querySelector(".by-ear");
  const done = place.querySelector(".by-ear-done");
  const button = outlet("fineHearingButton", place);
  const take = () => {
    place.style.minHeight = `${place.offsetHeight}px`;
    done.hidden = false;
    setTimeout(() => (done.hidden = true), DONE);
    sheet.closeButton.focus({ preventScroll: true });
    announce(texts.of("FineHearingIsOn"));
  };
  button.addEventListener("click", take); // bubbles on: the button goes after it
  sheet.onClose = () => {
    place.style.minHeight = "";
    done.hidden = true;
  };
}

function setUpChart(sheet, texts, announce) {
  const picture = outlet("chartDisplay", sheet.element);
  picture.addEventListener("outlet", ({ detail }) => {
    if (detail.property !== "image") return;
    drawChart(picture, detail.value).catch(() => {}); // without it the rows still tell everything
  });
  setUpByEar(sheet, texts, announce);
}

// Sets up all of `#panels` and the buttons that open them, [data-panel]. `announce(text)` speaks.
// Before the tuner starts: the panels follow what it tells.
export function setUpPanels(tuner, texts, announce) {
  const root = document.getElementById("panels");
  const room = document.getElementById("screen");
  const sheets = {};
  for (const element of root.querySelectorAll(".sheet")) {
    sheets[element.dataset.sheet] = new Sheet(element, room);
  }
  setUpFork(sheets.fork, tuner, texts);
  setUpChart(sheets.chart, texts, announce);
  setUpSettings(sheets.settings, tuner);
  followMetrics(root);
  keepFitting(root);

  const opened = () => Object.values(sheets).find((sheet) => sheet.isOpen);
  for (const button of document.querySelectorAll("[data-panel]")) {
    button.setAttribute("aria-haspopup", "dialog");
    button.addEventListener("click", () => sheets[button.dataset.panel].open(button));
  }
  root.querySelector(".scrim").addEventListener("click", () => opened()?.close());
  document.addEventListener("keydown", (event) => {
    const sheet = event.key === "Escape" && opened();
    if (!sheet) return;
    event.preventDefault();
    if (!sheet.fold()) sheet.close();
  });
}
