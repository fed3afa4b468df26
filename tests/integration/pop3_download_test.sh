#!/usr/bin/env bash
# Downloads from a real Dovecot server: every stored file is the message as
# the server serves it plus the store's header lines, byte for byte; mail
# left on the server is stored once, also when a run is killed in the middle.
set -euo pipefail
vonel=$1
source_dir=$2
fail() { echo "FAIL: $*" >&2; exit 1; }
source "$source_dir/tools/one-dovecot.sh"
home="$work/home"
store="$home/Messages"
mkdir -p "$home"
account0_settings >"$home/Vonel.ini"

# Messages as a mail server keeps them, with LF line ends: dot lines of every
# kind, a long line, and one without a line end at its end.
python3 - "$maildir/new" <<'PY'
import os, sys
folder = sys.argv[1]
messages = {
    "dots": "Subject: Dots\n\n.\n..\n...\n.x\n. \nx.\n.\n",
    "longline": "Subject: Long line\n\n" + "word " * 4000 + "\nshort\n",
    "noend": "Subject: No end\n\nfirst\n.\nlast line without end",
    "dotlast": "Subject: Dot last\n\nbody\n..",
    "headeronly": "Subject: Only a header\nX-Note: no body at all\n",
    "crlf": "Subject: Already CR LF\r\n\r\nkept\r\n..\r\n",
}
for name, text in messages.items():
    with open(os.path.join(folder, name + ".test"), "w", newline="") as f:
        f.write(text)
PY
chmod -R a+rwX "$maildir"

stored_count() { find "$store" -type f -iname '*.eml' | wc -l; }
compare_store() { python3 "$source_dir/tools/compare-store.py" "$maildir" "$store"; }

output=$("$vonel" --home "$home" --download </dev/null)
[ "$(grep -c '^stored' <<<"$output")" -eq 6 ] || fail "first download: $output"
report=$(compare_store) || fail "stored files differ from the server's messages: $report"
[ -s "$home/Fetched0.txt" ] || fail "no Fetched0.txt after a download that left mail on the server"
[ "$(wc -l <"$home/Fetched0.txt")" -eq 6 ] || fail "Fetched0.txt: $(cat "$home/Fetched0.txt")"

# Left on the server and downloaded again: nothing new.
output=$("$vonel" --home "$home" --download </dev/null)
! grep -q '^stored' <<<"$output" || fail "the second download stored again: $output"
[ "$(stored_count)" -eq 6 ] || fail "$(stored_count) files after the second download"

# A download killed in the middle and run again stores each message once.
python3 - "$maildir/new" <<'PY'
import os, sys
for i in range(1, 201):
    with open(os.path.join(sys.argv[1], f"bulk{i:03d}.test"), "w", newline="") as f:
        f.write(f"From: Sender {i} <s{i}@example.org>\nSubject: Bulk {i}\n\n" + f"Line {i} of the bulk.\n.\n" * (20 * i))
PY
chmod -R a+rwX "$maildir"
"$vonel" --home "$home" --download </dev/null >"$work/killed.out" 2>&1 &
pid=$!
# Killed once it has stored a fair part, whatever the machine's speed.
while kill -0 "$pid" 2>/dev/null && [ "$(grep -c '^stored' "$work/killed.out")" -lt 40 ]; do sleep 0.05; done
kill -KILL "$pid" 2>/dev/null || true
wait "$pid" 2>/dev/null || true
before=$(stored_count)
[ "$before" -lt 206 ] || echo "note: the killed run had already stored everything"
"$vonel" --home "$home" --download </dev/null >"$work/rerun.out"
report=$(compare_store) || fail "after a killed download and a rerun: $report"
[ "$(stored_count)" -eq 206 ] || fail "$(stored_count) files after the rerun"
[ "$(wc -l <"$home/Fetched0.txt")" -eq 206 ] || fail "Fetched0.txt holds $(wc -l <"$home/Fetched0.txt") ids"
[ ! -e "$home/Fetching0.txt" ] || fail "Fetching0.txt left behind"

# Deleting on retrieve empties the server; the ids of what is gone are pruned at the next listing.
printf 'DELETEONRETRIEVE,1\r\n' >>"$home/Vonel.ini"
output=$("$vonel" --home "$home" --download </dev/null)
! grep -q '^stored' <<<"$output" || fail "deleting on retrieve stored again: $output"
[ "$(find "$maildir/new" "$maildir/cur" -type f | wc -l)" -eq 0 ] || fail "stored mail left on the server"
"$vonel" --home "$home" --download </dev/null >/dev/null
[ ! -s "$home/Fetched0.txt" ] || fail "ids of deleted mail kept: $(head -3 "$home/Fetched0.txt")"
echo "pop3 download against dovecot: ok ($before stored before the kill)"
