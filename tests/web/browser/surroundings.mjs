// What the tests put around a browser: child processes that end with the test, a web server of the
// site for each case, and a sound server with a microphone that hears what a test plays.
import { execFileSync, spawn, spawnSync } from "node:child_process";
import { createServer } from "node:http";
import { copyFileSync, mkdirSync, mkdtempSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { extname, join } from "node:path";
import { fileURLToPath } from "node:url";

const PATIENCE = 30; // seconds for anything to happen, on a machine that does something else, too

const root = fileURLToPath(new URL("../../..", import.meta.url));

export const folder = mkdtempSync(join(tmpdir(), "endpin-browsers-"));
export const recording = join(folder, "cello.wav");
const site = join(folder, "site");
const running = new Set();

process.on("exit", () => {
  for (const child of running) stop(child);
  rmSync(folder, { recursive: true, force: true, maxRetries: 5 });
});
for (const signal of ["SIGINT", "SIGTERM", "SIGHUP"]) process.on(signal, () => process.exit(1));

// Makes the recording, and the site from what is built: a copy, which nobody builds anew meanwhile,
// with the probe before the page's own scripts.
export function prepare({ probed = true } = {}) {
  const built = (place) => join(root, "build", place);
  execFileSync(built("release/endpin-cello"), [recording]);
  execFileSync(join(root, "web/site.sh"), [built("web"), built("release"), site]);
  if (!probed) return;
  const page = readFileSync(join(site, "index.html"), "utf8");
  const withProbe = page.replace(/<meta charset[^>]*>/, '$&<script src="probe.js"></script>');
  if (withProbe === page) throw new Error("index.html has no place for the probe");
  writeFileSync(join(site, "index.html"), withProbe);
  copyFileSync(new URL("probe.js", import.meta.url), join(site, "probe.js"));
  execFileSync(join(root, "web/version.sh"), [site]);
}

// What `holds` returns as soon as that is anything.
export async function until(what, holds) {
  const deadline = Date.now() + 1000 * PATIENCE;
  do {
    const held = await holds();
    if (held) return held;
    await new Promise((resolve) => setTimeout(resolve, 40));
  } while (Date.now() < deadline);
  throw new Error(`not within ${PATIENCE} s: ${what}`);
}

// Starts a program in a process group of its own. `said` is what it has written so far.
export function start(command, environment = {}) {
  const child = spawn("setpriv", ["--pdeathsig", "KILL", ...command], {
    detached: true,
    env: { ...process.env, ...environment },
    stdio: ["ignore", "pipe", "pipe"],
  });
  child.said = "";
  const keep = (text) => (child.said = (child.said + text).slice(-20_000));
  child.stdout.on("data", keep);
  child.stderr.on("data", keep);
  running.add(child);
  return child;
}

// With everything that it started.
export function stop(child) {
  running.delete(child);
  try {
    process.kill(-child.pid, "SIGKILL");
  } catch {
    // It has ended already.
  }
}

// What `child` says of this kind, as soon as it does.
export function heard(child, pattern) {
  return until(`${child.spawnargs[3]} says ${pattern}`, () => {
    if (child.exitCode !== null) throw new Error(`${child.spawnargs[3]} ended: ${child.said}`);
    return child.said.match(pattern);
  });
}

// Types by suffix: those that the server for people knows, and those that its configuration adds.
const TYPES = { ".html": "text/html", ".css": "text/css", ".png": "image/png" };
const configuration = readFileSync(join(root, "web/httpd.conf"), "utf8");
for (const [, suffix, type] of configuration.matchAll(/^(\.\w+):(.+)$/gm)) TYPES[suffix] = type;

// The site on a port of its own, and so for the browser an origin where nobody has been. `broken`, by
// path, makes of a file's bytes those that are sent, or a promise of them.
export async function serve({ broken = {} } = {}) {
  const server = createServer(async (request, answer) => {
    const path = new URL(request.url, "http://site").pathname.replace(/\/$/, "/index.html");
    try {
      const file = readFileSync(join(site, path));
      const body = path in broken ? await broken[path](file) : file;
      const type = TYPES[extname(path)] ?? "application/octet-stream";
      answer.writeHead(200, { "content-type": type, "cache-control": "no-cache" }).end(body);
    } catch {
      answer.writeHead(404).end();
    }
  });
  await new Promise((resolve) => server.listen(0, "127.0.0.1", resolve));
  return {
    url: `http://localhost:${server.address().port}/`,
    broken, // may change meanwhile
    close: () => {
      server.close();
      server.closeAllConnections();
    },
  };
}

const MICROPHONE = "module-remap-source source_name=virtmic master=micfeed.monitor";

// A private PulseAudio: a speaker that goes nowhere, and a microphone that hears what is played.
export class SoundServer {
  static async begin() {
    const server = new SoundServer();
    const home = join(folder, "sound");
    mkdirSync(home, { mode: 0o700 });
    const socket = join(home, "socket");
    server.environment = { HOME: home, XDG_RUNTIME_DIR: home, PULSE_SERVER: `unix:${socket}` };
    const modules = [
      `module-native-protocol-unix auth-anonymous=1 auth-cookie-enabled=0 socket=${socket}`,
      "module-null-sink sink_name=speaker norewinds=1 rate=48000",
      "module-null-sink sink_name=micfeed norewinds=1 rate=48000 channels=1",
      MICROPHONE,
    ];
    const options = ["--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1"];
    options.push("--disable-shm=yes", "--realtime=no", "--high-priority=no");
    const loads = modules.flatMap((module) => ["-L", module]);
    start(["nice", "-n", "-15", "pulseaudio", "-n", ...options, ...loads], server.environment);
    await until("the sound server answers", () => server.control("set-default-sink speaker"));
    server.control("set-default-source virtmic");
    return server;
  }

  control(words) {
    const options = { env: { ...process.env, ...this.environment }, timeout: 5000 };
    return spawnSync("pactl", words.split(" "), options).status === 0;
  }

  // Plays a file into the microphone from now on.
  play(file) {
    this.silence();
    const command = ["nice", "-n", "-15", "paplay", "--latency-msec=300", "--device=micfeed", file];
    this.player = start(command, this.environment);
  }
  silence() {
    if (this.player) stop(this.player);
  }

  unplug() {
    this.control("unload-module module-remap-source");
  }
  plug() {
    this.control(`load-module ${MICROPHONE}`);
    this.control("set-default-source virtmic");
  }
}
