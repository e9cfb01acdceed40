// The controls of the settings, as far as the browser has none of that kind: what they show follows
// the event "outlet" that bind.mjs sends, and what the user does with them is bound there.

const HOLD = 400; // milliseconds until a stepper's half that is held repeats, and how fast
const REPEAT = 90;
const UNFOLDING = 200;
const FOLDING = 150; // the mark moves before the list goes

const ARROWS = { ArrowLeft: -1, ArrowUp: -1, ArrowRight: 1, ArrowDown: 1 };

// A half that is held steps again and again; the arrow keys step from either half.
export function setUpStepper(stepper) {
  const [lower, raise] = stepper.querySelectorAll("button");
  let timer = 0;
  let repeated = false;
  const again = (half) => {
    repeated = true;
    half.click();
    timer = setTimeout(again, REPEAT, half);
  };
  for (const half of [lower, raise]) {
    half.addEventListener("pointerdown", () => {
      repeated = false;
      timer = setTimeout(again, HOLD, half);
    });
    for (const end of ["pointerup", "pointerleave", "pointercancel"]) {
      half.addEventListener(end, () => clearTimeout(timer));
    }
    half.addEventListener("contextmenu", (event) => event.preventDefault());
  }
  // The click of the release itself is none after a hold.
  const swallow = (event) => {
    if (event.isTrusted && repeated && event.detail > 0) event.stopPropagation();
  };
  stepper.addEventListener("click", swallow, { capture: true });
  stepper.addEventListener("keydown", (event) => {
    const { key } = event;
    if (!ARROWS[key]) return;
    event.preventDefault();
    (key === "ArrowRight" || key === "ArrowUp" ? raise : lower).click();
  });
}

// The knob shows where the slider is, as a number too.
export function setUpSlider(input) {
  const follow = () => {
    input.parentElement.style.setProperty("--value", input.value);
    input.nextElementSibling.textContent = input.value;
  };
  for (const type of ["input", "outlet"]) input.addEventListener(type, follow);
  follow();
}

// A group of buttons that are radio buttons: one place in the order of the keys, the chosen one's;
// arrows go on from there, and choose nothing.
export class RadioGroup {
  constructor(group) {
    this.group = group;
    group.addEventListener("keydown", (event) => {
      const step = ARROWS[event.key];
      if (!step) return;
      event.preventDefault();
      event.stopPropagation();
      const { buttons } = this;
      const next = buttons.indexOf(document.activeElement) + step;
      buttons[(next + buttons.length) % buttons.length].focus();
    });
  }

  get buttons() {
    return [...this.group.children];
  }

  choose(chosen) {
    const { buttons } = this;
    for (const button of buttons) button.setAttribute("aria-checked", button === chosen);
    for (const button of buttons) button.tabIndex = button === (chosen ?? buttons[0]) ? 0 : -1;
  }
}

// Of the presets the one with a background picture is chosen.
export function setUpPresets(group) {
  const radios = new RadioGroup(group);
  const follow = () => radios.choose(radios.buttons.find((button) => button.dataset.image));
  for (const button of radios.buttons) button.addEventListener("outlet", follow);
  follow();
}

const TAIL = 8; // letters of a device's name that stay where it is too long: its end tells it apart

// Shows a device's name; one that is too long is elided in its middle.
function showName(element, name) {
  const letters = [...name];
  const parts = [letters.slice(0, -TAIL), letters.slice(-TAIL)].map((part) => {
    return Object.assign(document.createElement("span"), { textContent: part.join("") });
  });
  element.classList.add("device");
  element.replaceChildren(...(letters.length > 3 * TAIL ? parts : [name]));
  return element;
}

// A name in two parts would be read with a gap: what is spoken is told as a whole.
function spoken(...texts) {
  return texts.filter(Boolean).join(", ");
}

// A line of the list: a name and, after a tab, what is to be said of it.
function choiceOf(line, index, action) {
  const button = document.createElement("button");
  button.type = "button";
  button.dataset.action = action;
  button.dataset.value = index;
  button.setAttribute("role", "radio");
  const [name, remark] = line.split("\t");
  button.append(showName(document.createElement("b"), name));
  if (remark) button.append(showName(document.createElement("small"), remark));
  button.setAttribute("aria-label", spoken(name, remark));
  return button;
}

// The microphone in use, and the list of all that unfolds below it.
export class MicrophoneChooser {
  #row;
  #list;
  #radios;
  #reveal;

  // `row` unfolds `list`; `reveal` brings an element into sight.
  constructor(row, list, reveal) {
    this.#reveal = reveal;
    this.#row = row;
    this.#list = list;
    this.#radios = new RadioGroup(list);
    row.addEventListener("click", () => (this.isOpen ? this.fold() : this.#unfold()));
    row.addEventListener("keydown", (event) => {
      if (event.key !== "ArrowDown") return;
      event.preventDefault();
      this.#unfold();
    });
    list.addEventListener("outlet", ({ detail }) => this.#show(detail));
    const [caption, inUse] = row.querySelectorAll("[data-outlet]");
    const follow = () => {
      showName(inUse, inUse.textContent);
      row.setAttribute("aria-label", spoken(caption.textContent, inUse.textContent));
    };
    for (const part of [caption, inUse]) part.addEventListener("outlet", follow);
    list.addEventListener("click", ({ target }) => {
      if (target.closest("button")) setTimeout(() => this.fold(), FOLDING);
    });
    this.#row.hidden = true; // until there is something to choose
  }

  get isOpen() {
    return this.#row.getAttribute("aria-expanded") === "true";
  }

  // False when it is folded.
  fold() {
    if (!this.isOpen) return false;
    if (this.#list.contains(document.activeElement)) this.#row.focus();
    this.#row.setAttribute("aria-expanded", "false");
    return true;
  }

  #unfold() {
    this.#row.setAttribute("aria-expanded", "true");
    if (this.#row.matches(":focus-visible")) this.#chosen()?.focus({ preventScroll: true });
    setTimeout(() => this.isOpen && this.#reveal(this.#list), UNFOLDING);
  }

  #chosen() {
    return this.#radios.buttons.find((button) => button.tabIndex === 0);
  }

  #show({ property, value }) {
    if (property === "choices") {
      const focused = this.#radios.buttons.indexOf(document.activeElement);
      const { action } = this.#list.dataset;
      const lines = value ? value.split("\n") : [];
      this.#list.replaceChildren(...lines.map((line, index) => choiceOf(line, index, action)));
      this.#row.hidden = lines.length === 0;
      this.#choose();
      this.#radios.buttons[focused]?.focus();
    } else if (property === "chosen") {
      this.#list.dataset.chosen = value;
      this.#choose();
    }
  }

  #choose() {
    this.#radios.choose(this.#radios.buttons[Number(this.#list.dataset.chosen ?? 0)]);
  }
}
