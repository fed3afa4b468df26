#!/usr/bin/env bash
# What a recipient gets from vonel --merge and --send through a real SMTP
# server (aiosmtpd on loopback), byte for byte: the spool file as the program
# wrote it (body lines ".", "..", ".x" as written, a Message-ID of its own),
# behind the "Date:" line, with the same Message-ID as the Sent Items copy,
# and without the store's own header lines, while body lines that look like
# them stay. The merge reads a data file with LF line ends.
set -euo pipefail
vonel=$1
srcdir=$2
work=$(mktemp -d)
cleanup() {
  bash "$srcdir/tools/smtp-server.sh" stop "$work/server" || true
  rm -rf "$work"
}
trap cleanup EXIT; [ -z "${KEEP:-}" ] || trap - EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }
python=/usr/bin/python3
[ -x "$python" ] || python=python3

port=$(bash "$srcdir/tools/smtp-server.sh" start "$work/server")
home="$work/home"
outbox="$home/Messages/Outbox"
mkdir -p "$home"
printf 'REPLYADDRESS0,me@example.org\r\nSMTP0,127.0.0.1\r\nSMTPPort0,%s\r\n' "$port" >"$home/Vonel.ini"

# LF rows, the last one without an end.
printf '$EMAIL,$NAME\nann@x.org,Ann\nbob@x.org,Bob' >"$work/data.txt"
printf 'Subject: Dots for $NAME\r\n.\r\n..\r\n.x\r\nx.\r\nFrom: a body line\r\n...and $NAME\r\n' \
  >"$work/template.txt"
"$vonel" --home "$home" --merge "$work/data.txt" "$work/template.txt" >"$work/out" 2>"$work/err" ||
  fail "merge: exit $?: $(cat "$work/err")"
grep -q "Processed 2 name(s)" "$work/err" || fail "no merge summary: $(cat "$work/err")"

# An outbox file that carries store lines in its header and look-alikes in its
# body. (A merged body keeps clear of them: the store rewrites the first
# "X-Message-Tags" of a text it files, wherever it stands.)
printf 'From: <me@example.org>\r\nTo: <cy@x.org>\r\nX-Receive-Date: 2026-11-23 09:30:15\r\nSubject: Stored\r\n'\
'x-message-tags: Work,\r\n Home\r\nX-Message-Read: 1\r\nX-Message-Replied: 1\r\nX-Message-HighPriority: 1\r\n'\
'Message-ID: <kept@example.org>\r\n\r\nX-Message-Read: 1\r\nX-Receive-Date: in the body\r\n.\r\n' \
  >"$outbox/00_outbound_5.eml"
mkdir "$work/spooled"
cp "$outbox"/*.eml "$work/spooled/"

set +e
"$vonel" --home "$home" --send >"$work/out" 2>"$work/err"
code=$?
set -e
[ "$code" -eq 0 ] || fail "send: exit $code: $(cat "$work/err")"

"$python" - "$work" "$home/Messages/Sent Items" <<'PY' || fail "what arrived is not what was written"
import pathlib, re, sys
work, sent = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
store = re.compile(rb"^(x-receive-date|x-message-(read|tags|replied|highpriority))\s*:", re.I | re.M)

def split(text):
    head, _, body = text.partition(b"\r\n\r\n")
    return head, body

def message_id(text):
    ids = re.findall(rb"^Message-ID: (<[^>\r\n]+>)\r$", split(text)[0] + b"\r\n", re.M)
    assert len(ids) == 1, (ids, text[:600])
    return ids[0]

spooled = {p.name: p.read_bytes() for p in (work / "spooled").glob("*.eml")}
arrived = [p.read_bytes() for p in sorted((work / "server").glob("*.eml"))]
copies = {message_id(p.read_bytes()): p.read_bytes() for p in sent.glob("*.eml")}
assert len(spooled) == 3 and len(arrived) == 3 and len(copies) == 3, (spooled.keys(), len(arrived), copies.keys())

for name in ("00_outbound_0.eml", "00_outbound_1.eml"):
    first = b"Ann" if name.endswith("0.eml") else b"Bob"
    body = b".\r\n..\r\n.x\r\nx.\r\nFrom: a body line\r\n...and " + first + b"\r\n"
    assert split(spooled[name])[1] == b"\r\n" + body + b"\r\n\r\n", spooled[name]
    assert re.fullmatch(rb"<\d{14}\.[0-9a-f]{24}@example\.org>", message_id(spooled[name]))

def wire(text):
    # The outbox sends the file less its store header lines and its last line ends.
    head, body = split(text)
    kept = [line for line in re.split(rb"\r\n(?![ \t])", head) if not store.match(line)]
    return b"\r\n".join(kept) + b"\r\n\r\n" + body.rstrip(b"\r\n") + b"\r\n\r\n"

by_id = {message_id(text): text for text in spooled.values()}
assert set(by_id) == set(copies), (by_id.keys(), copies.keys())
for text in arrived:
    date, _, rest = text.partition(b"\r\n")
    assert date.startswith(b"Date: "), date
    assert not store.search(split(rest)[0]), rest[:400]
    mid = message_id(rest)
    assert rest == wire(by_id[mid]), (rest, wire(by_id[mid]))
    assert split(copies[mid])[1] == split(by_id[mid])[1], mid
assert b"<kept@example.org>" in by_id
PY
echo "outbox bytes: ok"
