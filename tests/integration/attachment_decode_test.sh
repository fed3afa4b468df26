#!/usr/bin/env bash
# Attachments saved by vonel-inspect message --parts --save are byte for byte
# what base64 -d and Python's quopri make of the same encoded source, and a
# hostile attachment name stays inside the folder it is saved to.
set -euo pipefail
inspect="$(dirname "$1")/vonel-inspect"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

# The encoded sources: random binary as base64 in lines of 76, and text with
# every byte value, long lines and trailing blanks as quoted-printable.
head -c 300000 /dev/urandom >"$work/binary.bin"
base64 -w 76 "$work/binary.bin" | sed 's/$/\r/' >"$work/binary.b64"
python3 - "$work/text.qp" <<'PY'
import quopri, sys
raw = bytes(range(256)) * 4 + b"A long line that goes on " * 20 + b"\r\ntrailing blanks   \r\nend"
with open(sys.argv[1], "wb") as f:
    f.write(quopri.encodestring(raw).replace(b"\n", b"\r\n"))
PY

{
  printf 'From: a@example.org\r\nSubject: files\r\nContent-Type: multipart/mixed; boundary="sep"\r\n\r\n'
  printf -- '--sep\r\nContent-Type: text/plain\r\n\r\nTwo files.\r\n'
  printf -- '--sep\r\nContent-Type: application/octet-stream; name="binary.bin"\r\n'
  printf 'Content-Transfer-Encoding: base64\r\n\r\n'
  cat "$work/binary.b64"
  printf -- '--sep\r\nContent-Type: application/octet-stream; name="../../escape/text.dat"\r\n'
  printf 'Content-Transfer-Encoding: quoted-printable\r\n\r\n'
  cat "$work/text.qp"
  printf '\r\n--sep--\r\n'
} >"$work/mail.eml"

listing=$("$inspect" message "$work/mail.eml" --parts --save "$work/saved/inner")
echo "$listing" | grep -q $'^2\tapplication/octet-stream\tbinary.bin\tbase64\t300000$' || fail "part list: $listing"

tr -d '\r' <"$work/binary.b64" | base64 -d >"$work/expected.bin"
cmp "$work/expected.bin" "$work/saved/inner/binary.bin" || fail "base64 attachment differs"

python3 -c 'import quopri, sys; sys.stdout.buffer.write(quopri.decodestring(open(sys.argv[1], "rb").read()))' \
  "$work/text.qp" >"$work/expected.dat"
saved=$(find "$work/saved" -type f -name '*.dat')
[ "$saved" = "$work/saved/inner/escape text.dat" ] || fail "hostile name saved as: $saved"
cmp "$work/expected.dat" "$saved" || fail "quoted-printable attachment differs"
[ ! -e "$work/escape" ] && [ ! -e "$work/saved/escape" ] || fail "written outside the folder"
echo "ok"
