#!/usr/bin/env bash
# Takes a picture of every layout, and of each panel, and puts them on one contact sheet:
#   tools/screenshots.sh ENDPIN SOUND OUTPUT.jpg [PICTURE...]
# SOUND is the recording of the four strings; in its sixth second the second string is in tune.
# PICTURE, such as tablet-1366 or panel-fork: only those.
set -euo pipefail
endpin=$1 sound=$2 output=$3
shift 3

all=(phone-{480,568,667,736,812,844,896,932} tablet-{1024,1112,1133,1194,1366}
  panel-{settings,fork,chart,about})
[ $# -gt 0 ] || set -- "${all[@]}"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software XDG_RUNTIME_DIR=$work
chmod 700 "$work"

shoot() {
  local device=${1/-/:} panel=()
  [[ $1 != panel-* ]] || { device=phone:844 panel=(--panel "${1#panel-}"); }
  timeout 60 "$endpin" --device "$device" "${panel[@]}" --input "$sound" --language en \
    --screenshot "$work/$1.png" --after 5.9
}

for picture in "$@"; do
  grep -qxF -- "$picture" <(printf '%s\n' "${all[@]}") ||
    { echo "screenshots: there is no picture $picture, only ${all[*]}" >&2; exit 1; }
done
# Two at a time: the picture is taken by the clock on the wall, and a busy machine is late.
export endpin sound work
export -f shoot
printf '%s\0' "$@" | xargs -0 -n1 -P2 bash -c 'shoot "$1"' shoot

files=("${@/#/"$work/"}")
montage "${files[@]/%/.png}" -tile 9x -geometry '200x340+8+8' -background '#080504' \
  -quality 88 "$output"
