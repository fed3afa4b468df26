#!/usr/bin/env bash
# Settings files edited by hand: lines the program doesn't understand survive a
# start and an exit in place, and a file it can't read is kept as a .bad- copy
# with a line on the error stream.
set -euo pipefail
vonel=$1
work=$(mktemp -d)
trap 'chmod -R u+rwX "$work" 2>/dev/null || true; rm -rf "$work"' EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

# KEY=VALUE, a line without a comma, stray bytes, a blank line, a bare LF inside a
# line; the old store root in Vonel.ini makes the start write Paths.ini too.
home="$work/edited"
mkdir "$home"
printf 'TITLE0,Home\r\nSERVER0=x\r\nno comma here\r\n\001\002\376\377\000 stray\r\n\r\nNOTE,one\ntwo\r\nREPLYADDRESS0,me@example.org\r\nMESSAGEFOLDER,%s/Store\r\n' \
  "$home" >"$home/Vonel.ini"
printf '; my paths\r\nSPAMFOLDER=none\r\n' >"$home/Paths.ini"
"$vonel" --home "$home" --headless || fail "start and exit: exit $?"

# Every line but the moved store root is still there, in its order, and the
# settings written at exit come after them.
printf 'TITLE0,Home\r\nSERVER0=x\r\nno comma here\r\n\001\002\376\377\000 stray\r\n\r\nNOTE,one\ntwo\r\nREPLYADDRESS0,me@example.org\r\n' \
  >"$work/expected.ini"
size=$(stat -c %s "$work/expected.ini")
cmp -s -n "$size" "$work/expected.ini" "$home/Vonel.ini" || fail "Vonel.ini lost its lines: $(od -c "$home/Vonel.ini" | head -20)"
grep -q "^MAINWIDTH," "$home/Vonel.ini" || fail "exit did not save Vonel.ini"
printf '; my paths\r\nSPAMFOLDER=none\r\nMESSAGEFOLDER,%s/Store\r\n' "$home" >"$work/expected-paths.ini"
cmp -s "$work/expected-paths.ini" "$home/Paths.ini" || fail "Paths.ini lost its lines: $(od -c "$home/Paths.ini" | head)"

# A second start and exit changes nothing more.
cp "$home/Vonel.ini" "$work/first.ini"
"$vonel" --home "$home" --headless || fail "second start: exit $?"
cmp -s "$work/first.ini" "$home/Vonel.ini" || fail "second start changed Vonel.ini"

# A Vonel.ini its user can't read: it is kept aside, and said so on stderr.
if [ "$(id -u)" -eq 0 ] && command -v runuser >/dev/null && runuser -u nobody -- test -x "$vonel"; then
  home="$work/unreadable"
  mkdir "$home"
  printf 'REPLYADDRESS0,me@example.org\r\nSERVER0=x\r\n' >"$home/Vonel.ini"
  cp "$home/Vonel.ini" "$work/unreadable.ini"
  chown -R nobody "$home"
  chmod 755 "$work"
  chmod 000 "$home/Vonel.ini"
  set +e
  output=$(runuser -u nobody -- "$vonel" --home "$home" --headless 2>&1 >/dev/null)
  code=$?
  set -e
  [ "$code" -le 1 ] || fail "unreadable Vonel.ini: exit $code"
  copies=("$home"/Vonel.ini.bad-*)
  [ "${#copies[@]}" -eq 1 ] && [ -e "${copies[0]}" ] || fail "no .bad- copy: $(ls "$home")"
  [[ "${copies[0]}" =~ /Vonel\.ini\.bad-[0-9]{8}-[0-9]{6}$ ]] || fail "copy name: ${copies[0]}"
  cmp -s "${copies[0]}" "$work/unreadable.ini" || fail "the copy differs from the unreadable file"
  grep -q "^vonel: .*Vonel.ini could not be read (Permission denied).*${copies[0]##*/}" <<<"$output" \
    || fail "not told on stderr: $output"
  runuser -u nobody -- grep -q "^MAINWIDTH," "$home/Vonel.ini" || fail "no new Vonel.ini written"
else
  echo "skipped: unreadable Vonel.ini (needs root to switch to an unprivileged user)"
fi
echo "edited settings files: ok"
