#!/usr/bin/env bash
# The demo's times, wall clock, build excluded:
#   command to the first scan listed: `vonel --demo --scan` from exec to its
#     last line (goal: under 2 s), and the window's start until its log says
#     it is up; its first scan follows 200 ms later and lists as --scan does;
#   exit with clean-up: SIGTERM to a window demo until it has ended and its
#     home is gone (goal: under 1 s).
# The home alone is timed by build/default/bench/ui/bench_demo_home.
# Prints min, median and max of N runs.
# Usage: bench/demo_start.sh path/to/vonel [N]   (default: 10)
set -euo pipefail
vonel=$(realpath "$1")
count=${2:-10}
work=$(mktemp -d)
pid=""
cleanup() {
  if [ -n "$pid" ]; then kill "$pid" 2>/dev/null || true; wait "$pid" 2>/dev/null || true; fi
  rm -rf "$work"
}
trap cleanup EXIT
export QT_QPA_PLATFORM=${QT_QPA_PLATFORM:-offscreen} TMPDIR=$work
now() { date +%s%N; }
summary() {
  sort -n | awk -v what="$1" '{ v[NR] = $1 } END { printf "%s: min %d ms, median %d ms, max %d ms over %d\n", what, v[1], v[int((NR + 1) / 2)], v[NR], NR }'
}

for _ in $(seq "$count"); do
  start=$(now)
  "$vonel" --demo --scan --demo-date 2026-01-15 </dev/null | while IFS= read -r line; do
    [ "$line" = "Process complete" ] && echo $((($(now) - start) / 1000000))
  done
done | summary "command to first scan listed (--scan)"

for _ in $(seq "$count"); do
  start=$(now)
  "$vonel" --demo </dev/null >/dev/null 2>&1 &
  pid=$!
  home=""
  until [ -n "$home" ] && grep -qs "startup complete" "$home/log.txt"; do
    home=$(ls -d "$work"/vonel-demo-* 2>/dev/null | head -1 || true)
    sleep 0.01
  done
  echo $((($(now) - start) / 1000000)) >>"$work/window"
  sleep 1
  stop=$(now)
  kill -TERM "$pid"
  wait "$pid" || true
  [ ! -d "$home" ] || { echo "the home stayed: $home" >&2; exit 1; }
  echo $((($(now) - stop) / 1000000)) >>"$work/exit"
  pid=""
done
summary "command to window up (startup complete)" <"$work/window"
summary "exit with clean-up (SIGTERM to home gone)" <"$work/exit"
