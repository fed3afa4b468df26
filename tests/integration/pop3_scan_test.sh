#!/usr/bin/env bash
# Scans a real Dovecot POP3 server on loopback with the real program.
set -euo pipefail
vonel=$1
source_dir=$2
fail() { echo "FAIL: $*" >&2; exit 1; }
source "$source_dir/tools/one-dovecot.sh"
for i in $(seq 1 50); do
  printf 'From: Sender %d <s%d@example.org>\r\nTo: jo@example.org\r\nSubject: Message number %d\r\nMessage-ID: <%d@example.org>\r\n\r\nBody %d\r\n' \
    "$i" "$i" "$i" "$i" "$i" >"$maildir/new/$(printf '%04d' "$i").test"
done
chmod -R a+rwX "$maildir"

home="$work/home"
mkdir -p "$home"
settings() { account0_settings "$@" >"$home/Vonel.ini"; }

settings secret
output=$("$vonel" --home "$home" --scan </dev/null)
[ "$(grep -c $'\t' <<<"$output")" -eq 50 ] || fail "expected 50 rows, got: $output"
first=$(head -1 <<<"$output")
[ "$first" = $'1\tLoopback\tPASS\t0.01\tSender 1 <s1@example.org>\tMessage number 1' ] || fail "first row: $first"
grep -q $'^50\tLoopback\tPASS\t' <<<"$output" || fail "row 50 missing"
[ "$(tail -1 <<<"$output")" = "Process complete" ] || fail "final status: $(tail -1 <<<"$output")"

# Without rules nothing fails, so --delete deletes nothing.
"$vonel" --home "$home" --scan --account 0 --delete </dev/null >/dev/null
[ "$(find "$maildir/new" "$maildir/cur" -type f | wc -l)" -eq 50 ] || fail "messages were deleted"

# A wrong password lists nothing and still ends the pass.
settings wrong
output=$("$vonel" --home "$home" --scan </dev/null)
! grep -q $'\t' <<<"$output" || fail "rows with a wrong password"
[ "$(tail -1 <<<"$output")" = "Process complete" ] || fail "pass did not end: $output"
grep -q "POP Error: -ERR" "$home/log.txt" || fail "the refusal is not in the log"

# A stopped server: the refused connection is reported and the time-out ends the session.
"$source_dir/tools/pop3-server.sh" stop "$server"
settings secret 2
output=$("$vonel" --home "$home" --scan </dev/null 2>&1)
grep -q "Error while connecting to server:" <<<"$output" || fail "refusal not reported: $output"
grep -q "\[10061\]" <<<"$output" || fail "wrong error number: $output"
grep -q "Timed out" "$home/log.txt" || fail "no time-out in the log"
echo "pop3 scan against dovecot: ok"
