// Keeps one complete version of the page, for use without a network. Runs in the browser's service
// worker, beside the pages of its folder; version.sh writes VERSION and FILES (the fingerprint of
// each file by its path) above this text.
//
// A version is installed when every file of it has arrived with its fingerprint, or not at all. It
// waits until the last page of the version before is closed: no page ever sees files of both.

const OURS = `endpin ${registration.scope} `; // the host may carry other pages, or a second Endpin
const CACHE = OURS + VERSION;

async function fingerprint(bytes) {
  const digest = new Uint8Array(await crypto.subtle.digest("SHA-256", bytes));
  return Array.from(digest.slice(0, 8), (byte) => byte.toString(16).padStart(2, "0")).join("");
}

// Where a file may come from, nearest first: the version before, the browser's own cache, the host.
const sources = [
  (path) => caches.match(path),
  (path) => fetch(path),
  (path) => fetch(path, { cache: "reload" }),
];

// The file as this version wants it. What a host, or a cache on the way, has of another version is
// passed over.
async function obtain(path, expected) {
  for (const source of sources) {
    const response = await source(path);
    if (!response?.ok) continue;
    const bytes = await response.arrayBuffer();
    if ((await fingerprint(bytes)) !== expected) continue;
    const type = response.headers.get("Content-Type") ?? "application/octet-stream";
    // A new response: one that was redirected must not answer for a page.
    return new Response(bytes, { headers: { "Content-Type": type } });
  }
  throw new Error(`${path} is not of version ${VERSION}`);
}

async function install() {
  const files = await Promise.all(
    [...FILES].map(async ([path, expected]) => [path, await obtain(path, expected)]),
  );
  const cache = await caches.open(CACHE);
  await Promise.all(files.map(([path, response]) => cache.put(path, response)));
}

async function forgetOthers() {
  const names = await caches.keys();
  const others = names.filter((name) => name.startsWith(OURS) && name !== CACHE);
  await Promise.all(others.map((name) => caches.delete(name)));
}

// The path in FILES that a request is for, whatever its query says.
function pathOf({ method, url }) {
  if (method !== "GET" || !url.startsWith(registration.scope)) return "";
  const path = new URL(url).pathname.slice(new URL(registration.scope).pathname.length);
  return path === "" || path === "index.html" ? "./" : path;
}

async function answer(request, path) {
  const cache = await caches.open(CACHE);
  return (await cache.match(path)) ?? fetch(request);
}

// A page that was just opened asks for the version that waits; it loads itself again when it gets it.
// Never under the feet of another one.
async function takeOver() {
  const pages = await clients.matchAll({ type: "window", includeUncontrolled: true });
  if (pages.length === 1) await skipWaiting();
}

addEventListener("install", (event) => event.waitUntil(install()));
addEventListener("activate", (event) => event.waitUntil(forgetOthers()));
addEventListener("message", (event) => {
  if (event.data === "takeOver") event.waitUntil(takeOver());
});
addEventListener("fetch", (event) => {
  const path = pathOf(event.request);
  if (FILES.has(path)) event.respondWith(answer(event.request, path));
});
