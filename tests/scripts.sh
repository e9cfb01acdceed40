#!/usr/bin/env bash
# Every shell script is free of what shellcheck finds. Where it is wrong, the script says why.
set -euo pipefail
cd "$(dirname "$0")/.."
mapfile -t scripts < <(git ls-files -z | xargs -0 awk 'FNR == 1 && /^#(!.*sh$| shellcheck shell=)/ { print FILENAME } { nextfile }')
# A listing that fails is no tree without faults.
[ ${#scripts[@]} -gt 10 ] || { echo "only ${#scripts[@]} scripts found"; exit 1; }
shellcheck "${scripts[@]}"
