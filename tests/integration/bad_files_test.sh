#!/usr/bin/env bash
# Settings files that are binary, huge, read-only or on a full disk never stop
# the program, and what was on disk stays there.
set -euo pipefail
vonel=$1
work=$(mktemp -d)
mounted=""
cleanup() {
  [ -z "$mounted" ] || umount "$mounted" 2>/dev/null || true
  chmod -R u+w "$work" 2>/dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

# Binary bytes around one good line.
mkdir "$work/binary"
{ head -c 4096 /dev/urandom; printf '\r\nREPLYADDRESS0,me@example.org\r\n'; head -c 4096 /dev/urandom; } >"$work/binary/Vonel.ini"
head -c 2048 /dev/urandom >"$work/binary/Paths.ini"
"$vonel" --home "$work/binary" --headless || fail "binary settings: exit $?"

# A 50 MB settings file loads and saves whole.
mkdir "$work/huge"
python3 - "$work/huge/Vonel.ini" <<'PY'
import sys
with open(sys.argv[1], "wb") as f:
    f.write(b"REPLYADDRESS0,me@example.org\r\n")
    line = b"K%07d," + b"v" * 90 + b"\r\n"
    for i in range(520000):
        f.write(line % i)
PY
size_before=$(stat -c %s "$work/huge/Vonel.ini")
"$vonel" --home "$work/huge" --headless || fail "huge settings: exit $?"
[ "$(stat -c %s "$work/huge/Vonel.ini")" -ge "$size_before" ] || fail "huge settings file lost lines"
grep -q "^K0519999,v" "$work/huge/Vonel.ini" || fail "last key of the huge file lost"

# A full disk: the save is refused and the old file stays as it was.
if [ "$(id -u)" -eq 0 ] && mkdir "$work/full" && mount -t tmpfs -o size=256k tmpfs "$work/full" 2>/dev/null; then
  mounted="$work/full"
  printf 'REPLYADDRESS0,me@example.org\r\nSCANONSTART,0\r\n' >"$work/full/Vonel.ini"
  mkdir -p "$work/full/Messages/Inbox"
  cp "$work/full/Vonel.ini" "$work/expected.ini"
  head -c 1M /dev/zero >"$work/full/filler" 2>/dev/null || true
  output=$("$vonel" --home "$work/full" --headless 2>&1) || fail "full disk: exit $?"
  grep -q "run out of disk space" <<<"$output" || fail "full disk not reported: $output"
  cmp -s "$work/full/Vonel.ini" "$work/expected.ini" || fail "full disk damaged Vonel.ini"
  umount "$work/full"
  mounted=""
else
  echo "skipped: full disk (needs root and tmpfs)"
fi

# A read-only home, for a user who can't change it.
if [ "$(id -u)" -eq 0 ] && command -v runuser >/dev/null && runuser -u nobody -- test -x "$vonel"; then
  mkdir "$work/readonly"
  printf 'REPLYADDRESS0,me@example.org\r\n' >"$work/readonly/Vonel.ini"
  chown -R nobody "$work/readonly"
  chmod 755 "$work"
  runuser -u nobody -- "$vonel" --home "$work/readonly" --headless >/dev/null 2>&1  # creates the folders
  cp "$work/readonly/Vonel.ini" "$work/readonly.expected"
  chmod a-w "$work/readonly"
  output=$(runuser -u nobody -- "$vonel" --home "$work/readonly" --headless 2>&1) || fail "read-only: exit $?"
  grep -q "Your settings file is read-only and I can't change it. Save cancelled." <<<"$output" \
    || fail "read-only not reported: $output"
  cmp -s "$work/readonly/Vonel.ini" "$work/readonly.expected" || fail "read-only file changed"
else
  echo "skipped: read-only home (needs root to switch to an unprivileged user)"
fi
echo "bad settings files: ok"
