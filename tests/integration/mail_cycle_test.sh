#!/usr/bin/env bash
# The mail cycle without a window, against two real Dovecot servers and an
# account with no server: training on the store, then download passes that
# file passing mail by rule and score, leave or delete the rest on the
# server, and carry on past a server that stops answering; then the daemon.
set -euo pipefail
vonel=$1
source_dir=$2
work=$(mktemp -d)
silent_pid=
mounted=
cleanup() {
  [ -z "$mounted" ] || umount "$mounted" || true
  "$source_dir/tools/pop3-server.sh" stop "$work/a" || true
  "$source_dir/tools/pop3-server.sh" stop "$work/b" || true
  [ -z "$silent_pid" ] || kill "$silent_pid" 2>/dev/null || true
  [ -n "${KEEP:-}" ] || rm -rf "$work"
}
trap cleanup EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

port_a=$("$source_dir/tools/pop3-server.sh" start "$work/a" jo secret)
port_b=$("$source_dir/tools/pop3-server.sh" start "$work/b" al hidden)
box_a="$work/a/mail/jo/Maildir"
box_b="$work/b/mail/al/Maildir"
fill=0
message() {  # maildir id from subject; each fill names its files anew, as a server never reuses an id
  printf 'From: %s\r\nTo: someone@example.org\r\nSubject: %s\r\nMessage-ID: <%s@example.org>\r\n\r\nBody of %s\r\n' \
    "$3" "$4" "$2" "$2" >"$1/new/$2.$fill.test"
  chmod -R a+rwX "$1"
}
fill_servers() {
  fill=$((fill + 1))
  message "$box_a" lunch "Ann <ann@example.com>" "Lunch on Friday"
  message "$box_a" digest "News <news@lists.example>" "Weekly digest"
  message "$box_a" pills "Pills <pills@spam.example>" "Cheap pills now"
  message "$box_a" blocked "Bad <bad@blocked.example>" "Hello"
  message "$box_b" minutes "Carl <carl@example.com>" "Minutes of the meeting"
}
on_server() { find "$1/new" "$1/cur" -type f | wc -l; }

home="$work/home"
store="$home/Messages"
mkdir -p "$store/Inbox" "$store/SpamBayes"
settings() {  # port of account 0, extra lines; SECOND_PORT overrides account 2's
  {
    printf 'TITLE0,Jo\r\nSERVER0,127.0.0.1\r\nPOPPORT0,%s\r\nUNAME0,jo\r\nPWD0,secret\r\nREPLYADDRESS0,jo@example.org\r\n' "$1"
    printf 'TITLE1,Nothing\r\nREPLYADDRESS1,none@example.org\r\n'
    printf 'TITLE2,Al\r\nSERVER2,127.0.0.1\r\nPOPPORT2,%s\r\nUNAME2,al\r\nPWD2,hidden\r\nREPLYADDRESS2,al@example.org\r\n' "${SECOND_PORT:-$port_b}"
    # Nothing is deleted by its score alone, so that spam is filed and can be seen.
    printf 'MAILTIMEOUT,3\r\nSpamminess,1\r\nSaveToSpamScore,0.7\r\n%s' "${2:-}"
  } >"$home/Vonel.ini"
}
settings "$port_a"
printf 'bad@blocked.example\r\n' >"$home/Blocked.txt"
printf 'Filtername, Lists\r\nFilterField, From:\r\nFilterComparison, cnt\r\nFilterString, lists.example\r\nFilterAction, 300\r\nFilterDest, \\Lists\r\nFilterStop, -1\r\n' \
  >"$home/LocalRules.txt"

# Training: good mail from the inbox, spam from its folder.
for i in 1 2 3; do
  printf 'From: Ann <ann@example.com>\r\nTo: jo@example.org\r\nSubject: Lunch plans %s\r\n\r\nSee you\r\n' "$i" >"$store/Inbox/good$i.eml"
  printf 'From: Pills <pills@spam.example>\r\nTo: jo@example.org\r\nSubject: Cheap pills now\r\n\r\nhttp://pills.example/buy\r\n' >"$store/SpamBayes/spam$i.eml"
done
# A file that can't be read counts as an empty message; root reads
# everything, so the training then runs as nobody.
printf 'Subject: locked\r\n\r\n' >"$store/SpamBayes/locked.eml"
as_user=()
if [ "$(id -u)" -eq 0 ] && runuser -u nobody -- test -x "$vonel"; then
  chmod a+rx "$work"
  chmod -R a+rwX "$home"
  as_user=(runuser -u nobody --)
fi
chmod 000 "$store/SpamBayes/locked.eml"
output=$("${as_user[@]}" "$vonel" --home "$home" --train </dev/null)
grep -q "^Good Mail - Message 3 of 3$" <<<"$output" || fail "training progress: $output"
grep -q "^3 good and 4 spam messages counted$" <<<"$output" || fail "training summary: $output"
for table in HashGood.dat HashBad.dat HashTable.dat; do [ -s "$home/$table" ] || fail "$table not written"; done
rm -f "$store"/Inbox/good*.eml "$store"/SpamBayes/spam*.eml "$store/SpamBayes/locked.eml"

# A download pass: passing mail into the inbox, by rule into \Lists, by score
# into \SpamBayes; the blocked message stays on the server.
fill_servers
output=$("$vonel" --home "$home" --download </dev/null)
stored=$(grep '^stored' <<<"$output" | cut -f2,3,5 | sed 's/ ([0-9-]*)//' | sort)
expected=$(printf '%s\n' $'Al\tPASS\tInbox/MINUTES OF THE MEETING.EML' $'Jo\tPASS\tInbox/LUNCH ON FRIDAY.EML' \
  $'Jo\tPASS\tLists/WEEKLY DIGEST.EML' $'Jo\tSPAM?\tSpamBayes/CHEAP PILLS NOW.EML' | sort)
[ "$stored" = "$expected" ] || fail "stored: $output"
grep -q $'\tJo\tBLOCK\t.*\tHello$' <<<"$output" || fail "the blocked header is not listed: $output"
[ "$(tail -1 <<<"$output")" = "Process complete" ] || fail "pass end: $output"
lunch=$(ls "$store"/Inbox/LUNCH*)
grep -q '^X-Receive-Date: ' "$lunch" || fail "no receive date in the stored message"
grep -q '^Body of lunch' "$lunch" || fail "the body was not stored"
[ "$(tr -d '\r\n' <"$store/Inbox/Unread.Tag")" = 2 ] || fail "inbox unread tag: $(cat "$store/Inbox/Unread.Tag")"
[ -s "$store/Lists/LastMsg.Tag" ] || fail "no LastMsg.Tag in the new folder"
[ "$(on_server "$box_a")" -eq 4 ] && [ "$(on_server "$box_b")" -eq 1 ] || fail "a plain download deleted mail"

# With --delete only the blocked message goes, its header kept in Screened;
# the mail that passed stays, and is not stored again.
output=$("$vonel" --home "$home" --download --delete </dev/null)
[ "$(on_server "$box_a")" -eq 3 ] || fail "--delete left $(on_server "$box_a") on the first server"
! grep -q '^stored' <<<"$output" || fail "second download: $output"
[ "$(ls "$store"/Inbox/LUNCH* | wc -l)" -eq 1 ] || fail "mail left on the server was stored again"
[ "$(ls "$store"/Screened | wc -l)" -eq 1 ] || fail "Screened: $(ls "$store"/Screened)"

# Deleting on retrieve empties the servers of everything that was stored.
settings "$port_a" $'DELETEONRETRIEVE,1\r\n'
"$vonel" --home "$home" --download </dev/null >/dev/null
[ "$(on_server "$box_a")" -eq 0 ] && [ "$(on_server "$box_b")" -eq 0 ] || fail "DELETEONRETRIEVE left mail on the servers"

# A full disk: what can't be stored stays on the server, even when
# retrieving deletes. Needs a small file system of its own, so root only.
small="$work/small"
mkdir -p "$small"
if [ "$(id -u)" -eq 0 ] && mount -t tmpfs -o size=64k tmpfs "$small" 2>/dev/null; then
  mounted=$small
  printf 'MESSAGEFOLDER,%s\r\n' "$small/Messages" >"$home/Paths.ini"
  fill_servers
  # Full but for one page: room for one message at a time, so the first is stored and the rest can't be.
  mkdir -p "$small/Messages/Inbox" "$small/Messages/Lists" "$small/Messages/SpamBayes"
  dd if=/dev/zero of="$small/filler" bs=4096 2>/dev/null || true
  truncate -s -4096 "$small/filler"
  code=0
  "$vonel" --home "$home" --download </dev/null >"$work/full.out" 2>"$work/full.err" || code=$?
  kept=$(find "$small/Messages" -name '*.EML' | wc -l)
  left=$(( $(on_server "$box_a") + $(on_server "$box_b") ))
  [ $((kept + left)) -ge 5 ] || fail "a full disk lost mail: $kept stored, $left left on the servers"
  [ "$left" -ge 2 ] || fail "the disk never filled: $(cat "$work/full.out" "$work/full.err")"
  echo "full disk: $kept stored, $left left on the servers"
  # A line per account that could not store all, with what it stored and
  # (retrieving deletes here) deleted; nothing else on the error stream.
  [ "$code" -eq 1 ] || fail "a full disk exited $code"
  [ -s "$work/full.err" ] || fail "a full disk said nothing"
  while read -r line; do
    [[ "$line" =~ ^vonel:\ Account\ [02]\ \((Jo|Al)\):\ disk\ full:\ ([0-9]+)\ messages?\ stored,\ ([0-9]+|nothing)\ deleted\ on\ the\ server$ ]] ||
      fail "full disk line: $line"
    title=${BASH_REMATCH[1]}
    stored_here=$(grep -c $'^stored\t'"$title" "$work/full.out" || true)
    [ "${BASH_REMATCH[2]}" -eq "$stored_here" ] || fail "stored count: $line"
    [ "${BASH_REMATCH[3]}" = "$([ "$stored_here" -eq 0 ] && echo nothing || echo "$stored_here")" ] || fail "deleted count: $line"
  done <"$work/full.err"
  rm -f "$home/Paths.ini"
  umount "$small"
  mounted=
  settings "$port_a" $'DELETEONRETRIEVE,1\r\n'
  "$vonel" --home "$home" --download </dev/null >/dev/null
fi

# A server that accepts and never answers ends by time-out, which, going
# through the cancel, ends the pass; what came before it is stored.
python3 -c "
import socket
s = socket.socket()
s.bind(('127.0.0.1', 0)); s.listen(5)
open('$work/silent.port', 'w').write(str(s.getsockname()[1]))
held = []
while True:
    held.append(s.accept()[0])
" &
silent_pid=$!
for _ in $(seq 1 50); do [ -s "$work/silent.port" ] && break; sleep 0.1; done
SECOND_PORT=$(cat "$work/silent.port") settings "$port_a"
fill_servers
code=0
output=$("$vonel" --home "$home" --download </dev/null 2>"$work/err") || code=$?
grep -q $'^stored\tJo\tPASS' <<<"$output" || fail "the first server's mail was not stored: $output"
[ "$(tail -1 <<<"$output")" = "Finished getting mail" ] || fail "the time-out did not end the pass: $output"
grep -q "Timed out" "$home/log.txt" || fail "no time-out in the log"
[ "$code" -eq 1 ] || fail "a time-out exited $code"
[ "$(cat "$work/err")" = "vonel: Account 2 (Al): timed out after 3 s" ] || fail "time-out line: $(cat "$work/err")"

# The daemon runs passes on its timer until it is told to stop.
settings "$port_a" $'ScanOnStart,True\r\nDELAY,1\r\n'
"$vonel" --home "$home" --daemon </dev/null >"$work/daemon.out" 2>&1 &
daemon_pid=$!
for _ in $(seq 1 100); do
  [ "$(grep -c 'Process complete' "$work/daemon.out")" -ge 2 ] && break
  sleep 0.1
done
kill -TERM "$daemon_pid"
wait "$daemon_pid" || fail "the daemon did not stop cleanly: $(cat "$work/daemon.out")"
[ "$(grep -c 'Process complete' "$work/daemon.out")" -ge 2 ] || fail "daemon passes: $(cat "$work/daemon.out")"
grep -q "Finished Shutdown" "$home/log.txt" || fail "the daemon did not shut down through its exit"
settings "$port_a"
"$vonel" --home "$home" --daemon </dev/null 2>"$work/err" && fail "a daemon without an auto scan ran"
grep -q "auto scan is off" "$work/err" || fail "daemon refusal: $(cat "$work/err")"
echo "mail cycle against dovecot: ok"
