#!/usr/bin/env bash
# The core stays portable and its rooms apart: each includes only what its row allows. Standard
# headers have no slash and no dot and are always allowed.
set -euo pipefail
cd "$(dirname "$0")/.."

# room: what it may include, as a pattern
rows=(
  'ports        ports/|fmt/'
  'audio        ports/|audio/|kissfft/'
  'tuner        ports/|tuner/|fmt/'
  'calibration  ports/|calibration/|fmt/'
  'rating       ports/|rating/|fmt/'
  'app          ports/|audio/|tuner/|calibration/|rating/|app/|fmt/'
)
failed=0
for row in "${rows[@]}"; do
  read -r room allowed <<<"$row"
  stray=$(grep -nE '^ *# *include' "$room"/*.h "$room"/*.cpp 2>/dev/null |
    grep -vE "include [<\"]($allowed)|include <[a-z0-9_]+>" || true)
  [ -z "$stray" ] || { printf '%s includes what it must not:\n%s\n' "$room" "$stray"; failed=1; }
done
# main only wires.
for file in cli/main.cpp desktop/main.cpp; do
  [ ! -f "$file" ] || [ "$(wc -l <"$file")" -lt 104 ] || { echo "$file: 104 lines or more"; failed=1; }
done
exit $failed
