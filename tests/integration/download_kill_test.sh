#!/usr/bin/env bash
# A download that deletes on retrieve, killed at one point after another and
# run again each time: every message ends up stored exactly once, and the
# server gives up only what had reached the store before a QUIT.
set -euo pipefail
vonel=$1
source_dir=$2
fail() { echo "FAIL: $*" >&2; exit 1; }
source "$source_dir/tools/one-dovecot.sh"
home="$work/home"
store="$home/Messages"
mkdir -p "$home" "$work/served/new"
{ account0_settings; printf 'DELETEONRETRIEVE,1\r\n'; } >"$home/Vonel.ini"

total=150
python3 - "$work/served/new" "$total" <<'PY'
import os, sys
folder, total = sys.argv[1], int(sys.argv[2])
for i in range(1, total + 1):
    with open(os.path.join(folder, f"k{i:03d}.test"), "w", newline="") as f:
        f.write(f"From: Sender {i} <s{i}@example.org>\nSubject: Kill {i}\n\n" + f"Line {i} of the message.\n" * (5 * i))
PY
cp "$work/served/new/"* "$maildir/new/"
chmod -R a+rwX "$maildir"

on_server() { find "$maildir/new" "$maildir/cur" -type f | wc -l; }
stored_count() { find "$store" -type f -iname '*.eml' 2>/dev/null | wc -l; }

# Each run is killed once it has stored a few more messages, the last one
# after its final message (before or after its QUIT), and one at once.
for step in 0 7 20 40 1000; do
  : >"$work/run.out"
  "$vonel" --home "$home" --download </dev/null >"$work/run.out" 2>&1 &
  pid=$!
  while kill -0 "$pid" 2>/dev/null && [ "$(grep -c '^stored' "$work/run.out")" -lt "$step" ]; do sleep 0.01; done
  kill -KILL "$pid" 2>/dev/null || true
  wait "$pid" 2>/dev/null || true
  # Nothing may be gone from the server that isn't in the store.
  [ $(( $(on_server) + $(stored_count) )) -ge "$total" ] || fail "after a kill at $step: $(on_server) on the server, $(stored_count) stored"
done
"$vonel" --home "$home" --download </dev/null >"$work/last.out" 2>&1 || fail "the last run failed: $(cat "$work/last.out")"
[ "$(on_server)" -eq 0 ] || fail "$(on_server) messages left on the server"
report=$(python3 "$source_dir/tools/compare-store.py" "$work/served" "$store") || fail "the store after the kills: $report"
[ ! -e "$home/Fetching0.txt" ] || fail "Fetching0.txt left behind"
echo "download killed five times: ok ($report)"
