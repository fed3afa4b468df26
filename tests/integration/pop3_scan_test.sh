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
# A subject with a tab and a folded line: each field stays in its column.
printf 'From: Tab <tab@example.org>\r\nSubject: one\ttwo\r\n three\r\n\r\nBody\r\n' >"$maildir/new/0051.test"
chmod -R a+rwX "$maildir"

home="$work/home"
mkdir -p "$home"
settings() { account0_settings "$@" >"$home/Vonel.ini"; }

settings secret
output=$("$vonel" --home "$home" --scan </dev/null)
[ "$(grep -c $'\t' <<<"$output")" -eq 51 ] || fail "expected 51 rows, got: $output"
first=$(head -1 <<<"$output")
[ "$first" = $'1\tLoopback\tPASS\t0.01\tSender 1 <s1@example.org>\tMessage number 1' ] || fail "first row: $first"
grep -q $'^50\tLoopback\tPASS\t' <<<"$output" || fail "row 50 missing"
grep -q $'^51\tLoopback\tPASS\t[0-9.]*\tTab <tab@example.org>\tone two three$' <<<"$output" || fail "row 51: $output"
awk -F'\t' 'NF > 1 && NF != 6 { exit 1 }' <<<"$output" || fail "a row without six fields: $output"
[ "$(tail -1 <<<"$output")" = "Process complete" ] || fail "final status: $(tail -1 <<<"$output")"

# Without rules nothing fails, so --delete deletes nothing.
"$vonel" --home "$home" --scan --account 0 --delete </dev/null >/dev/null
[ "$(find "$maildir/new" "$maildir/cur" -type f | wc -l)" -eq 51 ] || fail "messages were deleted"
echo "pop3 scan against dovecot: ok"
