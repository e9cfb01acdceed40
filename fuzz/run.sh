#!/usr/bin/env bash
# run.sh BUILD SECONDS [FUZZER...]: gives each fuzzer its time, two at once, and says what came of
# it in a line each. What they learn stays in BUILD/fuzzers/corpus, what they find in
# BUILD/fuzzers/findings. Exit code 1 when one of them has found something.
set -euo pipefail
cd "$1/fuzzers"
seconds=$2
shift 2
[ $# -gt 0 ] ||
  set -- pitch sound-file settings-file setting-values text-tables cli-arguments desktop-arguments

# The largest input that is worth its time.
longest() {
  case "$1" in
    pitch) echo 9000 ;;
    settings-file) echo 40000 ;;
    sound-file) echo 20000 ;;
    setting-values | text-tables) echo 6000 ;;
    *) echo 400 ;;
  esac
}

# Value of a figure that the fuzzer prints when it ends.
figure() { sed -n "s/^stat::$1: *//p" "$2"; }
# The first (1) or the last ($) number that follows a name such as cov: the log is read to its end,
# for a reader that leaves early makes the search fail.
counted() { grep -aoE "$2: [0-9]+" "$3" | sed -n "$1p" | grep -oE '[0-9]+' || echo 0; }

fuzz() {
  local name=$1 log=logs/$1 before found
  before=$(find findings -name "$name-*" | wc -l)
  mkdir -p "corpus/$name"
  # What is muted while a library talks would swallow a sanitizer's report: it has its own file.
  ASAN_OPTIONS=log_path=logs/$name.report:detect_stack_use_after_return=1 \
    UBSAN_OPTIONS=print_stacktrace=1 \
    TMPDIR=$work nice ./"$name" -max_total_time="$seconds" -max_len="$(longest "$name")" \
    -timeout=25 -rss_limit_mb=2048 -print_final_stats=1 -artifact_prefix="findings/$name-" \
    "corpus/$name" "seeds/$name" >"$log" 2>&1 || true
  found=$(($(find findings -name "$name-*" | wc -l) - before))
  printf '%-18s %9s executions %7s/s  coverage %5s (+%s)  features %6s (+%s)  findings %s\n' \
    "$name" "$(figure number_of_executed_units "$log")" \
    "$(figure average_exec_per_sec "$log")" \
    "$(counted '$' cov "$log")" $(($(counted '$' cov "$log") - $(counted 1 cov "$log"))) \
    "$(counted '$' ft "$log")" $(($(counted '$' ft "$log") - $(counted 1 ft "$log"))) \
    "$found"
  # A fuzzer that ended before its time has found something, whether or not it could keep it.
  grep -q '^stat::number_of_executed_units' "$log" && [ "$found" = 0 ] &&
    grep -q '^Done ' "$log" && return
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
./endpin-fuzz-seeds seeds "$OLDPWD/resources"

for name in "$@"; do
  [ "$(jobs -rp | wc -l)" -lt 2 ] || wait -n
  fuzz "$name" &
done
wait
[ ! -e "$work/found" ]
