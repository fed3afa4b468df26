#!/usr/bin/env bash
# How long a second start takes from exec to exit while a first copy runs:
# it finds the lock, hands its command over the socket, waits for the answer
# and ends (goal: under 150 ms). Prints min, median and max of N starts, for
# a start without arguments and one with a mail link.
# Usage: bench/second_copy.sh path/to/vonel [N]   (default: 20)
set -euo pipefail
vonel=$(realpath "$1")
count=${2:-20}
work=$(mktemp -d)
first=""
cleanup() {
  if [ -n "$first" ]; then kill "$first" 2>/dev/null || true; wait "$first" 2>/dev/null || true; fi
  rm -rf "$work"
}
trap cleanup EXIT
export QT_QPA_PLATFORM=${QT_QPA_PLATFORM:-offscreen}
export XDG_RUNTIME_DIR=$work/run
mkdir -m 700 "$XDG_RUNTIME_DIR"
printf 'REPLYADDRESS0,me@example.org\r\n' >"$work/Vonel.ini"
"$vonel" --home "$work" >/dev/null 2>&1 &
first=$!
for _ in $(seq 100); do
  grep -qF "startup." "$work/log.txt" 2>/dev/null && break
  sleep 0.1
done
sleep 1

# Milliseconds of one run of the command, wall time.
timed() {
  local start end
  start=$(date +%s%N)
  "$@" >/dev/null 2>&1
  end=$(date +%s%N)
  echo $(((end - start) / 1000000))
}

report() {  # label, then the figures
  local label=$1
  shift
  printf '%s\n' "$@" | sort -n | awk -v label="$label" -v n="$#" \
    '{ v[NR] = $1 } END { printf "%-34s n=%d  min %d ms  median %d ms  max %d ms\n", label, n, v[1], v[int((n + 1) / 2)], v[n] }'
}

# Each start waits out the slot of the one before, as two starts within a
# second drop the second one's command by design; the time measured is the same.
show=()
link=()
for _ in $(seq "$count"); do
  show+=("$(timed "$vonel" --home "$work")")
  sleep 1.1
  link+=("$(timed "$vonel" --home "$work" 'mailto:bob@example.org?subject=Hi')")
  sleep 1.1
done
report "second copy, no arguments" "${show[@]}"
report "second copy, mailto link" "${link[@]}"
echo "commands the first copy took: $(grep -c 'Command passed in:' "$work/log.txt") of $((2 * count))"
