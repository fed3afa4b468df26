#!/usr/bin/env bash
# The headless program against a Dovecot and an aiosmtpd with self-signed
# certificates: nothing is accepted silently, --trust-cert stores a certificate
# only on "y", the trusted account then scans and sends, and no output or
# file of the home holds the password in any form.
set -euo pipefail
vonel=$1
source_dir=$2
fail() { echo "FAIL: $*" >&2; exit 1; }
work=$(mktemp -d)
server="$work/dovecot"
trap '"$source_dir/tools/pop3-server.sh" stop "$server" || true; "$source_dir/tools/smtp-server.sh" stop "$work/smtp" || true; rm -rf "$work"' EXIT
"$source_dir/tools/test-certificates.sh" "$work/certificates"
cert="$work/certificates/self"
POP3_TLS_CERT="$cert.pem" POP3_TLS_KEY="$cert.key" "$source_dir/tools/pop3-server.sh" start "$server" jo 'Pa55.w0rd' >/dev/null
pop3s=$(cat "$server/pop3s-port")
smtps=$(SMTP_TLS_MODE=implicit SMTP_TLS_CERT="$cert.pem" SMTP_TLS_KEY="$cert.key" SMTP_AUTH_USER=jo \
  SMTP_AUTH_PASSWORD='Pa55.w0rd' "$source_dir/tools/smtp-server.sh" start "$work/smtp")
printf 'From: Sender <s@example.org>\r\nSubject: Over TLS\r\n\r\nBody\r\n' >"$server/mail/jo/Maildir/new/0001.test"
chmod -R a+rwX "$server/mail"

home="$work/home"
mkdir -p "$home/Messages/Outbox"
printf 'TITLE0,Secure\r\nSERVER0,127.0.0.1\r\nPOPPORT0,%s\r\nPOPSECURITY0,1\r\nUNAME0,jo\r\nPWD0,Pa55.w0rd\r\nREPLYADDRESS0,jo@example.org\r\nMAILTIMEOUT,10\r\nSMTP0,127.0.0.1\r\nSMTPPORT0,%s\r\nSMTPSECURITY0,1\r\nSMTPSTANDARD0,1\r\nSMTPAuth0,1\r\nSMTPUNAME0,jo\r\nSMTPPWD0,Pa55.w0rd\r\n' \
  "$pop3s" "$smtps" >"$home/Vonel.ini"
printf 'From: <jo@example.org>\r\nTo: <you@example.org>\r\nSubject: Out\r\n\r\n.dot line\r\n' >"$home/Messages/Outbox/00_outbound_0.eml"
outputs="$work/outputs"
mkdir -p "$outputs"

"$vonel" --home "$home" --scan </dev/null >"$outputs/scan1.out" 2>"$outputs/scan1.err" && fail "an untrusted scan went through"
grep -q "The certificate of 127.0.0.1 is not trusted: .* SHA-256 [0-9A-F:]*" "$outputs/scan1.err" || fail "no trust failure: $(cat "$outputs/scan1.err")"
grep -q "Login:" "$server/dovecot.log" && fail "a login reached dovecot"
"$vonel" --home "$home" --send </dev/null >"$outputs/send1.out" 2>"$outputs/send1.err" && fail "an untrusted send went through"
[ -e "$work/smtp/auth-attempts" ] && fail "AUTH reached the untrusted server"

set +e
"$vonel" --home "$home" --trust-cert 0 imap </dev/null >/dev/null 2>&1
[ $? -eq 2 ] || fail "--trust-cert 0 imap was taken"
set -e
# Anything but "y" trusts nothing.
echo n | "$vonel" --home "$home" --trust-cert 0 pop >"$outputs/trust-n.out" 2>&1 && fail "trusted on n"
grep -q "POPCERT0" "$home/Vonel.ini" && fail "POPCERT0 stored on n"
echo y | "$vonel" --home "$home" --trust-cert 0 pop >"$outputs/trust-pop.out" 2>&1 || fail "trust pop: $(cat "$outputs/trust-pop.out")"
grep -q "^SHA-256: " "$outputs/trust-pop.out" || fail "no fingerprint shown: $(cat "$outputs/trust-pop.out")"
grep -q "^POPCERT0,127.0.0.1 [0-9A-F:]*" "$home/Vonel.ini" || fail "POPCERT0 not stored"
echo y | "$vonel" --home "$home" --trust-cert 0 smtp >"$outputs/trust-smtp.out" 2>&1 || fail "trust smtp: $(cat "$outputs/trust-smtp.out")"

"$vonel" --home "$home" --scan </dev/null >"$outputs/scan2.out" 2>"$outputs/scan2.err" || fail "trusted scan: $(cat "$outputs/scan2.err")"
grep -q $'\tOver TLS$' "$outputs/scan2.out" || fail "scan rows: $(cat "$outputs/scan2.out")"
"$vonel" --home "$home" --send </dev/null >"$outputs/send2.out" 2>"$outputs/send2.err" || fail "trusted send: $(cat "$outputs/send2.err")"
grep -q '^\.dot line' "$work/smtp/0000.eml" || fail "the dot line arrived as: $(cat "$work/smtp/0000.eml")"

# The password, its base64 and its AUTH PLAIN form appear nowhere.
plain_b64=$(printf 'Pa55.w0rd' | base64)
auth_b64=$(printf '\0jo\0Pa55.w0rd' | base64)
for form in 'Pa55.w0rd' "$plain_b64" "$auth_b64"; do
  grep -rlF -- "$form" "$outputs" && fail "the password ($form) is in an output"
  # The settings file keeps it scrambled once saved; everything else must not hold it at all.
  grep -rlF --exclude=Vonel.ini -- "$form" "$home" && fail "the password ($form) is in the home"
done
echo "certificate trust against dovecot and aiosmtpd: ok"
