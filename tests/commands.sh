#!/usr/bin/env bash
# commands.sh: each command of ./dev, far enough to see that it works. What it builds is there
# already; what it would do for minutes is done for a moment. `test` and `format --check` are what
# runs this, the packages have a test of their own.
set -euo pipefail
cd "$(dirname "$0")/.."
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0

# check EXIT-CODE PATTERN COMMAND [ARGUMENT...]: it ends in time, so, and says something like this.
check() {
  local expected=$1 pattern=$2 code=0
  shift 2
  timeout -k 5 120 ./dev "$@" >"$work/said" 2>&1 || code=$?
  [ "$code" = "$expected" ] && grep -qE -- "$pattern" "$work/said" && return
  printf './dev %s: exit code %s, not %s with "%s":\n' "$*" "$code" "$expected" "$pattern"
  tail -n 20 "$work/said"
  failed=1
}

# Every command has its line in the help.
check 0 '^\./dev screenshots' help
while read -r command; do
  check 0 "^\./dev $command\b" help
done < <(sed -n 's/^cmd_\([a-z]*\)() .*/\1/p' dev | grep -vx help)
check 0 '^\./dev run' # no command at all
check 2 "no command 'dance'" dance

check 0 '' build
DISPLAY=:0 check 0 '^endpin [0-9]' run --version
DISPLAY='' WAYLAND_DISPLAY='' check 0 'or-recording' run --help
for row in 'soak 0' 'soak soon' 'soak 1000' 'soak 1 1' 'fuzz 0' 'fuzz soon' 'fuzz 1000000' 'fuzz 1 1'; do
  # shellcheck disable=SC2086  # several arguments
  check 2 "${row%% *} takes" $row
done
check 2 "not '--arm'" package --test --arm
check 2 "not '--fly'" web --fly
check 2 "not 'netscape'" web --test webkit netscape
check 0 'Version [0-9a-f]{16}, [0-9]+ files' web --build

# The page is served where it is said; who comes second is told so.
export ENDPIN_PORT=8391
./dev web >"$work/served" 2>&1 &
server=$!
for _ in {1..120}; do
  page=$(busybox wget -qO- "http://localhost:$ENDPIN_PORT/" 2>/dev/null) && break
  sleep 0.5
done
grep -q '<title>Endpin' <<<"$page" || { echo "./dev web serves no page:"; cat "$work/served"; failed=1; }
check 1 "port $ENDPIN_PORT is in use" web
kill $server
wait $server || true
ENDPIN_PORT=door check 2 "not 'door'" web
unset ENDPIN_PORT

# The programs of the demonstration differ in one file, which a test of the screen puts in.
cmake --preset demo -B "$work/demo" >/dev/null
grep -q 'ENDPIN_DEMO_MODE=1.*endpin_app' "$work/demo/compile_commands.json" ||
  { echo "the preset demo builds no demonstration"; failed=1; }

SCREEN_SECONDS=1 check 0 '^tablet:1366: first frame [0-9]+ ms .* [0-9]+ MiB' bench \
  --benchmark_filter='^BM_Estimate' --benchmark_repetitions=1 --benchmark_min_time=0.01 \
  --benchmark_out="$work/bench.json"
grep -q '"real_time"' "$work/bench.json" || { echo "bench: no figures as JSON"; failed=1; }

check 0 "$work/sheet.jpg" screenshots "$work/sheet.jpg" phone-480 panel-chart
check 1 'no picture panel-kitchen' screenshots "$work/none.jpg" panel-kitchen

# The first row of the first table: half a semitone off is never green, to neither estimator.
row=$(timeout 120 ./dev hearing 2>"$work/said" | sed -n '4{p;q}') || true
[ "$row" = "| -50 |$(printf ' 0 %% |%.0s' {1..8})" ] || { echo "hearing: '$row'"; cat "$work/said"; failed=1; }
exit $failed
