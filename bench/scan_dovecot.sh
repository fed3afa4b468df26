#!/usr/bin/env bash
# Scans a Dovecot mailbox of N messages with `vonel --scan` and prints the
# wall time, the scan's share of it, messages per second and peak memory.
# Usage: bench/scan_dovecot.sh path/to/vonel [N...]   (default: 1000 6000)
set -euo pipefail
vonel=$(realpath "$1")
shift
counts=("${@:-1000 6000}")
[ $# -gt 0 ] || counts=(1000 6000)
source_dir=$(cd "$(dirname "$0")/.." && pwd)
source "$source_dir/tools/one-dovecot.sh"
home="$work/home"
mkdir -p "$home"
account0_settings >"$home/Vonel.ini"

seconds() { python3 -c 'import sys,time; print(f"{time.time():.6f}")'; }
filled=0
for count in "${counts[@]}"; do
  "$source_dir/tools/fill-maildir.py" "$maildir/new" "$filled" "$count"
  chmod -R a+rwX "$maildir"
  filled=$count
  # Warm the server's index so that its first listing doesn't count.
  "$vonel" --home "$home" --scan >/dev/null </dev/null
  start=$(seconds)
  "$vonel" --home "$home" --headless </dev/null
  middle=$(seconds)
  /usr/bin/time -f "%M" -o "$work/rss" "$vonel" --home "$home" --scan >"$work/out" </dev/null
  end=$(seconds)
  rows=$(grep -c $'\t' "$work/out")
  python3 - "$count" "$rows" "$start" "$middle" "$end" "$(cat "$work/rss")" <<'PY'
import sys
count, rows = int(sys.argv[1]), int(sys.argv[2])
start, middle, end, rss = float(sys.argv[3]), float(sys.argv[4]), float(sys.argv[5]), int(sys.argv[6])
startup = middle - start
total = end - middle
scan = max(total - startup, 1e-9)
print(f"{count} messages: {rows} listed; wall {total:.3f} s, of it start-up and shutdown {startup:.3f} s, "
      f"scan {scan:.3f} s = {rows / scan:.0f} messages/s; peak memory {rss / 1024:.1f} MB")
PY
done
