#!/usr/bin/env bash
# Merges a data file of N rows into the outbox with `vonel --merge` and sends
# the outbox to aiosmtpd on loopback with `vonel --send`; prints rows per
# second for the merge and messages per second for the upload.
# Usage: bench/merge_send.sh path/to/vonel [N]   (default: 10000)
set -euo pipefail
vonel=$(realpath "$1")
rows=${2:-10000}
source_dir=$(cd "$(dirname "$0")/.." && pwd)
work=$(mktemp -d)
trap '"$source_dir/tools/smtp-server.sh" stop "$work/smtp" || true; rm -rf "$work"' EXIT

port=$("$source_dir/tools/smtp-server.sh" start "$work/smtp")
home="$work/home"
mkdir -p "$home"
printf 'REPLYADDRESS0,me@example.org\r\nSMTP0,127.0.0.1\r\nSMTPPort0,%s\r\n' "$port" >"$home/Vonel.ini"
python3 - "$work/data.txt" "$rows" <<'PY'
import sys
with open(sys.argv[1], "wb") as out:
    out.write(b"$EMAIL,$FIRST,$CITY,$NOTE")
    for i in range(int(sys.argv[2])):
        out.write(f"\r\nuser{i}@example.net,Name{i},City {i % 97},note, with commas {i}".encode())
PY
printf 'Subject: News for $FIRST\r\nDear $FIRST,\r\n\r\nthe office in $CITY writes to $EMAIL: $NOTE.\r\n%s\r\n' \
  "$(python3 -c 'print("Some ordinary text of a newsletter. " * 40)')" >"$work/template.txt"

seconds() { python3 -c 'import time; print(f"{time.time():.6f}")'; }
rate() { python3 -c "import sys; n, a, b = int(sys.argv[1]), float(sys.argv[2]), float(sys.argv[3]); print(f'{b - a:.2f} s, {n / (b - a):.0f}')" "$@"; }

start=$(seconds)
QT_QPA_PLATFORM=offscreen "$vonel" --home "$home" --merge "$work/data.txt" "$work/template.txt" >/dev/null 2>"$work/merge.err"
end=$(seconds)
spooled=$(find "$home/Messages/Outbox" -name '*.eml' | wc -l)
echo "merge: $rows rows, $spooled outbox files: $(rate "$rows" "$start" "$end") rows/s"

start=$(seconds)
QT_QPA_PLATFORM=offscreen "$vonel" --home "$home" --send >/dev/null 2>"$work/send.err"
end=$(seconds)
arrived=$(find "$work/smtp" -name '*.eml' | wc -l)
echo "send: $arrived messages arrived: $(rate "$arrived" "$start" "$end") messages/s"
