// The part of WebDriver that the tests need, over HTTP (as drivers speak it) or over Firefox's own
// socket, which takes the same commands under other names: no driver between, which Debian has not.
import { connect } from "node:net";

const ELEMENT = "element-6066-11e4-a52e-4f735466cecf";

// Each command: method, path and, for Firefox, name. What stands in braces is a parameter.
const COMMANDS = {
  begin: ["POST", "", "NewSession"],
  end: ["DELETE", "/{session}", "DeleteSession"],
  limits: ["POST", "/{session}/timeouts", "SetTimeouts"],
  go: ["POST", "/{session}/url", "Navigate"],
  reload: ["POST", "/{session}/refresh", "Refresh"],
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
  const send = async (command, { id, ...body } = {}) => {
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
  return { send, close: () => {} };
}

// A message is its length, a colon, and JSON: [0, number, command, parameters], answered by
// [1, number, error, result].
async function overSocket(port) {
  const socket = connect(port, "127.0.0.1");
  const waiting = new Map();
  let next = 0;
  let rest = Buffer.alloc(0);
  const failAll = (error) => {
    for (const { reject } of waiting.values()) reject(error);
    waiting.clear();
  };
  socket.on("error", failAll);
  socket.on("close", () => failAll(new Error("the browser has gone")));
  const greeted = new Promise((resolve, reject) => waiting.set("greeting", { resolve, reject }));
  const receive = (message) => {
    if (!Array.isArray(message)) return waiting.get("greeting").resolve();
    const [, number, error, result] = message;
    const { command, resolve, reject } = waiting.get(number);
    waiting.delete(number);
    if (error) return reject(refusal(command, error));
    resolve(result !== null && "value" in result ? result.value : result);
  };
  socket.on("data", (data) => {
    rest = Buffer.concat([rest, data]);
    for (;;) {
      const colon = rest.indexOf(":");
      const end = colon + 1 + Number(rest.subarray(0, Math.max(colon, 0)));
      if (colon < 0 || rest.length < end) return;
      receive(JSON.parse(rest.subarray(colon + 1, end)));
      rest = rest.subarray(end);
    }
  });
  await greeted;
  waiting.delete("greeting");
  const send = (command, parameters = {}) =>
    new Promise((resolve, reject) => {
      waiting.set(++next, { command, resolve, reject });
      const text = JSON.stringify([0, next, `WebDriver:${COMMANDS[command][2]}`, parameters]);
      socket.write(`${Buffer.byteLength(text)}:${text}`);
    });
  return { send, close: () => socket.destroy() };
}

export class Browser {
  static async begin({ port, socket = false, capabilities }) {
    const { send, close } = await (socket ? overSocket(port) : overHttp(port));
    const browser = new Browser();
    Object.assign(browser, { send, close });
    const asked = socket ? capabilities : { capabilities: { alwaysMatch: capabilities } };
    const begun = await send("begin", asked);
    browser.version = begun.capabilities.browserVersion;
    await send("limits", { script: 30_000, pageLoad: 30_000, implicit: 0 });
    return browser;
  }

  go(url) {
    return this.send("go", { url });
  }
  reload() {
    return this.send("reload");
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

  // As a user clicks: a gesture that browsers trust.
  async tap(css) {
    const [id] = await this.all(css);
    if (!id) throw new Error(`there is no ${css} to tap`);
    for (const deadline = Date.now() + 5000; ; ) {
      try {
        return await this.send("click", { id });
      } catch (error) {
        // Something still fades out above it.
        if (!/intercept|not interactable/.test(error.message) || Date.now() > deadline) throw error;
      }
    }
  }

  async press(key) {
    const actions = ["keyDown", "keyUp"].map((type) => ({ type, value: key }));
    await this.send("act", { actions: [{ type: "key", id: "keys", actions }] });
  }

  // What a screen reader is told of each of these elements.
  async spoken(css) {
    const elements = [];
    for (const id of await this.all(css)) {
      elements.push({
        role: await this.send("role", { id }),
        name: await this.send("label", { id }),
      });
    }
    return elements;
  }

  async end() {
    await this.send("end").catch(() => {});
    this.close();
  }
}
