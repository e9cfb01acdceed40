// Has the page kept for use without a network, by service-worker.js. A browser that refuses that, in
// a private window say, gets the page from its host each time: nothing to tell the user.

// `untouched` tells whether the page may still be loaded again without anybody noticing: a reload
// alone does not bring a new version, so a page that was just opened asks for it.
export async function keepOffline(untouched) {
  const workers = navigator.serviceWorker;
  if (!workers) return;
  // Whoever begins to serve an open page has files of another version.
  if (workers.controller) workers.addEventListener("controllerchange", () => location.reload());
  try {
    const registration = await workers.register("service-worker.js", { updateViaCache: "none" });
    if (untouched()) registration.waiting?.postMessage("takeOver");
    document.addEventListener("visibilitychange", () => {
      if (!document.hidden) registration.update().catch(() => {}); // no network: another time
    });
  } catch (error) {
    console.info("not kept for use without a network:", error.message);
  }
}
