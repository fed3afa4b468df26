#!/usr/bin/env bash
# The headless mail cycle at size: `vonel --download` of N mixed messages
# (plain, multipart with a base64 attachment, spam by rule) from Dovecot into
# the store, and `vonel --train` over a store of M messages; wall time,
# messages per second and peak memory of each.
# Usage: bench/mail_cycle.sh path/to/vonel [N [M]]   (default: 1000 5000)
set -euo pipefail
vonel=$(realpath "$1")
count=${2:-1000}
stored=${3:-5000}
source_dir=$(cd "$(dirname "$0")/.." && pwd)
source "$source_dir/tools/one-dovecot.sh"
home="$work/home"
mkdir -p "$home"
account0_settings >"$home/Vonel.ini"
printf 'Filtername, Offers\r\nFilterField, Subject:\r\nFilterComparison, cnt\r\nFilterString, offer\r\nFilterAction, 100\r\nFilterDest, \r\nFilterStop, -1\r\n' >"$home/Rules.txt"

# Mixed mail: a tenth is spam caught by a rule, a quarter carries a 20-60 KB attachment.
generate() {  # folder count prefix
  python3 - "$1" "$2" "$3" <<'PY'
import base64, os, random, sys
folder, count, prefix = sys.argv[1], int(sys.argv[2]), sys.argv[3]
random.seed(count)
os.makedirs(folder, exist_ok=True)
for i in range(1, count + 1):
    subject = f"Special offer {i}" if i % 10 == 0 else f"Report number {i}"
    head = "".join(f"Received: from relay{k}.example.net (relay{k}.example.net [10.0.{k}.{i % 250}])\r\n\tby mx.example.org with ESMTP id {i}{k}\r\n" for k in range(random.randint(2, 6)))
    head += (f"From: Sender {i % 97} <sender{i % 97}@example{i % 13}.com>\r\nTo: jo@example.org\r\nSubject: {subject}\r\n"
             f"Date: Mon, 23 Nov 2026 10:{i % 60:02d}:00 +0000\r\nMessage-ID: <{i}.{prefix}@example.com>\r\nMIME-Version: 1.0\r\n")
    words = " ".join(random.choice(["lorem", "ipsum", "dolor", "amet", "report", "figures", "http://example.org/x"]) for _ in range(random.randint(50, 1500)))
    if i % 4 == 0:
        blob = base64.encodebytes(os.urandom(random.randint(20000, 60000))).decode().replace("\n", "\r\n")
        text = head + ('Content-Type: multipart/mixed; boundary="b1"\r\n\r\n--b1\r\nContent-Type: text/plain\r\n\r\n' + words +
                       '\r\n--b1\r\nContent-Type: application/octet-stream; name="data.bin"\r\nContent-Transfer-Encoding: base64\r\n\r\n' +
                       blob + '--b1--\r\n')
    else:
        text = head + "Content-Type: text/plain; charset=us-ascii\r\n\r\n" + words + "\r\n"
    with open(os.path.join(folder, f"{prefix}{i:06d}.eml"), "w", newline="") as f:
        f.write(text)
PY
}

run() {  # label count, then the command
  local label=$1 n=$2
  shift 2
  local start end
  start=$(date +%s.%N)
  /usr/bin/time -f "%M" -o "$work/rss" "$@" >"$work/out" </dev/null
  end=$(date +%s.%N)
  python3 -c "import sys; print(float(sys.argv[2]) - float(sys.argv[1]))" "$start" "$end" >"$work/seconds"
  python3 -c "import sys; s=float(sys.argv[2])-float(sys.argv[1]); print(f'$label: {s:.2f} s, {int(sys.argv[3])/s:.0f} messages/s, peak memory {int(sys.argv[4])/1024:.1f} MB')" \
    "$start" "$end" "$n" "$(cat "$work/rss")"
}

generate "$maildir/new" "$count" d
chmod -R a+rwX "$maildir"
bytes=$(du -sb "$maildir/new" | cut -f1)
"$vonel" --home "$home" --scan >/dev/null </dev/null  # the server indexes its mailbox once
# The anchor: the same Dovecot serving every message, RETR after RETR over
# one connection, to a client that keeps nothing (Python's poplib).
serve() {
  python3 - "$port" "$count" <<'PY'
import poplib, sys, time
port, count = int(sys.argv[1]), int(sys.argv[2])
poplib._MAXLINE = 1 << 24  # the messages have long lines
start = time.perf_counter()
box = poplib.POP3("127.0.0.1", port)
box.user("jo"); box.pass_("secret")
for n in range(1, count + 1):
    box.retr(n)
box.quit()
print(f"{time.perf_counter() - start:.6f}")
PY
}
# Anchor and Vonel side by side, twice, as the machine is shared.
for round in 1 2; do
  served=$(serve)
  rm -rf "$home/Messages/Inbox" "$home/Fetched0.txt"
  run "download of $count messages ($((bytes / 1048576)) MB)" "$count" "$vonel" --home "$home" --download
  python3 -c "import sys; s, v = float(sys.argv[1]), float(sys.argv[2]); print(f'  anchor, Dovecot serving them (poplib RETR): {s:.2f} s, {int(sys.argv[3]) / s:.0f} messages/s; Vonel takes {v / s:.2f}x')" \
    "$served" "$(cat "$work/seconds")" "$count"
done
echo "  $(grep -c '^stored' "$work/out") stored, $(grep -c $'\tFAIL\t' "$work/out") left on the server by the rule"

rm -rf "$home/Messages/Inbox"
generate "$home/Messages/Inbox" "$((stored * 4 / 5))" g
generate "$home/Messages/SpamBayes" "$((stored / 5))" s
run "training on $stored stored messages" "$stored" "$vonel" --home "$home" --train
tail -1 "$work/out" | sed 's/^/  /'
