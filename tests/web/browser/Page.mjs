// The page as a case sees it: what it shows, by the names of the screen table, and what it did.
import { until } from "./surroundings.mjs";

const START = '#start [data-action="start"]';
const GREEN = /^green(64|128)\.png$/;

export class Page {
  remarks = []; // figures for the report

  constructor({ browser, engine, site, sound, recording }) {
    Object.assign(this, { browser, engine, site, sound, recording });
  }

  remark(text) {
    this.remarks.push(text);
  }

  async open(query = "") {
    await this.browser.go(this.site.url + query);
    await this.ready();
  }
  async reload() {
    await this.browser.reload();
    await this.ready();
  }
  ready() {
    return until("there is something to tap", 15, () =>
      this.browser.run((start) => document.querySelector(start)?.innerText.trim(), START),
    );
  }

  tap(css) {
    return this.browser.tap(css);
  }
  act(action) {
    return this.tap(`[data-action="${action}"]`);
  }

  // The first tap, and the recording from its beginning.
  async listen() {
    this.sound?.silence();
    await this.tap(START);
    await until("the page listens", 10, () =>
      this.browser.run((start) => {
        const prompts = document.querySelector(start).checkVisibility({ visibilityProperty: true });
        return probe.streams.length > 0 && !prompts;
      }, START),
    );
    this.sound?.play(this.recording);
  }

  // Until its sheet has stopped moving, a tap might hit something else.
  async openPanel(name) {
    await this.tap(`[data-panel="${name}"]`);
    await until(`the panel ${name} is open`, 10, () =>
      this.browser.run((name) => {
        const sheet = document.querySelector(`[data-sheet="${name}"][data-open]`);
        return sheet !== null && sheet.getAnimations().length === 0; // it has arrived
      }, name),
    );
  }

  // What the probe wrote down: all of it, or one part.
  async probe(part) {
    const all = await this.browser.run(() => {
      const { tone, context, streams, ...rest } = window.probe;
      return { ...rest, streams: streams.map(({ at, wanted }) => ({ at, wanted })) };
    });
    return part ? all[part] : all;
  }

  // Of the elements of that name the one that can be seen: its text and its picture's name.
  shown(name) {
    return this.browser.run((name) => {
      const all = document.querySelectorAll(`[data-outlet="${name}"]`);
      const element = [...all].find((one) => one.getClientRects().length > 0);
      return { text: element?.textContent.trim() ?? "", image: element?.dataset.image ?? "" };
    }, name);
  }

  // What of the page can be seen, in words.
  words() {
    return this.browser.run(() => document.body?.innerText.replace(/\s+/g, " ") ?? "");
  }
  says(text, seconds = 5) {
    return until(`the page says "${text}"`, seconds, async () => (await this.words()).includes(text));
  }

  // Waits for a string's green, whichever of the two lamps the layout has.
  turnsGreen(note, seconds = 15) {
    return until(`${note || "a string"} turns green`, seconds, async () => {
      const lamps = [await this.shown("LEDDisplay"), await this.shown("LEDDisplay128")];
      const display = await this.shown("noteDisplay");
      return lamps.some(({ image }) => GREEN.test(image)) && (!note || display.text === note);
    });
  }

  // The only microphone is pulled out, and put back: for real where the engine notices it.
  async unplug() {
    await this.browser.run(() => (probe.away = "NotFoundError"));
    if (this.engine.noticesDevices) this.sound.unplug();
    else await this.browser.run(() => probe.endStreams());
  }
  async plug() {
    await this.browser.run(() => (probe.away = ""));
    if (this.engine.noticesDevices) this.sound.plug();
    else await this.browser.run(() => probe.tellDevices());
  }

  // What the tone's context plays: its peak, its pitch near `hertz`, and whether each sample is one
  // of 16 bits. It may rest while nothing sounds.
  tone(hertz) {
    return this.browser.run((hertz) => {
      if (probe.tone?.context.state !== "running") return { peak: 0 };
      const samples = new Float32Array(probe.tone.fftSize);
      probe.tone.getFloatTimeDomainData(samples);
      const periods = Math.floor(hertz / 5);
      const guess = (44100 * periods) / hertz;
      const differences = [];
      for (let lag = Math.floor(guess * 0.999); lag < guess * 1.001; lag++) {
        let sum = 0;
        for (let i = 0; i < 16000; i++) sum += (samples[i] - samples[i + lag]) ** 2;
        differences.push([sum, (44100 * periods) / lag]);
      }
      return {
        peak: Math.max(...samples.map(Math.abs)),
        frequency: differences.sort(([a], [b]) => a - b)[0][1],
        whole: samples.every((sample) => Number.isInteger(sample * 32768)),
      };
    }, hertz);
  }

  // Every text that is seen or spoken, and the language it claims to be in.
  texts() {
    return this.browser.run(() => {
      const said = new Set([document.title]);
      for (const element of document.querySelectorAll("body, body *")) {
        for (const name of ["aria-label", "alt", "title", "placeholder"]) {
          said.add(element.getAttribute(name) ?? "");
        }
        for (const { nodeType, data } of element.childNodes) {
          if (nodeType === Node.TEXT_NODE) said.add(data.trim());
        }
      }
      return { lang: document.documentElement.lang, said: [...said] };
    });
  }

  // Gives the page this room, or what comes nearest, and returns what it has.
  async resize(width, height) {
    await this.engine.resize(this.browser, width, height);
    return until("the page has its size", 5, () =>
      this.browser.run(() => new Promise(requestAnimationFrame).then(() => [innerWidth, innerHeight])),
    );
  }

  // How many different colours there are in a picture (PNG, as base64).
  coloursOf(picture) {
    return this.browser.run(async (picture) => {
      const bytes = Uint8Array.from(atob(picture), (letter) => letter.charCodeAt(0));
      const bitmap = await createImageBitmap(new Blob([bytes], { type: "image/png" }));
      const context = new OffscreenCanvas(bitmap.width, bitmap.height).getContext("2d");
      context.drawImage(bitmap, 0, 0);
      const { data } = context.getImageData(0, 0, bitmap.width, bitmap.height);
      return new Set(new Uint32Array(data.buffer)).size;
    }, picture);
  }

  // The buttons and texts that reach beyond the window, with their places. A line may: it is higher
  // than its letters.
  outside() {
    return this.browser.run(() => {
      const beyond = ({ left, top, right, bottom, height }) =>
        left < -1 || top < -0.15 * height || right > innerWidth + 1 || bottom > innerHeight + 0.1 * height;
      return [...document.querySelectorAll("button, [data-outlet]:not(img, .spoken)")]
        .filter((element) => element.checkVisibility({ visibilityProperty: true, opacityProperty: true }))
        .map((element) => [element.dataset.outlet ?? element.innerText, element.getBoundingClientRect()])
        .filter(([, place]) => beyond(place))
        .map(([name, { left, top, right, bottom }]) => [name, left, top, right, bottom].join(" "));
    });
  }

  // For a failure: what is on the screen, and what went wrong.
  async describe() {
    const { faults } = await this.probe();
    return `${await this.words()} ${faults.join("; ")}`;
  }
}
