#!/usr/bin/env bash
# Every message deleted on a real Dovecot server from its headers leaves its
# header block, with the verdict, in the store folder "Screened" and a line
# in the log; old entries go at the start of a pass.
set -euo pipefail
vonel=$1
source_dir=$2
fail() { echo "FAIL: $*" >&2; exit 1; }
source "$source_dir/tools/one-dovecot.sh"
message() {  # id from subject
  printf 'From: %s\nTo: jo@example.org\nSubject: %s\nMessage-ID: <%s@example.org>\nX-Folded: first\n\tsecond\n\nBody of %s\n' \
    "$2" "$3" "$1" "$1" >"$maildir/new/$1.test"
  chmod -R a+rwX "$maildir"
}
message good "Ann <ann@example.com>" "Lunch on Friday"
message blocked1 "Bad <bad@spam.example>" "Hello"
message blocked2 "Bad <bad@spam.example>" "Hello again"
message rule "Pills <pills@example.net>" "Cheap V1AGRA today"

home="$work/home"
screened="$home/Messages/Screened"
mkdir -p "$home"
account0_settings >"$home/Vonel.ini"
printf 'bad@spam.example\r\n' >"$home/Blocked.txt"
printf 'Filtername, Pills\r\nFilterField, Subject:\r\nFilterComparison, cnt\r\nFilterString, viagra\r\nFilterAction, 100\r\nFilterDest, \r\nFilterStop, 0\r\n' \
  >"$home/Rules.txt"

"$vonel" --home "$home" --scan --delete </dev/null >/dev/null
[ "$(find "$maildir/new" "$maildir/cur" -type f | wc -l)" -eq 1 ] || fail "the scan did not delete the three failing messages"
[ "$(ls "$screened" | wc -l)" -eq 3 ] || fail "Screened holds: $(ls "$screened")"
! ls "$screened" | grep -q '[A-Z]' || fail "Screened entries are not read: $(ls "$screened")"
# Each entry is the header block as the server served it, the verdict line and the store's lines.
python3 - "$screened" <<'PY' || fail "Screened entries"
import os, sys
folder = sys.argv[1]
for name in os.listdir(folder):
    with open(os.path.join(folder, name), "rb") as f:
        text = f.read()
    head, blank, body = text.partition(b"\r\n\r\n")
    lines = head.split(b"\r\n")
    assert blank and body == b"", (name, text)
    assert lines[0].startswith(b"From: ") and lines[1] == b"To: jo@example.org", (name, text)
    assert lines[4:6] == [b"X-Folded: first", b"\tsecond"], (name, text)
    verdict = [l for l in lines if l.startswith(b"X-Screened: ")]
    assert len(verdict) == 1 and (verdict[0].startswith(b"X-Screened: BLOCK; score ") or
                                  verdict[0].startswith(b"X-Screened: FAIL; score ") and verdict[0].endswith(b"; Pills")), verdict
    assert b"X-Message-Read: 1" in lines and b"Body of" not in text, (name, text)
PY
grep -q $'^Screened\\\\\r$' "$home/folderlist.ini" || fail "Screened is not in the folder list: $(cat "$home/folderlist.ini")"
[ "$(grep -c 'Screened ".*" from .* deleted on server, ' "$home/log.txt")" -eq 3 ] || fail "log: $(grep Screened "$home/log.txt")"

# A download with --delete keeps the same trace of a failing header.
message blocked3 "Bad <bad@spam.example>" "Third time"
"$vonel" --home "$home" --download --delete </dev/null >/dev/null
[ "$(ls "$screened" | wc -l)" -eq 4 ] || fail "the download's deletion left no trace: $(ls "$screened")"
grep -q '^Subject: Third time' "$screened"/third* || fail "no entry for the downloaded pass"

# Entries older than ScreenedDays go at the start of a pass.
touch -d '31 days ago' "$screened"/hello*
"$vonel" --home "$home" --scan </dev/null >/dev/null
[ "$(ls "$screened")" = "$(ls "$screened" | grep -v '^hello')" ] && [ "$(ls "$screened" | wc -l)" -eq 2 ] ||
  fail "after 30 days: $(ls "$screened")"
echo "screened deletions against dovecot: ok"
