// The modules of build/web for the tests in node.
import { readFileSync } from "node:fs";

export function moduleOf(name) {
  return new WebAssembly.Module(readFileSync(new URL(`../../build/web/${name}.wasm`, import.meta.url)));
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
