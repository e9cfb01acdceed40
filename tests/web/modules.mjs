// The modules of build/web, and a page's storage, for the tests in node.
import { readFileSync } from "node:fs";

const built = new URL("../../build/web/", import.meta.url);

export function moduleOf(name) {
  return new WebAssembly.Module(readFileSync(new URL(`${name}.wasm`, built)));
}

// The exports of a module that asks nothing of its surroundings.
export function instance(name) {
  const module = moduleOf(name);
  const imports = {};
  for (const { module: from, name: asked } of WebAssembly.Module.imports(module)) {
    imports[from] = { ...imports[from], [asked]: () => 0 };
  }
  const { exports } = new WebAssembly.Instance(module, imports);
  exports._initialize();
  return exports;
}

// Like localStorage.
export class Storage {
  items = new Map();
  get length() {
    return this.items.size;
  }
  key(index) {
    return [...this.items.keys()][index] ?? null;
  }
  getItem(key) {
    return this.items.get(key) ?? null;
  }
  setItem(key, value) {
    this.items.set(key, String(value));
  }
  removeItem(key) {
    this.items.delete(key);
  }
}
