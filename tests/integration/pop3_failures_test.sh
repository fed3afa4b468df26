#!/usr/bin/env bash
# Each way an account can fail against a real Dovecot ends a headless pass
# with one line on the error stream naming the account and the cause, and
# exit code 1: a wrong password, an unknown host, a closed port, and a
# connection cut in the middle of a download. An account that went through
# beside a failed one still lists its mail, and only a clean pass exits 0.
set -euo pipefail
vonel=$1
source_dir=$2
fail() { echo "FAIL: $*" >&2; exit 1; }
source "$source_dir/tools/one-dovecot.sh"
proxy_pid=
stop_all() {
  [ -z "$proxy_pid" ] || kill "$proxy_pid" 2>/dev/null || true
  stop_dovecot
}
trap stop_all EXIT

# Sixty messages of some 8 kB, so that a download takes many packets.
filler=$(head -c 6000 /dev/zero | tr '\0' 'x' | fold -w 76 | sed 's/$/\r/')
for i in $(seq 1 60); do
  printf 'From: Sender %d <s%d@example.org>\r\nTo: jo@example.org\r\nSubject: Message %d\r\nMessage-ID: <%d@example.org>\r\n\r\n%s\n' \
    "$i" "$i" "$i" "$i" "$filler" >"$maildir/new/$(printf '%04d' "$i").test"
done
chmod -R a+rwX "$maildir"

home="$work/home"
mkdir -p "$home"
free_port() { python3 -c 'import socket; s=socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])'; }
# Runs the program; its exit code in $code, its streams in $work/out and $work/err.
run() {
  set +e
  "$vonel" --home "$home" "$@" </dev/null >"$work/out" 2>"$work/err"
  code=$?
  set -e
}
# The error stream must be exactly the one line given (a pattern), and the exit code 1.
expect_failure() {
  [ "$code" -eq 1 ] || fail "$2: exit $code: $(cat "$work/err")"
  [ "$(wc -l <"$work/err")" -eq 1 ] || fail "$2: not one line: $(cat "$work/err")"
  grep -qE "^vonel: $1\$" "$work/err" || fail "$2: $(cat "$work/err")"
  ! grep -qE '[0-9]{5}|Winsock|click' "$work/err" || fail "$2: an error number or a button: $(cat "$work/err")"
}

account0_settings wrong 3 >"$home/Vonel.ini"
run --scan
expect_failure 'Account 0 \(Loopback\): login refused: -ERR .*Authentication failed\.' "wrong password"
! grep -q $'\t' "$work/out" || fail "rows with a wrong password: $(cat "$work/out")"
grep -q "POP Error: -ERR" "$home/log.txt" || fail "the refusal is not in the log"

account0_settings secret 3 | sed 's/^SERVER0,.*/SERVER0,nowhere.invalid\r/' >"$home/Vonel.ini"
run --download
expect_failure 'Account 0 \(Loopback\): host not found' "unknown host"

# A closed port refuses at once; the time-out that follows is no second line.
closed=$(free_port)
account0_settings secret 2 | sed "s/^POPPORT0,.*/POPPORT0,$closed\r/" >"$home/Vonel.ini"
run --scan
expect_failure 'Account 0 \(Loopback\): connection refused' "closed port"
grep -q "Winsock Error 10061" "$home/log.txt" || fail "the log lost its line of the refusal"

# A relay that passes some 200 kB of the server's replies and then cuts the connection.
python3 - "$port" 200000 "$work/relay.port" <<'PY' &
import socket, sys, threading
target, budget, port_file = int(sys.argv[1]), int(sys.argv[2]), sys.argv[3]
listener = socket.socket()
listener.bind(("127.0.0.1", 0))
listener.listen(1)
open(port_file, "w").write(str(listener.getsockname()[1]))
client, _ = listener.accept()
server = socket.create_connection(("127.0.0.1", target))
def commands():
    try:
        while data := client.recv(65536):
            server.sendall(data)
    except OSError:
        pass
threading.Thread(target=commands, daemon=True).start()
passed = 0
while passed < budget and (data := server.recv(min(65536, budget - passed))):
    client.sendall(data)
    passed += len(data)
client.close()
server.close()
PY
proxy_pid=$!
for _ in $(seq 1 50); do [ -s "$work/relay.port" ] && break; sleep 0.1; done
account0_settings secret 10 | sed "s/^POPPORT0,.*/POPPORT0,$(cat "$work/relay.port")\r/" >"$home/Vonel.ini"
run --download
stored=$(grep -c '^stored' "$work/out" || true)
[ "$stored" -gt 0 ] && [ "$stored" -lt 60 ] || fail "the cut came at $stored stored messages: $(cat "$work/err")"
expect_failure "Account 0 \\(Loopback\\): connection lost after $stored of 60 messages" "cut connection"
wait "$proxy_pid" || true
proxy_pid=
[ "$(find "$home/Messages/Inbox" -name '*.EML' | wc -l)" -eq "$stored" ] || fail "stored files and lines differ"

# Beside a failed account the other's mail is listed; the failed one is the only line.
{
  account0_settings secret 10
  printf 'TITLE3,Work\r\nSERVER3,127.0.0.1\r\nPOPPORT3,%s\r\nUNAME3,jo\r\nPWD3,wrong\r\n' "$port"
} >"$home/Vonel.ini"
run --scan
expect_failure 'Account 3 \(Work\): login refused: -ERR .*' "one of two accounts"
[ "$(grep -c $'\tLoopback\t' "$work/out")" -eq 60 ] || fail "the good account's rows: $(cat "$work/out")"

# The daemon reports each pass's failures as they come, and ends with 1.
{ account0_settings wrong 10; printf 'ScanOnStart,True\r\nDELAY,1\r\n'; } >"$home/Vonel.ini"
"$vonel" --home "$home" --daemon </dev/null >"$work/out" 2>"$work/err" &
daemon_pid=$!
for _ in $(seq 1 200); do
  [ "$(grep -c 'login refused' "$work/err")" -ge 2 ] && break
  sleep 0.1
done
kill -TERM "$daemon_pid"
code=0
wait "$daemon_pid" || code=$?
[ "$code" -eq 1 ] || fail "daemon: exit $code"
[ "$(grep -c '^vonel: Account 0 (Loopback): login refused: ' "$work/err")" -ge 2 ] || fail "daemon: $(cat "$work/err")"

account0_settings secret 10 >"$home/Vonel.ini"
run --scan
[ "$code" -eq 0 ] && [ ! -s "$work/err" ] || fail "a clean pass: exit $code: $(cat "$work/err")"
echo "pop3 failures against dovecot: ok"
