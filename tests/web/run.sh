#!/usr/bin/env bash
# run.sh SCRIPT [ARGUMENT...]: runs it in node, with the modules of build/web.
set -euo pipefail
cd "$(dirname "$0")"
skip() {
  echo "[  SKIPPED ] web.$(basename "$1" .mjs | tr . _) ($2)"
  exit 77
}
[ -f ../../build/web/endpin-core.wasm ] || skip "$1" "the modules are not built: ./dev web --build"
command -v node >/dev/null || skip "$1" "node is not installed"
exec node "$@"
