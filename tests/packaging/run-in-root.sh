#!/usr/bin/env bash
# run-in-root.sh ROOT BUILD-DIR [EMULATOR]: both programs of a root folder that has the package and
# what it depends on, and nothing else, do there what the programs of BUILD-DIR do here: the same
# words, the same picture. EMULATOR: a program in the root that runs those of another machine.
set -euo pipefail
root=$1 build=$2 emulator=${3:-}
work=$(mktemp -d)
failed=0

# The sound libraries keep files in shared memory, which is this machine's unless it has its own.
mkdir -p "$root/dev/shm"
mount -t tmpfs -o mode=1777 tmpfs "$root/dev/shm"
trap 'umount "$root/dev/shm"; rm -rf "$work"' EXIT

# Somewhere to write, for a user who is not root.
mkdir -p "$root/tmp/cellist"
cp "$build/resources/four-strings.flac" "$root/tmp/cellist/"
cp -r "$root/tmp/cellist" "$work/"
chown -R 65534:65534 "$root/tmp/cellist"

clean=(env -i PATH="$PATH" QT_QPA_PLATFORM=offscreen LC_ALL=C.UTF-8)
# $seconds, if set: how long it runs until it is asked to end.
there() {
  ${seconds:+timeout --preserve-status "$seconds"} "${clean[@]}" HOME=/tmp/cellist \
    chroot --userspec=65534:65534 "$root" ${emulator:+"$emulator"} "/usr/bin/$1" "${@:2}"
}
here() { "${clean[@]}" HOME="$work/cellist" "$build/$1" "${@:2}"; }

# same NAME: what the two printed. Another processor rounds the last digits of the power otherwise.
same() {
  sed -Ei 's/("power":[0-9]\.[0-9]{5})[0-9]*/\1/' "$work/$1.here" "$work/$1.there"
  diff "$work/$1.here" "$work/$1.there" >&2 || { echo "$1: differs (<: here, >: there)"; failed=1; }
}

# alike NAME PNG PNG: the same picture. Another processor rounds blended colours otherwise, by one.
alike() {
  local tolerance=0
  [ -z "$emulator" ] || tolerance=1
  pngtopam "$2" >"$work/here.pnm"
  pngtopam "$3" >"$work/there.pnm"
  { cmp -l "$work/here.pnm" "$work/there.pnm" 2>&1 || true; } | awk -v tolerance=$tolerance '
    function decimal(octal) { return int(octal / 100) * 64 + int(octal / 10) % 10 * 8 + octal % 10 }
    !/^ *[0-9]+ +[0-7]+ +[0-7]+$/ { bad++; next }  # one of them ends early
    { difference = decimal($2) - decimal($3) }
    difference > tolerance || -difference > tolerance { bad++ }
    END { exit bad > 0 }' ||
    { echo "$1: looks different"; failed=1; }
}

echo "Frequencies"
for place in here there; do
  $place endpin-cli frequencies --json --a4 442 >"$work/frequencies.$place"
done
grep -q 442 "$work/frequencies.there" || failed=1
same frequencies

echo "Four strings, in tune"
here endpin-cli listen --json --input "$work/cellist/four-strings.flac" >"$work/listen.here"
there endpin-cli listen --json --input /tmp/cellist/four-strings.flac >"$work/listen.there"
same listen

echo "The screen"
# The panels stand still, so that the two pictures are of the same moment.
for panel in settings chart; do
  for language in en de; do
    options=(--device phone:844 --language "$language" --panel "$panel" --after 2)
    here endpin "${options[@]}" --screenshot "$work/cellist/screen.png"
    there endpin "${options[@]}" --screenshot /tmp/cellist/screen.png
    alike "$panel, $language" "$work/cellist/screen.png" "$root/tmp/cellist/screen.png"
  done
done
echo "Settings"
seconds=10 there endpin --device phone:844 || failed=1
[ -f "$root/tmp/cellist/.local/share/endpin/settings.db" ] ||
  { echo "no settings were kept"; failed=1; }
exit $failed
