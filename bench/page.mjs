// page.mjs [SECONDS [MINUTES]]: what the page costs in Chromium, hearing the sampled cello. Until it
// stands, each time with a new profile; processor time of all of Chromium's processes, and of the
// page's own alone, over SECONDS (60) of listening, of the same page idle and with an open microphone
// alone; memory over MINUTES (10) of listening. `./dev web --measure` runs it, on a machine that does nothing else.
import { readdirSync, readFileSync } from "node:fs";

import { chromium } from "../tests/web/browser/engines.mjs";
import { prepare, recording, serve } from "../tests/web/browser/surroundings.mjs";

const TICKS_PER_SECOND = 100; // of the process times in /proc
const SETTLE = 5; // seconds after something has begun

const [seconds = 60, minutes = 10] = process.argv.slice(2).map(Number);
const pause = (length) => new Promise((resolve) => setTimeout(resolve, 1000 * length));
const median = (values) => [...values].sort((a, b) => a - b)[Math.floor(values.length / 2)];

// Everything that runs below this program: {id, parent, name, ticks}.
function descendants() {
  const all = readdirSync("/proc").filter(Number).flatMap((id) => {
    try {
      const [, name, rest] = /\((.*)\) (.*)/s.exec(readFileSync(`/proc/${id}/stat`, "utf8"));
      const [, parent, ...numbers] = rest.split(" ");
      return [{ id: Number(id), parent: Number(parent), name, ticks: Number(numbers[9]) + Number(numbers[10]) }];
    } catch {
      return []; // it has ended meanwhile
    }
  });
  const below = [{ id: process.pid }];
  for (const { id } of below) below.push(...all.filter(({ parent }) => parent === id));
  return below.slice(1).filter(({ name }) => name.startsWith("chrom") && name !== "chromedriver");
}

// Whether the process is a page's own: the others play, draw and keep for all pages.
const isPage = ({ id }) => readFileSync(`/proc/${id}/cmdline`, "utf8").includes("--type=renderer");

// Percents of one core over that many seconds: of all processes, and of the page's.
async function shares(length) {
  const sum = (some) => some.reduce((all, { ticks }) => all + ticks, 0);
  const sums = (all) => [sum(all), sum(all.filter(isPage))];
  const [begun, before] = [performance.now(), sums(descendants())];
  await pause(length);
  const elapsed = (performance.now() - begun) / 1000;
  return sums(descendants()).map((ticks, i) => (100 * (ticks - before[i])) / TICKS_PER_SECOND / elapsed);
}

// Kibibytes of all processes that are no part of a file, after the page's garbage was collected.
async function memory(browser) {
  await browser.send("devtools", { cmd: "HeapProfiler.collectGarbage", params: {} });
  return descendants().reduce((all, { id }) => {
    const rollup = readFileSync(`/proc/${id}/smaps_rollup`, "utf8");
    return all + Number(/^Anonymous: +(\d+)/m.exec(rollup)[1]);
  }, 0);
}

async function withPage(work) {
  const site = await serve();
  const browser = await chromium.begin({ recording });
  try {
    await browser.go(site.url);
    await browser.run(async () => {
      while (performance.getEntriesByName("ready").length === 0) {
        await new Promise((resolve) => setTimeout(resolve, 10));
      }
    });
    return await work(browser);
  } finally {
    await browser.end();
    site.close();
  }
}

async function measureLoading() {
  const loads = [];
  for (let i = 0; i < 5; i++) {
    const times = (browser) =>
      browser.run(() => ["first-paint", "ready"].map((name) => performance.getEntriesByName(name)[0].startTime));
    loads.push(await withPage(times));
  }
  const [paint, ready] = [0, 1].map((i) => Math.round(median(loads.map((load) => load[i]))));
  console.log(`first paint ${paint} ms, ready ${ready} ms (medians of 5, new profiles)`);
}

// Any page that listens: an open microphone in a running context, and nobody who hears it.
async function openMicrophone() {
  const context = new AudioContext({ latencyHint: 0.1 });
  const plain = { echoCancellation: false, noiseSuppression: false, autoGainControl: false };
  const stream = await navigator.mediaDevices.getUserMedia({ audio: plain });
  const silence = new GainNode(context, { gain: 0 });
  context.createMediaStreamSource(stream).connect(silence).connect(context.destination);
  await context.resume();
  globalThis.bareMicrophone = { context, stream };
}
async function closeMicrophone() {
  const { context, stream } = globalThis.bareMicrophone;
  for (const track of stream.getTracks()) track.stop();
  await context.close();
}

async function measureListening(browser) {
  const settled = async () => {
    await pause(SETTLE);
    return shares(seconds);
  };
  const idle = await settled();
  await browser.run(openMicrophone);
  const bare = await settled();
  await browser.run(closeMicrophone);
  await browser.tap(".tap");
  const listening = await settled();
  const of = (value) => `${value.toFixed(1)} %`;
  for (const [i, who] of ["all processes", "the page's own process"].entries()) {
    const more = `${of(listening[i] - idle[i])} more`;
    console.log(`${who}: listening ${of(listening[i])} of a core, idle ${of(idle[i])}: ${more}`);
    console.log(`  of these, an open microphone that nobody hears: ${of(bare[i] - idle[i])}`);
  }

  const sizes = [await memory(browser)];
  for (let minute = 0; minute < minutes; minute++) {
    await pause(60);
    sizes.push(await memory(browser));
  }
  const figures = sizes.map((size) => (size / 1024).toFixed(1)).join(" ");
  console.log(`memory of all processes, MiB, a minute apart: ${figures}`);
}

prepare({ probed: false });
await measureLoading();
await withPage(measureListening);
process.exit();
