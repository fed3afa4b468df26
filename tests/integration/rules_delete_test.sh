#!/usr/bin/env bash
# A scan with --delete removes on a real Dovecot server exactly the messages
# that the address lists block or a delete rule fails, judged from their headers.
set -euo pipefail
vonel=$1
source_dir=$2
fail() { echo "FAIL: $*" >&2; exit 1; }
source "$source_dir/tools/one-dovecot.sh"
message() {  # id from to subject
  printf 'From: %s\r\nTo: %s\r\nSubject: %s\r\nMessage-ID: <%s@example.org>\r\n\r\nBody of %s\r\n' \
    "$2" "$3" "$4" "$1" "$1" >"$maildir/new/$1.test"
}
message good "Ann <ann@example.com>" jo@example.org "Lunch on Friday"
message sender "Bad <bad@spam.example>" jo@example.org "Hello"
message domain "Eve <eve@junk.example>" jo@example.org "Hello again"
message rule "Pills <pills@example.net>" jo@example.org "Cheap V1AGRA today"
message marked "Shop <shop@example.net>" jo@example.org "Great offer"
message ignored "Bad <bad@spam.example>" list@example.org "To the list"
message friend "Friend <friend@example.com>" jo@example.org "viagra jokes"
message recipient "Ann <ann@example.com>" old@example.org "To the old address"
chmod -R a+rwX "$maildir"

home="$work/home"
mkdir -p "$home"
account0_settings >"$home/Vonel.ini"
printf 'bad@spam.example\r\n' >"$home/Blocked.txt"
printf 'junk.example\r\n' >"$home/BlockedDomains.txt"
printf 'old@example.org\r\n' >"$home/BlockedRecip.txt"
printf 'list@example.org\r\n' >"$home/Ignore.txt"
rule() {  # name field text action stop
  printf 'Filtername, %s\r\nFilterField, %s\r\nFilterComparison, cnt\r\nFilterString, %s\r\nFilterAction, %s\r\nFilterDest, \r\nFilterStop, %s\r\nFilter_Category,  0 \r\n' "$@"
}
{
  rule Friends "From:" friend@ 400 -1
  rule Pills "Subject:" viagra 100 0
  rule Offers "Subject:" offer 200 0
} >"$home/Rules.txt"

verdicts() { cut -f3,6 <<<"$1" | grep $'\t' | sort; }
expected=$(printf '%s\n' $'BLOCK\tHello' $'BLOCK\tHello again' $'BLOCK\tTo the old address' $'FAIL\tCheap V1AGRA today' \
  $'IGNORE\tN/A' $'PASS\tLunch on Friday' $'PASS\tviagra jokes' $'SPAM?\tSPAM: Great offer' | sort)

output=$("$vonel" --home "$home" --scan </dev/null)
[ "$(verdicts "$output")" = "$expected" ] || fail "verdicts of a plain scan: $output"
grep -q $'\tFAIL\t' <<<"$output" || fail "no FAIL row"
[ "$(find "$maildir/new" "$maildir/cur" -type f | wc -l)" -eq 8 ] || fail "a scan without --delete deleted mail"

# Deleted messages are not listed; the rest are, with the same verdicts.
output=$("$vonel" --home "$home" --scan --delete </dev/null)
[ "$(verdicts "$output")" = "$(grep -v -e BLOCK -e FAIL <<<"$expected")" ] || fail "verdicts of the deleting scan: $output"
left=$(find "$maildir/new" "$maildir/cur" -type f -exec grep -h '^Message-ID' {} + | tr -d '\r' | sort | tr '\n' ' ')
[ "$left" = "Message-ID: <friend@example.org> Message-ID: <good@example.org> Message-ID: <ignored@example.org> Message-ID: <marked@example.org> " ] ||
  fail "left on the server: $left"

output=$("$vonel" --home "$home" --scan </dev/null)
[ "$(grep -c $'\t' <<<"$output")" -eq 4 ] || fail "a second scan should list the 4 kept messages: $output"
# The same home judges stored files: the server set on headers, the local set on the whole message.
printf 'Filtername, Junk\r\nFilterField, Message Body\r\nFilterComparison, cnt\r\nFilterString, unsubscribe\r\nFilterAction, 300\r\nFilterDest, \\Junk\r\nFilterStop, -1\r\n' \
  >"$home/LocalRules.txt"
printf 'From: x@example.net\r\nSubject: Great offer\r\n\r\nhi\r\n' >"$work/marked.eml"
printf 'From: News <news@example.com>\r\nSubject: Weekly\r\n\r\nTo unsubscribe, reply.\r\n' >"$work/news.eml"
checked=$("$(dirname "$vonel")/vonel-inspect" check --home "$home" "$work/marked.eml" "$work/news.eml" | cut -f2-)
expected=$(printf '%s\n' $'server\tSPAM?\tpurple\t0.01\tOffers' $'local\tPASS\tgreen\t0.01\tBayes: 0.01' \
  $'server\tPASS\tgreen\t0.01\tBayes: 0.01' $'local\tPASS\tgreen\t0\tJunk')
[ "$checked" = "$expected" ] || fail "vonel-inspect check: $checked"
echo "rule check with delete against dovecot: ok"
