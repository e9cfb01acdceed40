// The page as a case sees it: what it shows, by the names of the screen table, and what it did.
import { until } from "./surroundings.mjs";

export const START = "#start button";

export class Page {
  remarks = []; // figures for the report
  #since = 0; // when the recording began, in milliseconds of the machine's clock

  constructor({ browser, engine, site, sound, recording }) {
    Object.assign(this, { browser, engine, site, sound, recording });
  }

  // Until there is something to tap. Again is no reload: in Firefox's driver that goes past the worker.
  async open(query = "") {
    await this.browser.go(this.site.url + query);
    await until("there is something to tap", () =>
      this.browser.run((start) => document.querySelector(start)?.innerText.trim(), START),
    );
  }
  async listen(query) {
    await this.open(query);
    await this.start(() => this.browser.tap(START));
  }
  async tune(query) {
    await this.listen(query);
    await this.turnsGreen("A3");
  }

  // The first tap, or what is in its place, and the recording from its beginning.
  async start(tap) {
    this.sound?.silence();
    this.#since = Date.now();
    await tap();
    await until("the page listens", () =>
      this.browser.run((start) => {
        const prompts = document.querySelector(start).checkVisibility({ visibilityProperty: true });
        return probe.streams.length > 0 && !prompts;
      }, START),
    );
    this.sound?.play(this.recording);
  }
  playAgain() {
    this.#since = Date.now();
    this.sound?.play(this.recording);
  }

  act(action) {
    return this.browser.tap(`[data-action="${action}"]`);
  }

  // Until its sheet has stopped moving, a tap might hit something else.
  async openPanel(name) {
    await this.browser.tap(`[data-panel="${name}"]`);
    await until(`the panel ${name} is open`, () =>
      this.browser.run((name) => {
        const sheet = document.querySelector(`[data-sheet="${name}"][data-open]`);
        return sheet !== null && sheet.getAnimations().length === 0; // it has arrived
      }, name),
    );
  }

  // A part of what the probe wrote down.
  probe(part) {
    return this.browser.run((part) => window.probe[part], part);
  }

  // What of the page can be seen, in words.
  words() {
    return this.browser.run(() => document.body?.innerText.replace(/\s+/g, " ") ?? "");
  }
  says(text) {
    return until(`the page says "${text}"`, async () => (await this.words()).includes(text));
  }

  // Waits until the recording, from its beginning on, has made the lamp green, at this note.
  turnsGreen(note) {
    const since = this.#since;
    const wanted = (green) => green.at > since && (!note || green.note === note);
    return until(`${note ?? "a string"} turns green`, async () => (await this.probe("greens")).some(wanted));
  }
  soundRuns() {
    const runs = () => probe.context.state === "running";
    return until("the sound runs again", () => this.browser.run(runs));
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
  sounds(hertz) {
    return until(`${hertz} Hz sound`, async () => {
      const { frequency, whole, peak } = await this.tone(hertz);
      return peak > 0.3 && whole && Math.abs(1200 * Math.log2(frequency / hertz)) < 5;
    });
  }
  isSilent() {
    return until("the tone is silent", async () => (await this.tone(220)).peak === 0);
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
    return this.browser.run(() =>
      new Promise(requestAnimationFrame).then(() => [innerWidth, innerHeight]),
    );
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
    return `${await this.words()} ${(await this.probe("faults")).join("; ")}`;
  }
}
