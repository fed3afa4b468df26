#!/usr/bin/env bash
# Merges a data file of N rows into the outbox with `vonel --merge` and sends
# S of them to aiosmtpd on loopback with `vonel --send`, beside the anchor:
# Python's smtplib sending the same S messages to the same server over one
# connection. Prints rows per second for the merge, messages per second for
# both uploads and their ratio.
# Usage: bench/merge_send.sh path/to/vonel [N [S]]   (default: 10000 1000)
set -euo pipefail
vonel=$(realpath "$1")
rows=${2:-10000}
sent=${3:-1000}
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
# What the disk allows: the same number of files of that size made through a
# temporary file and a rename in one folder, by a bare loop (no barrier).
size=$(stat -c %s "$(find "$home/Messages/Outbox" -name '*.eml' | head -1)")
start=$(seconds)
python3 - "$work/bare" "$rows" "$size" <<'PY'
import os, sys
folder, count, size = sys.argv[1], int(sys.argv[2]), int(sys.argv[3])
os.makedirs(folder)
data = b"x" * size
for i in range(count):
    name = os.path.join(folder, f"00_outbound_{i}.eml")
    fd = os.open(name + ".tmp", os.O_WRONLY | os.O_CREAT | os.O_EXCL, 0o644)
    os.write(fd, data)
    os.close(fd)
    os.rename(name + ".tmp", name)
PY
end=$(seconds)
echo "  anchor, a bare loop making $rows such files: $(rate "$rows" "$start" "$end") files/s"
rm -rf "$work/bare"

# Only the first S files stay for the upload; the anchor gets copies of them.
mkdir -p "$work/rest" "$work/anchor"
find "$home/Messages/Outbox" -name '*.eml' | sort -V | tail -n +$((sent + 1)) | xargs -r mv -t "$work/rest"
cp "$home/Messages/Outbox/"*.eml "$work/anchor/"
arrived_count() { find "$work/smtp" -name '*.eml' | wc -l; }

before=$(arrived_count)
start=$(seconds)
python3 - "$port" "$work/anchor" <<'PY'
import os, smtplib, sys
port, folder = int(sys.argv[1]), sys.argv[2]
with smtplib.SMTP("127.0.0.1", port) as server:
    for name in sorted(os.listdir(folder)):
        with open(os.path.join(folder, name), "rb") as f:
            server.sendmail("me@example.org", ["to@example.net"], f.read())
PY
end=$(seconds)
anchor=$(python3 -c "import sys; print(float(sys.argv[2]) - float(sys.argv[1]))" "$start" "$end")
echo "anchor, smtplib: $(( $(arrived_count) - before )) messages arrived: $(rate "$sent" "$start" "$end") messages/s"

before=$(arrived_count)
start=$(seconds)
QT_QPA_PLATFORM=offscreen "$vonel" --home "$home" --send >/dev/null 2>"$work/send.err"
end=$(seconds)
echo "send: $(( $(arrived_count) - before )) messages arrived: $(rate "$sent" "$start" "$end") messages/s," \
  "$(python3 -c "import sys; print(f'{(float(sys.argv[2]) - float(sys.argv[1])) / float(sys.argv[3]):.2f}')" "$start" "$end" "$anchor")x smtplib's time"
