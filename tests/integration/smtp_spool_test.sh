#!/usr/bin/env bash
# Spool files written by vonel-inspect spool, read back by Python's own MIME
# parser: headers, body, attachments byte for byte, and the failures that
# must leave no file behind.
set -euo pipefail
inspect="$(dirname "$1")/vonel-inspect"
home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }
python=/usr/bin/python3
[ -x "$python" ] || python=python3

printf 'REPLYADDRESS0,me@example.org\r\nDisplayName0,M\xe9 "Boss", Esq.\r\n' >"$home/Vonel.ini"
printf 'Caf\xe9\r\n.starts with a dot\r\n' >"$home/body.txt"
head -c 300000 /dev/urandom >"$home/random.bin"
printf 'plain text\r\n' >"$home/notes.txt"
now="2026-11-23 12:00:00"

"$inspect" spool --home "$home" --to a@x.org --to b@x.org --cc c@x.org --bcc hidden@x.org \
  --attach "$home/random.bin" --attach "$home/notes.txt" --subject "Two files" --body-file "$home/body.txt" \
  --in-reply-to "<parent@x.org>" --message-id "<fixed@example.org>" --now "$now" --version 1.2.3 "$home/out.eml" \
  >/dev/null || fail "spool exit $?"

"$python" - "$home" <<'PY' || fail "spool file does not parse as written"
import email, sys, pathlib
home = pathlib.Path(sys.argv[1])
raw = (home / "out.eml").read_bytes()
assert b"\n" not in raw.replace(b"\r\n", b""), "bare line end"
msg = email.message_from_bytes(raw)
assert raw.startswith(b'From: "M\xe9 "Boss", Esq." <me@example.org>\r\n'), raw[:60]
assert msg["To"].split() == ["<a@x.org>,", "<b@x.org>"], msg["To"]
assert msg["Bcc"] == "<hidden@x.org>"
assert msg["In-Reply-To"] == "<parent@x.org>"
assert msg["Message-ID"] == "<fixed@example.org>"
assert msg["X-Mailer"] == "Vonel 1.2.3"
assert msg.get_content_type() == "multipart/mixed"
assert msg.get_boundary() == "----_=_NextPart_000_00046349.50000000"
body, first, second = msg.get_payload()
assert body["Content-Transfer-Encoding"] == "8bit"
assert body.get_payload(decode=True) == b"\r\nCaf\xe9\r\n.starts with a dot\r\n\r\n", body.get_payload(decode=True)
assert first.get_filename() == "random.bin" and first.get_content_type() == "application/octet-stream"
assert first.get_payload(decode=True) == (home / "random.bin").read_bytes()
assert second.get_filename() == "notes.txt" and second.get_content_type() == "text/plain"
assert second.get_payload(decode=True) == (home / "notes.txt").read_bytes()
PY

# The same inputs and moment give the same bytes.
"$inspect" spool --home "$home" --to a@x.org --to b@x.org --cc c@x.org --bcc hidden@x.org \
  --attach "$home/random.bin" --attach "$home/notes.txt" --subject "Two files" --body-file "$home/body.txt" \
  --in-reply-to "<parent@x.org>" --message-id "<fixed@example.org>" --now "$now" --version 1.2.3 "$home/again.eml" \
  >/dev/null
cmp -s "$home/out.eml" "$home/again.eml" || fail "spool not reproducible"

# Without --message-id each spool file gets a Message-ID of its own, on the account's domain.
"$inspect" spool --home "$home" --to a@x.org --subject S --body-file "$home/body.txt" "$home/id1.eml" >/dev/null
"$inspect" spool --home "$home" --to a@x.org --subject S --body-file "$home/body.txt" "$home/id2.eml" >/dev/null
id1=$(grep -a '^Message-ID: <.*@example\.org>' "$home/id1.eml") || fail "no Message-ID: $(head -c 400 "$home/id1.eml")"
id2=$(grep -a '^Message-ID: ' "$home/id2.eml")
[ "$id1" != "$id2" ] || fail "two spool files share $id1"

# An attachment that can't be read: a clear error, the old file untouched, no temporary left.
cp "$home/out.eml" "$home/before.eml"
chmod 000 "$home/notes.txt"
if [ "$(id -u)" -ne 0 ]; then
  set +e
  message=$("$inspect" spool --home "$home" --to a@x.org --attach "$home/notes.txt" --subject S \
    --body-file "$home/body.txt" "$home/out.eml" 2>&1)
  code=$?
  set -e
  [ "$code" -eq 1 ] || fail "unreadable attachment: exit $code"
  grep -q "notes.txt" <<<"$message" || fail "unclear message: $message"
  cmp -s "$home/out.eml" "$home/before.eml" || fail "old spool file changed"
fi
chmod 644 "$home/notes.txt"

# No recipient and a missing attachment: both errors, no file.
set +e
message=$("$inspect" spool --home "$home" --attach "$home/gone.bin" --subject S --body-file "$home/body.txt" \
  "$home/none.eml" 2>&1)
code=$?
set -e
[ "$code" -eq 1 ] || fail "bad input: exit $code"
grep -q "The file you tried to attach does not exist" <<<"$message" || fail "no attachment error: $message"
grep -q "No Recipient E-mail Address Specified" <<<"$message" || fail "no recipient error: $message"
[ ! -e "$home/none.eml" ] || fail "spool file written despite errors"
[ -z "$(find "$home" -name '.*.tmp*')" ] || fail "temporary file left behind"
echo "spool files: ok"
