#!/usr/bin/env bash
# Draws every layout, each panel, and what the screen shows now and then, on one contact sheet:
#   tools/screenshots.sh ENDPIN-DRAW-SCREENS RESOURCES OUTPUT.jpg [PICTURE...]
# PICTURE, such as tablet-1366 or panel-fork: only those. SCREENS_LANGUAGE in the environment: the
# language of the texts (en).
set -euo pipefail
draw=$1 resources=$2 output=$3
shift 3

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software XDG_RUNTIME_DIR=$work
chmod 700 "$work"

"$draw" "$resources" "$work" "${SCREENS_LANGUAGE:-en}" "$@" >"$work/names"
mapfile -t names <"$work/names"
files=("${names[@]/#/"$work/"}")
montage "${files[@]/%/.png}" -tile 9x -geometry '200x340+8+8' -background '#080504' \
  -quality 88 "$output"
