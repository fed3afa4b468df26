#!/usr/bin/env bash
# Times `vonel --scan` (TOPs sent ahead) against `vonel --scan --lockstep` on
# a Dovecot mailbox of N messages, directly and through tools/delay-proxy at
# 0 ms and at a 20 ms round trip. Prints per case the medians of the whole
# run's wall time, less the median start-up and shutdown (a --headless run)
# with its messages per second, of the time from the first listed header to
# the last as the output shows them, and of the peak memory.
# Usage: bench/scan_pipelined.sh path/to/vonel [N...]   (default: 1000 6000)
# RUNS (default 5) runs per case; a lock-step scan at 20 ms runs once.
# PATHS and WALKS narrow the cases: "direct proxy0 proxy20", "ahead lockstep".
set -euo pipefail
vonel=$(realpath "$1")
shift
counts=("$@")
[ $# -gt 0 ] || counts=(1000 6000)
runs=${RUNS:-5}
source_dir=$(cd "$(dirname "$0")/.." && pwd)
source "$source_dir/tools/one-dovecot.sh"
home="$work/home"
mkdir -p "$home"

proxies=()
stop_all() {
  for pid in "${proxies[@]}"; do kill "$pid" 2>/dev/null || true; done
  stop_dovecot
}
trap stop_all EXIT
proxy() {  # name, delay per direction in ms: sets <name>_port
  "$source_dir/tools/delay-proxy" 0 "$port" "$2" "$work/$1.pid" >"$work/$1.port" 2>/dev/null &
  for _ in $(seq 1 50); do [ -s "$work/$1.port" ] && break; sleep 0.1; done
  proxies+=("$(cat "$work/$1.pid")")
  printf -v "$1_port" '%s' "$(head -1 "$work/$1.port")"
}
direct_port=$port
proxy proxy0 0
proxy proxy20 10

median() { sort -g | awk '{ v[NR] = $1 } END { print (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'; }

# Prints "wall walk peak_kb" of one run: the whole run's seconds, the
# seconds from the first listed header to the last, and the peak memory.
timed() {
  local start
  start=$(date +%s.%N)
  /usr/bin/time -f "%M" -o "$work/rss" "$vonel" --home "$home" "$@" </dev/null | python3 -c '
import sys, time
rows = []
with open(sys.argv[1], "w") as out:
    for line in sys.stdin:
        if "\t" in line:
            rows.append(time.time())
        out.write(line)
walk = rows[-1] - rows[0] if rows else 0
print(f"{time.time() - float(sys.argv[2]):.4f} {walk:.4f}", end=" ")' "$work/out" "$start"
  cat "$work/rss"
}

filled=0
paths=(${PATHS:-direct proxy0 proxy20})
walks=(${WALKS:-ahead lockstep})
for count in "${counts[@]}"; do
  "$source_dir/tools/fill-maildir.py" "$maildir/new" "$filled" "$count"
  chmod -R a+rwX "$maildir"
  filled=$count
  account0_settings >"$home/Vonel.ini"
  "$vonel" --home "$home" --scan >/dev/null </dev/null  # warms the server's index
  startup=$(for _ in $(seq "$runs"); do timed --headless; done | cut -d' ' -f1 | median)
  echo "$count messages (start-up and shutdown alone: $startup s)"
  for path in "${paths[@]}"; do
    port_var=${path}_port
    port=${!port_var} account0_settings >"$home/Vonel.ini"
    for walk_name in "${walks[@]}"; do
      options=(--scan)
      [ "$walk_name" = ahead ] || options+=(--lockstep)
      n=$runs
      [ "$walk_name$path" != lockstepproxy20 ] || n=1
      for _ in $(seq "$n"); do
        timed "${options[@]}"
        rows=$(grep -c $'\t' "$work/out" || true)
        [ "$rows" -eq "$count" ] || { echo "$walk_name $path: $rows rows, not $count" >&2; exit 1; }
      done >"$work/times"
      wall=$(cut -d' ' -f1 "$work/times" | median)
      walk=$(cut -d' ' -f2 "$work/times" | median)
      rss=$(cut -d' ' -f3 "$work/times" | median)
      python3 - "$count" "$path" "$walk_name" "$n" "$wall" "$walk" "$rss" "$startup" <<'PY'
import sys
count, path, walk, n = int(sys.argv[1]), sys.argv[2], sys.argv[3], int(sys.argv[4])
wall, headers, rss, startup = float(sys.argv[5]), float(sys.argv[6]), float(sys.argv[7]), float(sys.argv[8])
scan = max(wall - startup, 1e-3)
name = {"direct": "direct", "proxy0": "proxy 0 ms", "proxy20": "proxy 20 ms"}[path]
print(f"  {name:12} {walk:9} median of {n}: wall {wall:7.3f} s, less start-up {scan:7.3f} s "
      f"= {count / scan:7.0f} messages/s, first to last header {headers:7.3f} s; peak memory {rss / 1024:.1f} MB")
PY
    done
  done
done
