#!/usr/bin/env bash
# The sample mail served by real Dovecot servers scans to the same lines as
# from the sandbox: the sandbox stands in for a real server, nothing more.
set -euo pipefail
vonel=$1
source_dir=$2
fail() { echo "FAIL: $*" >&2; exit 1; }
work=$(mktemp -d)
stop() {
  for box in home work; do "$source_dir/tools/pop3-server.sh" stop "$work/$box" 2>/dev/null || true; done
  rm -rf "$work"
}
trap stop EXIT
export TMPDIR="$work/tmp"
mkdir -p "$TMPDIR"

"$vonel" --demo --keep --headless --demo-date 2026-01-15 </dev/null 2>"$work/kept" >/dev/null
home=$(sed -n "s/^vonel: the demo's home is kept: //p" "$work/kept")
[ -f "$home/Vonel.ini" ] || fail "no kept home: $(cat "$work/kept")"

# Each sandbox mailbox into a Maildir of its own server, in the same order.
serve() {
  local box=$1 folder=$2 user=$3 password=$4 account=$5 port maildir
  port=$("$source_dir/tools/pop3-server.sh" start "$work/$box" "$user" "$password")
  maildir="$work/$box/mail/$user/Maildir"
  cp "$home/Sandbox/$folder/"*.eml "$maildir/new/"
  chmod -R a+rwX "$maildir"
  sed -i "s/^POPPORT$account,.*\r\$/POPPORT$account,$port\r/" "$home/Vonel.ini"
}
serve home Home robin harbour-home 0
serve work Work rashdown river-work 1

"$vonel" --home "$home" --scan </dev/null >"$work/dovecot" || fail "the scan against Dovecot exited with $?"
diff -u "$source_dir/tests/data/demo/scan_2026-01-15.txt" "$work/dovecot" || fail "Dovecot's lines differ from the sandbox's"
echo "demo mail on dovecot: ok"
