// The part of WebDriver that the tests need, over HTTP (as drivers speak it) or over Firefox's own
// socket, which takes the same commands under other names: no driver between, which Debian has not.
import { connect } from "node:net";

import { stop, until } from "./surroundings.mjs";

const ELEMENT = "element-6066-11e4-a52e-4f735466cecf";

// Each command: method, path and, for Firefox, name. What stands in braces is a parameter.
const COMMANDS = {
  begin: ["POST", "", "NewSession"],
  end: ["DELETE", "/{session}", "DeleteSession"],
  go: ["POST", "/{session}/url", "Navigate"],
  run: ["POST", "/{session}/execute/async", "ExecuteAsyncScript"],
  find: ["POST", "/{session}/elements", "FindElements"],
  click: ["POST", "/{session}/element/{id}/click", "ElementClick"],
  role: ["GET", "/{session}/element/{id}/computedrole", "GetComputedRole"],
  label: ["GET", "/{session}/element/{id}/computedlabel", "GetComputedLabel"],
  act: ["POST", "/{session}/actions", "PerformActions"],
  resize: ["POST", "/{session}/window/rect", "SetWindowRect"],
  screenshot: ["GET", "/{session}/screenshot", "TakeScreenshot"],
  window: ["GET", "/{session}/window", "GetWindowHandle"],
  openWindow: ["POST", "/{session}/window/new", "NewWindow"],
  toWindow: ["POST", "/{session}/window", "SwitchToWindow"],
  closeWindow: ["DELETE", "/{session}/window", "CloseWindow"],
  devtools: ["POST", "/{session}/goog/cdp/execute", null],
  log: ["POST", "/{session}/se/log", null],
};

function refusal(command, { error, message }) {
  return new Error(`${command}: ${error}: ${String(message).split("\n")[0]}`);
}

function overHttp(port) {
  let session = "";
  return async (command, { id, ...body } = {}) => {
    const [method, pattern] = COMMANDS[command];
    const path = pattern.replace("{session}", session).replace("{id}", id);
    const answer = await fetch(`http://127.0.0.1:${port}/session${path}`, {
      method,
      body: method === "POST" ? JSON.stringify(body) : undefined,
      headers: { "content-type": "application/json" },
      signal: AbortSignal.timeout(60_000),
    });
    const { value } = await answer.json();
    if (!answer.ok) throw refusal(command, value);
    if (command === "begin") session = value.sessionId;
    return value;
  };
}

// Messages as Firefox writes them: the length in bytes, a colon, and JSON.
async function* messagesFrom(socket) {
  let rest = Buffer.alloc(0);
  for await (const data of socket) {
    rest = Buffer.concat([rest, data]);
    for (let colon; (colon = rest.indexOf(":")) > 0; ) {
      const end = colon + 1 + Number(rest.subarray(0, colon));
      if (rest.length < end) break;
      yield JSON.parse(rest.subarray(colon + 1, end));
      rest = rest.subarray(end);
    }
  }
  throw new Error("the browser has gone");
}

// After a greeting, [0, number, command, parameters] is answered by [1, number, error, result].
async function overSocket(port) {
  const socket = connect(port, "127.0.0.1");
  const messages = messagesFrom(socket);
  await messages.next();
  let last = 0;
  return async (command, parameters = {}) => {
    const number = ++last;
    const text = JSON.stringify([0, number, `WebDriver:${COMMANDS[command][2]}`, parameters]);
    socket.write(`${Buffer.byteLength(text)}:${text}`);
    for (;;) {
      const [, answered, error, result] = (await messages.next()).value;
      if (answered !== number) continue; // to one that nobody waited for
      if (error) throw refusal(command, error);
      return result !== null && "value" in result ? result.value : result;
    }
  };
}

export class Browser {
  // `programs` were started for it, and end with it.
  static async begin({ programs, port, socket = false, capabilities = {} }) {
    const browser = new Browser();
    browser.programs = programs;
    try {
      browser.send = await (socket ? overSocket(port) : overHttp(port));
      const begun = await browser.send("begin", { capabilities: { alwaysMatch: capabilities } });
      browser.version = begun.capabilities.browserVersion;
      return browser;
    } catch (error) {
      programs.forEach(stop);
      throw new Error(`${error.message}\n${programs.map(({ said }) => said).join("\n")}`);
    }
  }

  async end() {
    await this.send("end").catch(() => {});
    this.programs.forEach(stop);
  }

  go(url) {
    return this.send("go", { url });
  }

  // Runs a function in the page, which sees only its arguments, and returns what it returns or
  // promises.
  async run(work, ...args) {
    const script = `const done = arguments[arguments.length - 1];
      Promise.resolve().then(() => (${work})(...Array.from(arguments).slice(0, -1)))
        .then((value) => done({ value }), (error) => done({ error: String(error) }));`;
    const { value, error } = await this.send("run", { script, args });
    if (error !== undefined) throw new Error(`in the page: ${error}`);
    return value;
  }

  async all(css) {
    const found = await this.send("find", { using: "css selector", value: css });
    return found.map((element) => element[ELEMENT]);
  }

  // As a user clicks: a gesture that browsers trust. Not before what fades out above it has gone.
  async tap(css) {
    const [id] = await this.all(css);
    if (!id) throw new Error(`there is no ${css} to tap`);
    await until(`${css} can be tapped`, () =>
      this.send("click", { id }).then(() => true, (error) => {
        if (!/intercept|not interactable/.test(error.message)) throw error;
      }),
    );
  }

  async press(key) {
    const actions = ["keyDown", "keyUp"].map((type) => ({ type, value: key }));
    await this.send("act", { actions: [{ type: "key", id: "keys", actions }] });
  }

  // What a screen reader is told of each of these elements.
  async spoken(css) {
    const elements = [];
    for (const id of await this.all(css)) {
      elements.push({ role: await this.send("role", { id }), name: await this.send("label", { id }) });
    }
    return elements;
  }
}
