#!/usr/bin/env bash
# run.sh NAME NATIVE: NAME.test.mjs in node, with the modules of build/web and the native program
# that answers the same questions.
set -euo pipefail
cd "$(dirname "$0")"
skip() {
  echo "[  SKIPPED ] web.$1 ($2)"
  exit 77
}
[ -f ../../build/web/endpin-core.wasm ] || skip "$1" "the modules are not built: ./dev web --build"
command -v node >/dev/null || skip "$1" "node is not installed"
ENDPIN_WEB_BITS=$2 exec node "$1.test.mjs"
