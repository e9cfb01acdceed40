#!/usr/bin/env bash
# Takes a picture of every layout, and of each panel, and puts them on one contact sheet:
#   tools/screenshots.sh ENDPIN SOUND OUTPUT.jpg
# SOUND is the recording of the four strings; in its sixth second the second string is in tune.
set -euo pipefail
endpin=$1 sound=$2 output=$3

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software XDG_RUNTIME_DIR=$work
chmod 700 "$work"

# shoot NAME DEVICE [OPTION...]
shoot() {
  local name=$1 device=$2
  shift 2
  "$endpin" --device "$device" --input "$sound" --language en --store "$work/$name.db"
    --screenshot "$work/$name.png" --after 5.9 "$@"
}

# Two at a time: the picture is taken by the clock on the wall, and a busy machine is late.
pictures=()
plan() {
  pictures+=("$work/$1.png")
  shoot "$@" &
  [ $((${#pictures[@]} % 2)) -ne 0 ] || wait
}
for height in 480 568 667 736 812 844 896 932; do plan "phone-$height" "phone:$height"; done
for height in 1024 1112 1133 1194 1366; do plan "tablet-$height" "tablet:$height"; done
for panel in settings fork chart about; do plan "panel-$panel" phone:844 --panel "$panel"; done
wait
montage "${pictures[@]}" -tile 9x -geometry '200x340+8+8' -background '#080504' \
  -quality 88 "$output"
