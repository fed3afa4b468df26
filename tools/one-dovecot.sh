# Sourced by the tests and benchmarks that need one Dovecot with the user jo:
# starts it in a new work folder and, on exit, stops it and removes the folder.
# Needs source_dir; sets work, server, port and maildir, and defines
# account0_settings [PASSWORD] [TIMEOUT]: the settings lines of an account 0
# that logs in as jo.
work=$(mktemp -d)
server="$work/dovecot"
stop_dovecot() {
  "$source_dir/tools/pop3-server.sh" stop "$server" || true
  rm -rf "$work"
}
trap stop_dovecot EXIT
port=$("$source_dir/tools/pop3-server.sh" start "$server" jo secret)
maildir="$server/mail/jo/Maildir"
account0_settings() {
  printf 'TITLE0,Loopback\r\nSERVER0,127.0.0.1\r\nPOPPORT0,%s\r\nUNAME0,jo\r\nPWD0,%s\r\nREPLYADDRESS0,jo@example.org\r\nMAILTIMEOUT,%s\r\n' \
    "$port" "${1:-secret}" "${2:-30}"
}
