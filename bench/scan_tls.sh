#!/usr/bin/env bash
# Scans one Dovecot mailbox of N messages with `vonel --scan` in plain text,
# over TLS from the first byte (POP3S) and after STLS, and prints each wall
# time; an empty mailbox scanned both ways gives the cost of one handshake.
# Usage: bench/scan_tls.sh path/to/vonel [N]   (default: 1000)
set -euo pipefail
vonel=$(realpath "$1")
count=${2:-1000}
source_dir=$(cd "$(dirname "$0")/.." && pwd)
work=$(mktemp -d)
server="$work/dovecot"
trap '"$source_dir/tools/pop3-server.sh" stop "$server" || true; rm -rf "$work"' EXIT
"$source_dir/tools/test-certificates.sh" "$work/certificates"
export VONEL_EXTRA_CA="$work/certificates/ca.pem"
port=$(POP3_TLS_CERT="$work/certificates/trusted.pem" POP3_TLS_KEY="$work/certificates/trusted.key" \
  "$source_dir/tools/pop3-server.sh" start "$server" jo secret)
tls_port=$(cat "$server/pop3s-port")
maildir="$server/mail/jo/Maildir"

settings() {  # SECURITY PORT
  printf 'TITLE0,Loopback\r\nSERVER0,127.0.0.1\r\nPOPPORT0,%s\r\nPOPSECURITY0,%s\r\nUNAME0,jo\r\nPWD0,secret\r\nREPLYADDRESS0,jo@example.org\r\n' "$2" "$1"
}
seconds() { python3 -c 'import time; print(f"{time.time():.6f}")'; }
# Best of five: the wall time of one scan with the given settings.
scan() {
  mkdir -p "$work/home-$1"
  settings "$1" "$2" >"$work/home-$1/Vonel.ini"
  best=
  for _ in 1 2 3 4 5; do
    start=$(seconds)
    "$vonel" --home "$work/home-$1" --scan >"$work/out" </dev/null
    end=$(seconds)
    best=$(python3 -c "import sys; t = $end - $start; b = sys.argv[1]; print(f'{min(t, float(b)) if b else t:.4f}')" "$best")
  done
  echo "$best"
}

plain0=$(scan 0 "$port")
tls0=$(scan 1 "$tls_port")
"$source_dir/tools/fill-maildir.py" "$maildir/new" 0 "$count"
chmod -R a+rwX "$maildir"
"$vonel" --home "$work/home-0" --scan >/dev/null </dev/null  # warms the server's index
plain=$(scan 0 "$port")
rows=$(grep -c $'\t' "$work/out")
tls=$(scan 1 "$tls_port")
stls=$(scan 2 "$port")
python3 - "$count" "$rows" "$plain0" "$tls0" "$plain" "$tls" "$stls" <<'PY'
import sys
count, rows = int(sys.argv[1]), int(sys.argv[2])
plain0, tls0, plain, tls, stls = map(float, sys.argv[3:])
handshake = max(tls0 - plain0, 0.0)
print(f"empty mailbox: plain {plain0:.3f} s, TLS {tls0:.3f} s: one handshake costs {handshake * 1000:.1f} ms")
print(f"{count} messages ({rows} listed): plain {plain:.3f} s, POP3S {tls:.3f} s, STLS {stls:.3f} s")
print(f"POP3S / (plain + one handshake) = {tls / (plain + handshake):.3f}; STLS: {stls / (plain + handshake):.3f}")
PY
