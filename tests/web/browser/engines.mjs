// The three browser engines: how each is started, hears a recording, and what it cannot do.
import { existsSync, mkdirSync, readFileSync, writeFileSync } from "node:fs";
import { join } from "node:path";

import { folder, heard, start, until } from "./surroundings.mjs";
import { Browser } from "./webdriver.mjs";

const HIDDEN = 2000; // milliseconds that a page is hidden

let homes = 0;
function newHome() {
  const home = join(folder, `home-${++homes}`);
  mkdirSync(home, { mode: 0o700 });
  return home;
}

// A program that starts another one and ends with whoever starts it: drivers leave browsers behind.
function mortal(program, home) {
  const script = join(home, "browser");
  writeFileSync(script, `#!/bin/sh\nexec setpriv --pdeathsig KILL ${program} "$@"\n`, { mode: 0o755 });
  return script;
}

// Makes the window so large that the page has this room.
async function resizeWindow(browser, width, height) {
  for (let attempt = 0; attempt < 3; attempt++) {
    const [more, higher] = await browser.run(() => [outerWidth - innerWidth, outerHeight - innerHeight]);
    await browser.send("resize", { width: width + more, height: height + higher });
  }
}

// Another tab before this one, for a while.
async function hideBehindTab(browser) {
  const handle = await browser.send("window");
  const other = await browser.send("openWindow", { type: "tab" });
  await browser.send("toWindow", { handle: other.handle });
  await new Promise((resolve) => setTimeout(resolve, HIDDEN));
  await browser.send("closeWindow");
  await browser.send("toWindow", { handle });
}

// A stand-in, for a browser whose tabs are windows: the page is told so, and nothing else.
function sayHidden(browser) {
  return browser.run(async (milliseconds) => {
    for (const hidden of [true, false]) {
      Object.defineProperty(document, "hidden", { value: hidden, configurable: true });
      document.dispatchEvent(new Event("visibilitychange"));
      if (hidden) await new Promise((resolve) => setTimeout(resolve, milliseconds));
    }
  }, HIDDEN);
}

// Chromium's microphone is the recording itself, from its beginning each time it is opened: no sound
// server can tear gaps into it. `microphone`: "granted", "refused" or "missing".
export const chromium = {
  name: "chromium",
  // What stands in red on its console since it was asked last.
  complaints: async (browser) =>
    (await browser.send("log", { type: "browser" })).map(({ message }) => message),
  hide: hideBehindTab,
  resize: (browser, width, height) =>
    browser.send("devtools", {
      cmd: "Emulation.setDeviceMetricsOverride",
      params: { width, height, deviceScaleFactor: 2, mobile: true },
    }),
  programs: ["/usr/bin/chromium", "/usr/bin/chromedriver"],
  async begin({ recording, microphone = "granted" }) {
    const home = newHome();
    const args = ["--headless=new", "--no-sandbox", `--user-data-dir=${join(home, "profile")}`];
    args.push("--disable-dev-shm-usage", "--autoplay-policy=user-gesture-required");
    if (microphone !== "missing") {
      args.push("--use-fake-device-for-media-stream", `--use-file-for-fake-audio-capture=${recording}`);
      args.push(`--use-fake-ui-for-media-stream${microphone === "refused" ? "=deny" : ""}`);
    }
    const environment = { HOME: home, XDG_RUNTIME_DIR: home, PULSE_SERVER: "unix:/nowhere" };
    const begun = async () => {
      const driver = start(["chromedriver", "--port=0"], environment);
      const [, port] = await heard(driver, /started successfully on port (\d+)/);
      return { driver, port };
    };
    // The port that it finds free for one kind of address may be taken for the other.
    const { driver, port } = await begun().catch(begun).catch(begun);
    return Browser.begin({
      programs: [driver],
      port,
      capabilities: {
        "goog:chromeOptions": { binary: mortal("/usr/bin/chromium", home), args },
        "goog:loggingPrefs": { browser: "SEVERE" },
      },
    });
  },
};

export const firefox = {
  name: "firefox",
  noticesDevices: true,
  hide: hideBehindTab,
  resize: resizeWindow,
  programs: ["/usr/bin/firefox-esr", "/usr/bin/pulseaudio"],
  sound: true,
  async begin({ sound, microphone = "granted" }) {
    const home = newHome();
    const preferences = {
      "marionette.port": 0,
      "media.autoplay.default": 1, // only after a gesture
      "media.navigator.permission.disabled": microphone !== "refused",
      "permissions.default.microphone": microphone === "refused" ? 2 : 0,
    };
    const lines = Object.entries(preferences).map(
      ([name, value]) => `user_pref("${name}", ${JSON.stringify(value)});`,
    );
    writeFileSync(join(home, "user.js"), lines.join("\n"));
    const environment = { ...sound.environment, HOME: home };
    if (microphone === "missing") environment.PULSE_SERVER = "unix:/nowhere";
    const command = ["firefox-esr", "--headless", "--marionette", "--no-remote", "--profile", home];
    const program = start(command, environment);
    const portFile = join(home, "MarionetteActivePort");
    const port = () => existsSync(portFile) && Number(readFileSync(portFile));
    return Browser.begin({
      programs: [program],
      port: await until("firefox opens its port", port),
      socket: true,
    });
  },
};

const MINI_BROWSER = "/usr/lib/x86_64-linux-gnu/webkit2gtk-4.1/MiniBrowser";

export const webkit = {
  name: "webkit",
  hide: sayHidden,
  resize: resizeWindow,
  standIns: { refused: "?stand-in=microphone-refused", missing: "?stand-in=microphone-missing" },
  programs: [MINI_BROWSER, "/usr/bin/WebKitWebDriver", "/usr/bin/Xvfb", "/usr/bin/pulseaudio"],
  sound: true,
  async begin({ sound }) {
    const home = newHome();
    const screen = start(["Xvfb", "-displayfd", "1", "-screen", "0", "1600x1400x24", "-nolisten", "tcp"]);
    const [, display] = await heard(screen, /^(\d+)\n/m);
    const port = 14500 + Number(display); // a display is nobody else's
    const environment = { ...sound.environment, HOME: home, DISPLAY: `:${display}`, GTK_A11Y: "none" };
    const driver = start(["WebKitWebDriver", `--port=${port}`], environment);
    const answers = () => fetch(`http://127.0.0.1:${port}/status`).then(() => true, () => false);
    await until("WebKit's driver answers", answers);
    return Browser.begin({
      programs: [driver, screen],
      port,
      capabilities: {
        "webkitgtk:browserOptions": {
          binary: mortal(MINI_BROWSER, home),
          args: ["--automation", "--enable-media-stream=true"],
        },
      },
    });
  },
};
