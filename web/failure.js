// Says in plain words why there is no tuner: the browser is too old, the address is not secure, a
// part of the page did not arrive, or the core has failed. Written in the language of old browsers
// and needs no other file, because any other may be what is missing. Runs before all of them.
(function () {
  "use strict";

  // As in the tables of texts, for when none of them can be had.
  var ENGLISH = {
    PageTooOld: "This browser cannot run Endpin. Update it, or open the page in another one.",
    PageNotSecure:
      "Browsers give the microphone to secure pages only. Open Endpin's address with https.",
    PageIncomplete: "Endpin could not be loaded completely. Check the connection and try again.",
    PageBroken: "Something in Endpin has failed. Your settings are kept.",
    TryAgain: "Try again",
  };
  var PATIENCE = 3000; // milliseconds for a table of texts
  var EMPTY_MODULE = new Uint8Array([0, 0x61, 0x73, 0x6d, 1, 0, 0, 0]);
  var page = document.documentElement;
  var shown = false;

  // The tables to try, the user's first.
  function languages() {
    var asked = /[?&]lang=([\w-]+)/.exec(location.search);
    var wanted = navigator.languages || [navigator.language || "en"];
    return (asked ? [asked[1]] : [])
      .concat(wanted.slice())
      .map(function (tag) {
        var primary = tag.split("-")[0].toLowerCase();
        return primary === "zh" ? "zh-Hans" : primary;
      })
      .concat("en");
  }

  function parse(text) {
    try {
      return JSON.parse(text);
    } catch (error) {
      return null;
    }
  }

  // Calls `use` with the first table that arrives and has the key, and its language.
  function withTable(tags, key, use) {
    if (tags.length === 0) return use(ENGLISH, "en");
    var request = new XMLHttpRequest();
    request.onloadend = function () {
      var table = parse(request.responseText);
      if (table && table[key]) use(table, tags[0]);
      else withTable(tags.slice(1), key, use);
    };
    request.open("GET", "texts/" + tags[0] + ".json");
    request.timeout = PATIENCE;
    request.send();
  }

  function add(parent, kind, text) {
    var element = document.createElement(kind);
    element.textContent = text;
    return parent.appendChild(element);
  }

  function show(key) {
    if (shown) return;
    shown = true;
    if (document.body) tell(key);
    else document.addEventListener("DOMContentLoaded", tell.bind(null, key));
  }

  function tell(key) {
    withTable(languages(), key, function (table, language) {
      var box = add(document.body, "section", "");
      box.className = "failure";
      box.setAttribute("role", "alert");
      box.lang = language;
      add(box, "h1", "Endpin");
      add(box, "p", table[key]);
      page.setAttribute("data-failed", key);
      if (key === "PageTooOld" || key === "PageNotSecure") return; // no trying helps
      add(box, "button", table.TryAgain).onclick = function () {
        location.reload();
      };
    });
  }

  function runsModules() {
    try {
      new WebAssembly.Module(EMPTY_MODULE); // some know the word, and forbid it to a strict page
    } catch (error) {
      return false;
    }
    return "noModule" in HTMLScriptElement.prototype && window.AudioWorkletNode && window.structuredClone;
  }

  // A fault is the page's end when it comes before the page is ready, or out of the core.
  function judge(error) {
    if (page.getAttribute("data-state") === "loading") show("PageIncomplete");
    else if (error instanceof WebAssembly.RuntimeError) show("PageBroken");
  }

  if (window.isSecureContext === false) return show("PageNotSecure");
  if (!runsModules()) return show("PageTooOld");
  // Captured: a file that does not arrive tells its own element only.
  window.addEventListener(
    "error",
    function (event) {
      var target = event.target;
      if (event.error || target.tagName === "SCRIPT" || target.rel === "stylesheet") judge(event.error);
    },
    true
  );
  window.addEventListener("unhandledrejection", function (event) {
    judge(event.reason);
  });
})();
