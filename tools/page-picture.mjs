// page-picture.mjs FILE.jpg: the page on a phone, with the sampled cello before its microphone, when
// its second string is in tune. `./dev web --picture` runs it.
import { writeFileSync } from "node:fs";

import { chromium } from "../tests/web/browser/engines.mjs";
import { Page } from "../tests/web/browser/Page.mjs";
import { prepare, recording, serve } from "../tests/web/browser/surroundings.mjs";

const [file] = process.argv.slice(2);
prepare();
const site = await serve();
const browser = await chromium.begin({ recording });
const page = new Page({ browser, engine: chromium, site, recording });
await chromium.resize(browser, 390, 844);
await page.listen("?lang=en");
await page.turnsGreen("D3");
const { data } = await browser.send("devtools", {
  cmd: "Page.captureScreenshot",
  params: { format: "jpeg", quality: 85 },
});
writeFileSync(file, data, "base64");
await browser.end();
process.exit();
