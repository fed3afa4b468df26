#!/usr/bin/env bash
# vonel --send and --merge against two real SMTP servers (aiosmtpd on
# loopback) standing for accounts 0 and 7: each account's files go to its own
# server over one connection and land in Sent Items; a refused recipient keeps
# its own file in the outbox, with the reply beside it, and the others go; a
# connection dropped after the data, an account without a server and a full
# Sent Items folder each leave the unsent files in the outbox.
set -euo pipefail
vonel=$1
srcdir=$2
work=$(mktemp -d)
mounted=""
cleanup() {
  bash "$srcdir/tools/smtp-server.sh" stop "$work/a" || true
  bash "$srcdir/tools/smtp-server.sh" stop "$work/b" || true
  [ -z "$mounted" ] || umount "$mounted" || true
  rm -rf "$work"
}
trap cleanup EXIT; [ -z "${KEEP:-}" ] || trap - EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }
python=/usr/bin/python3
[ -x "$python" ] || python=python3

port_a=$(bash "$srcdir/tools/smtp-server.sh" start "$work/a")
port_b=$(bash "$srcdir/tools/smtp-server.sh" start "$work/b")
home="$work/home"
outbox="$home/Messages/Outbox"
sent="$home/Messages/Sent Items"
mkdir -p "$home"
printf 'REPLYADDRESS0,zero@example.org\r\nSMTP0,127.0.0.1\r\nSMTPPort0,%s\r\n' "$port_a" >"$home/Vonel.ini"
printf 'REPLYADDRESS7,seven@example.org\r\nSMTP7,127.0.0.1\r\nSMTPPort7,%s\r\n' "$port_b" >>"$home/Vonel.ini"
printf 'REPLYADDRESS5,five@example.org\r\n' >>"$home/Vonel.ini"
mkdir -p "$outbox"

# An outbox file as the spool writer makes it; extra header lines in $4.
spool() {
  printf 'From: "Sender" <%s>\r\nTo: <%s>\r\n%bSubject: %s\r\n\r\nBody of %s\r\n' "$2" "$3" "${4:-}" "$1" "$1" \
    >"$outbox/$1.eml"
}
run_send() {
  set +e
  QT_QPA_PLATFORM=offscreen "$vonel" --home "$home" --send >"$work/out" 2>"$work/err"
  code=$?
  set -e
}
count() { find "$1" -maxdepth 1 -name '*.eml' | wc -l; }
outbox_has() { [ -e "$outbox/$1.eml" ] || fail "$1 left the outbox: $(cat "$work/out" "$work/err")"; }

# Two accounts, two files each, one of them with Cc and Bcc.
spool 00_outbound_0 zero@example.org one@x.org 'Cc: <copy@x.org>\r\nBcc: <hidden@x.org>\r\n'
spool 00_outbound_1 zero@example.org two@x.org
spool 07_outbound_0 seven@example.org three@y.org
spool 07_outbound_1 seven@example.org four@y.org
run_send
[ "$code" -eq 0 ] || fail "two accounts: exit $code: $(cat "$work/err")"
[ "$(count "$outbox")" -eq 0 ] || fail "outbox not emptied: $(ls "$outbox")"
[ "$(count "$sent")" -eq 4 ] || fail "Sent Items holds $(count "$sent") files"
[ "$(cat "$work/a/connections")" -eq 1 ] || fail "account 0 used $(cat "$work/a/connections") connections"
[ "$(cat "$work/b/connections")" -eq 1 ] || fail "account 7 used $(cat "$work/b/connections") connections"
grep -q "Sent 00_outbound_1 to " "$work/out" || fail "no progress line: $(cat "$work/out")"
"$python" - "$work" "$sent" <<'PY' || fail "servers did not store what was sent"
import sys, pathlib, email
work, sent = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
def arrived(server):
    return [(m.read_bytes(), m.with_suffix(".env").read_text().split()) for m in sorted((work / server).glob("*.eml"))]
a, b = arrived("a"), arrived("b")
assert [env for _, env in a] == [["zero@example.org", "one@x.org", "copy@x.org", "hidden@x.org"],
                                 ["zero@example.org", "two@x.org"]], a
assert [env for _, env in b] == [["seven@example.org", "three@y.org"], ["seven@example.org", "four@y.org"]], b
first = a[0][0]
assert first.startswith(b"Date: "), first[:40]
assert b"Bcc:" not in first and b"Cc: <copy@x.org>\r\n" in first, first
assert b"Body of 00_outbound_0" in first
for copy in sent.glob("*.eml"):
    text = copy.read_bytes()
    assert copy.name == copy.name.lower(), copy.name
    assert b"\r\nDate: " in text.split(b"\r\n\r\n")[0], text[:300]
    assert b"X-Message-Read: 1" in text
PY

# A refused recipient: its file stays with the reply beside it, the others
# go on over the same connection, and the command says so and exits 1.
rm -f "$sent"/*.eml
spool 00_outbound_0 zero@example.org refused@x.org
spool 00_outbound_1 zero@example.org fine@x.org
spool 07_outbound_0 seven@example.org fine@y.org
run_send
[ "$code" -eq 1 ] || fail "refused recipient: exit $code"
grep -q '^vonel: Refused 00_outbound_0.eml ("00_outbound_0" to refused@x.org): 550 5.1.1 <refused@x.org>: Recipient address rejected; it stays in the outbox$' \
  "$work/err" || fail "no refusal message: $(cat "$work/err")"
[ "$(grep -c Refused "$work/err")" -eq 1 ] || fail "more than one refusal: $(cat "$work/err")"
outbox_has 00_outbound_0
[ "$(count "$outbox")" -eq 1 ] || fail "the others stayed: $(ls "$outbox")"
[ "$(cat "$outbox/00_outbound_0.eml.refused")" = $'550 5.1.1 <refused@x.org>: Recipient address rejected\r' ] ||
  fail "reply not kept beside the file: $(cat -A "$outbox/00_outbound_0.eml.refused")"
[ "$(count "$sent")" -eq 2 ] || fail "Sent Items holds $(count "$sent") files"
[ "$(count "$work/a")" -eq 3 ] && [ "$(count "$work/b")" -eq 3 ] || fail "the others did not arrive"
[ "$(cat "$work/a/connections")" -eq 2 ] || fail "account 0 took a second connection for the refusal"
rm -f "$outbox"/* "$sent"/*.eml

# Digits above 19 are never sent, and the upload still ends well.
spool 00_outbound_0 zero@example.org five@x.org
spool 25_outbound_0 zero@example.org never@x.org
run_send
[ "$code" -eq 0 ] || fail "account 25: exit $code: $(cat "$work/err")"
outbox_has 25_outbound_0
[ ! -e "$outbox/00_outbound_0.eml" ] || fail "account 0 file not sent beside account 25"
rm -f "$outbox"/*.eml

# An account without a server: the file stays, with the documented message.
spool 05_outbound_0 five@example.org nowhere@x.org
run_send
[ "$code" -eq 1 ] || fail "no server: exit $code"
grep -q "Please specify SMTP server #6 in the settings" "$work/err" || fail "no server message: $(cat "$work/err")"
outbox_has 05_outbound_0
rm -f "$outbox"/*.eml

# The connection dropped after the data: nothing marked sent, the file stays.
spool 00_outbound_0 zero@example.org dropped@x.org
run_send
[ "$code" -eq 1 ] || fail "dropped connection: exit $code"
outbox_has 00_outbound_0
[ "$(count "$sent")" -eq 1 ] || fail "a dropped message was filed as sent"
rm -f "$outbox"/*.eml "$sent"/*.eml

# A merge of three rows, with quotes and commas, arrives with its fields filled.
printf '$EMAIL,$FIRST,$NOTE\r\nann@x.org,Ann,"quoted"\r\nbob@x.org, Bob ,one, two, three\r\ncy@x.org,Cy,plain\r\n' \
  >"$work/data.txt"
printf 'Subject: For $FIRST\r\nDear $first,\r\nyour note: $NOTE ($EMAIL)\r\n' >"$work/template.txt"
QT_QPA_PLATFORM=offscreen "$vonel" --home "$home" --merge "$work/data.txt" "$work/template.txt" \
  >"$work/out" 2>"$work/err" || fail "merge: exit $?: $(cat "$work/err")"
grep -q "Processed 3 name(s)" "$work/err" || fail "no merge summary: $(cat "$work/err")"
[ "$(count "$outbox")" -eq 3 ] || fail "merge made $(count "$outbox") outbox files"
run_send
[ "$code" -eq 0 ] || fail "merged send: exit $code: $(cat "$work/err")"
"$python" - "$work/a" <<'PY' || fail "merged messages arrived wrong"
import sys, pathlib, email
arrived = sorted(pathlib.Path(sys.argv[1]).glob("*.eml"))[-3:]
messages = [email.message_from_bytes(m.read_bytes()) for m in arrived]
got = [(m["Subject"], m["To"], m.get_payload().strip()) for m in messages]
assert got == [
    ("For Ann", '"ann@x.org" <ann@x.org>', 'Dear Ann,\r\nyour note: "quoted" (ann@x.org)'),
    ("For Bob", '"bob@x.org" <bob@x.org>', "Dear Bob,\r\nyour note: one two three (bob@x.org)"),
    ("For Cy", '"cy@x.org" <cy@x.org>', "Dear Cy,\r\nyour note: plain (cy@x.org)"),
], got
for m in messages:
    assert m["From"].endswith("<zero@example.org>"), m["From"]
PY

# Send/Receive: the upload runs beside a pass (here over no POP3 server).
spool 00_outbound_0 zero@example.org beside@x.org
set +e
QT_QPA_PLATFORM=offscreen "$vonel" --home "$home" --scan --send >"$work/out" 2>"$work/err"
code=$?
set -e
[ "$code" -eq 0 ] || fail "scan and send: exit $code: $(cat "$work/err")"
grep -q "Sent 00_outbound_0 to " "$work/out" || fail "scan and send sent nothing: $(cat "$work/out")"
[ "$(count "$outbox")" -eq 0 ] || fail "scan and send left $(ls "$outbox")"

# Sent Items full: the message went out, but its file stays in the outbox.
spool 00_outbound_0 zero@example.org full@x.org
if [ "$(id -u)" -eq 0 ] && mount -t tmpfs -o size=16k tmpfs "$sent" 2>/dev/null; then
  mounted="$sent"
  dd if=/dev/zero of="$sent/filler" bs=4096 count=16 2>/dev/null || true
else
  # Without a small disk to fill, a Sent Items that can't hold files at all.
  rm -rf "$sent"
  printf 'not a folder' >"$sent"
fi
run_send
[ "$code" -eq 1 ] || fail "full Sent Items: exit $code"
grep -q "could not be saved in Sent Items" "$work/err" || fail "no message about Sent Items: $(cat "$work/err")"
outbox_has 00_outbound_0
echo "outbox send: ok"
