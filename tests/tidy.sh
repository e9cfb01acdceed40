#!/usr/bin/env bash
# tidy.sh BUILD-DIR: what clang-tidy says about the product, with the checks of .clang-tidy. It reads
# a folder that was built in units of several files: headers, which take most of its time, come once
# a unit. What includes the toolkit's is left out: it would take as long as all the rest.
set -euo pipefail
build=$1
rooms='audio|tuner|calibration|rating|app|cli|adapters/CMakeFiles|adapters/pulse|adapters/sqlite'
mapfile -t units < <(
  sed -nE "s#^ *\"file\": \"($build/($rooms)/.*/unity_[0-9]+_cxx\.cxx)\".*#\1#p" \
    "$build/compile_commands.json")
# A listing that fails is no tree without faults.
[ ${#units[@]} -gt 15 ] || { echo "only ${#units[@]} units found"; exit 1; }
# Beside the other tests: they measure time, this does not.
printf '%s\0' "${units[@]}" |
  nice -n 19 xargs -0 -n1 -P2 clang-tidy -p "$build" --quiet \
    --extra-arg=-Wno-unknown-warning-option 2>&1 |
  sed -E '/^[0-9]+ warnings? generated\.$/d'
