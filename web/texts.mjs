// The page's texts in the user's language. What is wanted comes from the address (?lang=de), then
// from the browser, in its order. A language of a region falls back on the language, everything on
// English, as on the desktop (adapters/bundle/ApplicationPlace.h).

const LANGUAGES = ["en", "es", "de", "fr", "it", "pt", "nl", "pl", "ja", "ko", "zh-Hans"];

// The tables that whoever wants this tag can read, the best first: there is one Chinese table, which
// is better than English for those who write the other way.
function readable(tag) {
  const [language, ...parts] = tag.split(/[-_.@]/);
  const primary = language.toLowerCase();
  return primary === "zh" ? ["zh-Hans"] : [[primary, ...parts].join("-"), primary];
}

// The first of the wanted tags that has a table, or English.
export function languageFor(wanted) {
  return wanted.flatMap(readable).find((tag) => LANGUAGES.includes(tag)) ?? "en";
}

function wantedTags() {
  const asked = new URLSearchParams(location.search).get("lang");
  return [...(asked ? [asked] : []), ...(navigator.languages ?? [navigator.language ?? "en"])];
}

export class Texts {
  // The table in the language that is wanted, English where it cannot be had. Rejects when neither
  // can.
  static async load(language = languageFor(wantedTags())) {
    const table = await Texts.#table(language);
    if (table) return new Texts(language, table);
    if (language === "en") throw new Error("there are no texts");
    return Texts.load("en");
  }

  static async #table(language) {
    try {
      const answer = await fetch(`texts/${language}.json`);
      return answer.ok ? await answer.json() : null;
    } catch {
      return null;
    }
  }

  constructor(language, table) {
    this.language = language;
    this.table = table;
  }

  // The text of a key, with its placeholder filled. A missing key shows itself.
  of(key, argument = "") {
    return String(this.table[key] ?? key).replace("%@", argument);
  }

  // Fills what the markup leaves to the language: data-text, data-label (spoken),
  // data-title (shown to a mouse), data-alt.
  fill(root) {
    if (root === document.documentElement) root.lang = this.language;
    const each = (name, work) => {
      for (const element of root.querySelectorAll(`[data-${name}]`)) {
        work(element, this.of(element.dataset[name], element.dataset.argument));
      }
    };
    each("text", (element, text) => (element.textContent = text));
    each("label", (element, text) => element.setAttribute("aria-label", text));
    each("title", (element, text) => (element.title = text));
    each("alt", (element, text) => (element.alt = text));
  }
}
