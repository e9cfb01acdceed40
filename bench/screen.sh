#!/usr/bin/env bash
# What the screen costs on a virtual display, drawn by the processor: start to first frame, resident
# memory, share of one core while listening. `./dev bench` runs it.
#   bench/screen.sh ENDPIN SOUND
# SCREEN_SECONDS in the environment: how long it listens (10).
set -euo pipefail
endpin=$1 sound=$2
seconds=${SCREEN_SECONDS:-10}

work=$(mktemp -d)
Xvfb -displayfd 3 -screen 0 1280x1600x24 -nolisten tcp 3>"$work/display" 2>/dev/null &
xvfb=$!
trap 'kill $xvfb 2>/dev/null; rm -rf "$work"' EXIT
until [ -s "$work/display" ]; do sleep 0.05; done
DISPLAY=:$(cat "$work/display")
export DISPLAY QT_QPA_PLATFORM=xcb QT_QUICK_BACKEND=software
export XDG_RUNTIME_DIR=$work
chmod 700 "$work"

now() { date +%s%N; }

# Milliseconds from the start of the program until it says that the first frame is there.
first_frame() {
  local begin ready
  begin=$(now)
  mkfifo "$work/log"
  "$endpin" --device "$1" --input "$sound" --store "$work/settings.db" --verbose 2>"$work/log" &
  program=$!
  while read -r line; do
    [ "$line" != "First frame" ] || { ready=$(now); break; }
  done <"$work/log"
  rm "$work/log"
  kill -TERM "$program" 2>/dev/null || true
  wait "$program" 2>/dev/null || true
  echo $(((ready - begin) / 1000000))
}

# User and system time of a process in clock ticks.
ticks() { awk '{print $14 + $15}' "/proc/$1/stat"; }

for device in phone:844 tablet:1366; do
  first_frame "$device" >/dev/null  # warms the caches
  times=$(for _ in 1 2 3 4 5; do first_frame "$device"; done | sort -n)
  "$endpin" --device "$device" --input "$sound" --store "$work/settings.db" 2>/dev/null &
  program=$!
  sleep 2
  before=$(ticks $program)
  sleep "$seconds"
  after=$(ticks $program)
  memory=$(awk '/VmRSS/ {print int($2 / 1024)}' "/proc/$program/status")
  kill -TERM $program
  wait $program || true
  echo "$device: first frame $(sed -n 3p <<<"$times") ms (median of 5)," \
    "$memory MiB resident, $(((after - before) * 100 / seconds / $(getconf CLK_TCK))) % of one core"
done
