#!/usr/bin/env bash
# A scan with its TOPs sent ahead gives what a scan one command at a time
# (--lockstep) gives, on a real Dovecot, with and without --delete, directly
# and through a proxy that makes the round trip 20 ms: the same listed rows
# in the same order, the same messages left on the server, the same log but
# for the lines that quote the server. Each run starts from a fresh copy of
# the mailbox and of the home.
set -euo pipefail
vonel=$1
source_dir=$2
fail() { echo "FAIL: $*" >&2; exit 1; }
source "$source_dir/tools/one-dovecot.sh"

# About a third fails: offers by a rule, one sender by the blocked list.
# Some headers hold "+OK", "-ERR" and lines that start with a dot, and the
# first body line, which TOP sends too, is a dot-stuffed one.
python3 - "$maildir/new" <<'PY'
import os, sys
for i in range(1, 241):
    sender = "Spammer <bulk@junk.example>" if i % 9 == 0 else f"Sender {i} <s{i}@example.com>"
    subject = [f"Special offer {i}", f"Minutes {i}", f"Re: -ERR in report {i}"][i % 3]
    extra = "X-Status: +OK\r\n" if i % 4 == 0 else "X-Note: folded\r\n .leading dot\r\n"
    body = ".hidden first line\r\n.\r\nrest\r\n" if i % 5 == 0 else "Body\r\n"
    text = (f"From: {sender}\r\nTo: jo@example.org\r\nSubject: {subject}\r\n{extra}"
            f"Message-ID: <{i}@example.org>\r\n\r\n{body}")
    with open(os.path.join(sys.argv[1], f"{i:04d}.test"), "w", newline="") as f:
        f.write(text)
PY
chmod -R a+rwX "$maildir"
pristine="$work/pristine"
cp -a "$maildir" "$pristine"

template="$work/template"
mkdir -p "$template"
printf 'junk.example\r\n' >"$template/BlockedDomains.txt"
printf 'Filtername, Offers\r\nFilterField, Subject:\r\nFilterComparison, cnt\r\nFilterString, offer\r\nFilterAction, 100\r\nFilterDest, \r\nFilterStop, 0\r\nFilter_Category,  0 \r\n' \
  >"$template/Rules.txt"

proxy_pid=""
stop_proxy() { [ -z "$proxy_pid" ] || kill "$proxy_pid" 2>/dev/null || true; stop_dovecot; }
trap stop_proxy EXIT
"$source_dir/tools/delay-proxy" 0 "$port" 10 "$work/proxy.pid" >"$work/proxy.port" &
for _ in $(seq 1 50); do [ -s "$work/proxy.port" ] && break; sleep 0.1; done
proxy_pid=$(cat "$work/proxy.pid")
proxy_port=$(head -1 "$work/proxy.port")

# The log's entries without their times, leaving out those that quote the server.
log_without_packets() {
  python3 - "$1" <<'PY'
import re, sys
entries = []
for line in open(sys.argv[1], encoding="latin-1", newline="").read().split("\r\n"):
    start = re.match(r"^\d+ \d\d:\d\d:\d\d, (.*)$", line)
    if start:
        entries.append(start.group(1))
    elif entries:
        entries[-1] += "\n" + line
# A kept header's file is named for the time it was kept.
print("\n".join(re.sub(r"\(\d{6}-\d{6}\)\.eml", "(time).eml", e) for e in entries if not e.startswith("Loopback: ")))
PY
}

# One scan from a fresh mailbox and home; leaves its rows, the messages left and the log in $work/<name>.*
scan() {  # name port [options...]
  local name=$1 through=$2
  shift 2
  rm -rf "$maildir" "$work/home"
  cp -a "$pristine" "$maildir"
  cp -a "$template" "$work/home"
  port=$through account0_settings >"$work/home/Vonel.ini"
  "$vonel" --home "$work/home" --scan "$@" </dev/null >"$work/$name.rows"
  find "$maildir/new" "$maildir/cur" -type f -printf '%f\n' | sed 's/:2,.*//' | sort >"$work/$name.left"
  log_without_packets "$work/home/log.txt" >"$work/$name.log"
  cp "$work/home/log.txt" "$work/$name.raw"
}

same() {  # what a b
  cmp -s "$work/$2.$1" "$work/$3.$1" || fail "$2 and $3 differ in $1: $(diff "$work/$2.$1" "$work/$3.$1" | head -20)"
}

for through in "$port" "$proxy_port"; do
  for delete in "" --delete; do
    scan lockstep "$through" --lockstep $delete
    scan ahead "$through" $delete
    rows=$(grep -c $'\t' "$work/ahead.rows" || true)
    if [ -z "$delete" ]; then
      [ "$rows" -eq 240 ] || fail "expected 240 rows, got $rows"
      [ "$(grep -c -e $'\tFAIL\t' -e $'\tBLOCK\t' "$work/ahead.rows")" -eq 80 ] || fail "failing rows: $(cat "$work/ahead.rows")"
    else
      [ "$(wc -l <"$work/ahead.left")" -eq "$rows" ] || fail "$rows rows but $(wc -l <"$work/ahead.left") messages left"
      [ "$rows" -eq 160 ] || fail "expected 160 rows left, got $rows"
    fi
    for what in rows left log; do same "$what" lockstep ahead; done
    # Only the scan that sends ahead asks for the capabilities; Dovecot announces PIPELINING.
    grep -q $'^PIPELINING\r$' "$work/ahead.raw" || fail "no CAPA in the pipelined scan"
    ! grep -q $'^PIPELINING\r$' "$work/lockstep.raw" || fail "CAPA in the scan with --lockstep"
    grep -q '^Got last message. Sending QUIT$' "$work/ahead.log" || fail "the walk didn't end in QUIT: $(tail "$work/ahead.log")"
  done
done
echo "pipelined scan equals the scan one command at a time, directly and through a 20 ms proxy: ok"
