#!/usr/bin/env bash
# Sends an outbox of N messages with `vonel --send` over one connection to
# aiosmtpd on loopback: with the 250-only dialogue and the standard one in
# plain text, and the standard one after STARTTLS with AUTH; prints messages
# per second for each.
# Usage: bench/send_tls.sh path/to/vonel [N]   (default: 1000)
set -euo pipefail
vonel=$(realpath "$1")
rows=${2:-1000}
source_dir=$(cd "$(dirname "$0")/.." && pwd)
work=$(mktemp -d)
trap 'for s in only250 plain secure; do "$source_dir/tools/smtp-server.sh" stop "$work/smtp-$s" || true; done; rm -rf "$work"' EXIT
"$source_dir/tools/test-certificates.sh" "$work/certificates"
export VONEL_EXTRA_CA="$work/certificates/ca.pem" QT_QPA_PLATFORM=offscreen
only250_port=$("$source_dir/tools/smtp-server.sh" start "$work/smtp-only250")
plain_port=$("$source_dir/tools/smtp-server.sh" start "$work/smtp-plain")
secure_port=$(SMTP_TLS_MODE=starttls SMTP_TLS_CERT="$work/certificates/trusted.pem" \
  SMTP_TLS_KEY="$work/certificates/trusted.key" SMTP_AUTH_USER=jo SMTP_AUTH_PASSWORD=secret \
  "$source_dir/tools/smtp-server.sh" start "$work/smtp-secure")

python3 - "$work/data.txt" "$rows" <<'PY'
import sys
with open(sys.argv[1], "wb") as out:
    out.write(b"$EMAIL,$FIRST")
    for i in range(int(sys.argv[2])):
        out.write(f"\r\nuser{i}@example.net,Name{i}".encode())
PY
printf 'Subject: News for $FIRST\r\nDear $FIRST,\r\n\r\n%s\r\n' \
  "$(python3 -c 'print("Some ordinary text of a newsletter. " * 40)')" >"$work/template.txt"
seconds() { python3 -c 'import time; print(f"{time.time():.6f}")'; }

account='REPLYADDRESS0,me@example.org\r\nSMTP0,127.0.0.1\r\nSMTPPort0,%s\r\n'
send() {  # NAME PORT [MORE SETTINGS]
  home="$work/home-$1"
  mkdir -p "$home"
  # shellcheck disable=SC2059
  printf "$account${3:-}" "$2" >"$home/Vonel.ini"
  "$vonel" --home "$home" --merge "$work/data.txt" "$work/template.txt" >/dev/null 2>&1
  start=$(seconds)
  "$vonel" --home "$home" --send >/dev/null 2>"$work/$1.err"
  end=$(seconds)
  arrived=$(find "$work/smtp-$1" -name '*.eml' | wc -l)
  [ "$arrived" -gt 0 ] || { echo "nothing arrived:" >&2; head -5 "$work/$1.err" >&2; ls "$home/Messages/Outbox" | head -3 >&2; }
  python3 -c "import sys; n, t = int(sys.argv[1]), float(sys.argv[2]); print(f'{sys.argv[3]}: {n} messages in {t:.2f} s = {n / t:.0f} messages/s')" \
    "$arrived" "$(python3 -c "print($end - $start)")" "$1"
}
only250=$(send only250 "$only250_port")
plain=$(send plain "$plain_port" 'SMTPSTANDARD0,1\r\n')
secure=$(send secure "$secure_port" 'SMTPSTANDARD0,1\r\nSMTPSECURITY0,2\r\nSMTPAuth0,1\r\nSMTPUNAME0,jo\r\nSMTPPWD0,secret\r\n')
echo "$only250"
echo "$plain"
echo "$secure"
python3 -c "import sys, re; r = [float(re.search(r'= (\d+)', s).group(1)) for s in sys.argv[1:]]; print(f'STARTTLS rate / plain rate = {r[1] / r[0]:.2f}')" "$plain" "$secure"
