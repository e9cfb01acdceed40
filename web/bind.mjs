// Binds the document to the tuner by names: elements with data-outlet="NAME" show what the tuner
// tells of NAME, elements with data-action="NAME" carry out NAME. Properties are told for
// whatever element the markup has; each is shown in the way that the element's kind allows.
import { drawingOf } from "./pictures.mjs";

// An image without a picture is not displayed, by the style sheet.
function showPicture(element, picture) {
  element.dataset.image = picture;
  if (!(element instanceof HTMLImageElement)) return;
  if (picture) element.src = drawingOf(picture);
}

// How an element shows each property. The rest, such as a list's choices, is told by the event only.
const SHOW = {
  hidden: (element, hidden) => (element.hidden = hidden),
  alpha: (element, alpha) => (element.style.opacity = alpha === 1 ? "" : alpha),
  blinking: (element, blinking) => element.classList.toggle("blinking", blinking),
  text: (element, text) => {
    if (text || !element.dataset.text) element.textContent = text; // else it keeps its caption
  },
  image: showPicture,
  backgroundImage: showPicture,
  enabled: (element, enabled) => (element.disabled = !enabled),
  on: (element, on) => {
    if ("checked" in element) element.checked = on;
    else element.setAttribute("aria-checked", on);
  },
  value: (element, value) => {
    if ("value" in element && element.type === "range") element.value = value;
    element.dataset.value = value;
  },
  level: (element, level) => (element.dataset.level = level),
};

// Shows a property of an outlet on its elements, each of which then gets an event "outlet" with
// {name, property, value} as its detail.
function show(elements, name, property, value) {
  for (const element of elements) {
    SHOW[property]?.(element, value);
    element.dispatchEvent(new CustomEvent("outlet", { detail: { name, property, value } }));
  }
}

function byOutlet(root) {
  const found = new Map();
  for (const element of root.querySelectorAll("[data-outlet]")) {
    const name = element.dataset.outlet;
    found.set(name, [...(found.get(name) ?? []), element]);
  }
  return found;
}

// What the control of an action has become by the user's hand: the value of a slider or a checkbox,
// the other state of a switch that is a button, the next value of a stepper's half (data-step), the
// line of a list's choice (data-value).
function valueOf(element, outlet, sender) {
  if (element.type === "range") return Number(element.value);
  if (element.type === "checkbox") return element.checked;
  if (element.getAttribute("role") === "switch") return !sender.on;
  if (element.dataset.step) return sender.value + Number(element.dataset.step);
  return element === outlet ? "" : (element.dataset.value ?? "");
}

// Binds all of `root`. `own` are actions of the page itself, by name: they go first. Calls `follow`
// after each change of an outlet.
export function bind(tuner, root, own, follow) {
  const elements = byOutlet(root);
  tuner.onOutlet = (name, property, value) => {
    show(elements.get(name) ?? [], name, property, value);
    follow();
  };

  const act = (event) => {
    const element = event.target.closest?.("[data-action]");
    if (!element) return;
    const input = element instanceof HTMLInputElement;
    if (input !== (event.type === (element.type === "range" ? "input" : "change"))) return;
    const action = element.dataset.action;
    if (own[action]) return own[action](element);
    const outlet = element.closest("[data-outlet]");
    const name = tuner.actions.get(action) ? outlet.dataset.outlet : "";
    const value = name ? valueOf(element, outlet, tuner.outlets.get(name)) : "";
    tuner.perform(action, name, value);
  };
  for (const type of ["click", "input", "change"]) root.addEventListener(type, act);
}
