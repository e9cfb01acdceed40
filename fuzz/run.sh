#!/usr/bin/env bash
# run.sh BUILD SECONDS [FUZZER...]: gives each fuzzer its time, two at once, and says what came of
# it in a line each. What they learn stays in BUILD/fuzzers/corpus, what they find in
# BUILD/fuzzers/findings. Exit code 1 when one of them has found something.
set -euo pipefail
cd "$1/fuzzers"
seconds=$2
shift 2
[ $# -gt 0 ] ||
  set -- pitch sound-file settings-file

# The largest input that is worth its time.
longest() {
  case "$1" in
    pitch) echo 9000 ;;
    settings-file) echo 40000 ;;
    *) echo 20000 ;;
  esac
}

fuzz() {
  local name=$1 log=logs/$1 before found
  before=$(find findings -name "$name-*" | wc -l)
  mkdir -p "corpus/$name"
  # What is muted while a library talks would swallow a sanitizer's report: it has its own file.
  ASAN_OPTIONS=log_path=logs/$name.report:detect_stack_use_after_return=1 \
    UBSAN_OPTIONS=print_stacktrace=1 \
    TMPDIR=$work nice ./"$name" -max_total_time="$seconds" -max_len="$(longest "$name")" \
    -timeout=25 -rss_limit_mb=2048 -artifact_prefix="findings/$name-" \
    "corpus/$name" "seeds/$name" >"$log" 2>&1 || true
  found=$(($(find findings -name "$name-*" | wc -l) - before))
  printf '%-14s findings %s: %s\n' "$name" "$found" "$(grep -a '^Done ' "$log")"
  # A fuzzer that ended before its time has found something, whether or not it could keep it.
  [ "$found" = 0 ] && grep -qa '^Done ' "$log" && return
  echo "$name: see $PWD/$log* and $PWD/findings" >&2
  touch "$work/found"
}

# In memory where there is such a folder: the sound files and settings are written anew each time.
work=$(mktemp -d -p "$([ -d /dev/shm ] && echo /dev/shm || echo /tmp)" endpin-fuzz-XXXXXX)
trap 'rm -rf "$work"' EXIT
exec 9>lock
flock -n 9 || { echo "the fuzzers of this folder run already" >&2; exit 1; }
rm -rf logs
mkdir -p logs findings
mkdir -p seeds/pitch
./endpin-fuzz-seeds seeds

for name in "$@"; do
  [ "$(jobs -rp | wc -l)" -lt 2 ] || wait -n
  fuzz "$name" &
done
wait
[ ! -e "$work/found" ]
