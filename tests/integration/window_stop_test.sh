#!/usr/bin/env bash
# The windowed program asked to stop by the system (SIGTERM) leaves in order
# without asking anything, even with mail waiting in the outbox.
set -euo pipefail
vonel=$1
home=$(mktemp -d)
pid=
trap '[ -z "$pid" ] || kill -9 "$pid" 2>/dev/null || true; rm -rf "$home"' EXIT
fail() { echo "FAIL: $*" >&2; [ ! -f "$home/log.txt" ] || tr -d '\r' <"$home/log.txt" >&2; exit 1; }

printf 'TITLE0,Home\r\nREPLYADDRESS0,me@example.org\r\n' >"$home/Vonel.ini"
mkdir -p "$home/Messages/Outbox"
printf 'To: a@b.example\r\n\r\nHi\r\n' >"$home/Messages/Outbox/waiting.eml"

QT_QPA_PLATFORM=offscreen "$vonel" --home "$home" &
pid=$!
# Start-up lines reach the log in batches, so its file can't tell when the window is up.
sleep 2
kill -TERM "$pid"
for _ in $(seq 100); do kill -0 "$pid" 2>/dev/null || break; sleep 0.1; done
kill -0 "$pid" 2>/dev/null && fail "still running 10 s after SIGTERM"
wait "$pid" || fail "exit code $?"
pid=
log=$(tr -d '\r' <"$home/log.txt")
grep -q "Beginning shutdown" <<<"$log" || fail "no shutdown"
grep -q "Finished Shutdown of" <<<"$log" || fail "shutdown did not finish"
[ -f "$home/Messages/Outbox/waiting.eml" ] || fail "the outbox lost its mail"
grep -qi "^MainWidth," "$home/Vonel.ini" || fail "window size not saved"
echo ok
