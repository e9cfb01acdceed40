// run.mjs ENGINE [WORDS]: the cases, or those whose name has these words, in one engine, with what is
// in build/web and build/release. Ends with status 0 when all of them have passed, and with 77 when
// nothing can run here.
import { existsSync } from "node:fs";

import { cases } from "./cases.mjs";
import * as engines from "./engines.mjs";
import { Page } from "./Page.mjs";
import { prepare, recording, serve, SoundServer } from "./surroundings.mjs";

const CASE_LIMIT = 120; // seconds
const ALL_LIMIT = 600;

const [name, words = ""] = process.argv.slice(2);
const engine = engines[name];
if (!engine) {
  console.log(`run.mjs: no engine '${name}', only ${Object.keys(engines).join(", ")}`);
  process.exit(2);
}

function limited(seconds, work) {
  let timer;
  const late = new Promise((_, reject) => {
    timer = setTimeout(() => reject(new Error(`not done after ${seconds} s`)), 1000 * seconds);
  });
  return Promise.race([work, late]).finally(() => clearTimeout(timer));
}

// One browser serves all cases with the usual microphone, until one fails: each finds an origin where
// nobody has been.
let usual = null;
async function attempt(test, sound) {
  const { microphone } = test;
  const site = await serve(test);
  let browser, page;
  let passed = false;
  try {
    browser = (!microphone && usual) || (await engine.begin({ recording, sound, microphone }));
    page = new Page({ browser, engine, site, sound, recording });
    await limited(CASE_LIMIT, test.run(page));
    const faults = [...(await page.probe("faults")), ...((await engine.complaints?.(browser)) ?? [])];
    const unexpected = faults.filter((fault) => !test.faults?.test(fault));
    if (unexpected.length > 0) throw new Error(`on the console: ${unexpected.join("; ")}`);
    await browser.go("about:blank");
    passed = true;
    return page.remarks;
  } catch (error) {
    const seen = page && (await limited(5, page.describe()).catch(String));
    throw new Error(`${error.message}\n  the page: ${seen ?? "none"}`);
  } finally {
    site.close();
    sound?.silence();
    if (!microphone) usual = passed ? browser : null;
    if (browser !== usual) await browser?.end();
  }
}

const missing = engine.programs.find((program) => !existsSync(program));
if (missing) {
  console.log(`[  SKIPPED ] ${name}.all (${missing} is not installed)`);
  process.exit(77);
}
prepare();
setTimeout(() => {
  console.log(`${name}: not done after ${ALL_LIMIT} s`);
  process.exit(1);
}, 1000 * ALL_LIMIT).unref();

const sound = engine.sound ? await SoundServer.begin() : null;
const count = { passed: 0, failed: 0 };
for (const test of cases.filter((test) => test.name.includes(words))) {
  const begun = Date.now();
  const seconds = () => `${((Date.now() - begun) / 1000).toFixed(1)} s`;
  try {
    const remarks = await attempt(test, sound);
    console.log(`${name}: passed: ${[test.name, ...remarks, seconds()].join(", ")}`);
    count.passed++;
  } catch (error) {
    console.log(`${name}: FAILED: ${test.name}, ${seconds()}\n  ${error.message}`);
    count.failed++;
  }
}
await usual?.end();
console.log(`${name}: ${count.passed} passed, ${count.failed} failed`);
process.exit(count.failed > 0 || count.passed === 0 ? 1 : 0);
