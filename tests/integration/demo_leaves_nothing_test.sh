#!/usr/bin/env bash
# `vonel --demo` leaves nothing behind: with HOME, the XDG folders and TMPDIR
# on fresh folders, the trees are as before after an exit, after SIGTERM,
# SIGINT and SIGHUP, and after kill -9 once the next demo has run; no
# process stays and no port stays open. A temporary folder that can't hold
# a home gets one line and exit 2; two demos at once stay apart.
set -euo pipefail
vonel=$1
fail() { echo "FAIL: $*" >&2; exit 1; }
work=$(mktemp -d)
started=()
# The demos this test started, by their ids; their programs die with them.
cleanup() {
  for p in "${started[@]}"; do kill -KILL "$p" 2>/dev/null || true; done
  rm -rf "$work"
}
trap cleanup EXIT
export HOME="$work/home" XDG_CONFIG_HOME="$work/config" XDG_DATA_HOME="$work/data" XDG_CACHE_HOME="$work/cache"
export XDG_STATE_HOME="$work/state" XDG_RUNTIME_DIR="$work/runtime" TMPDIR="$work/tmp"
mkdir -p "$HOME" "$XDG_CONFIG_HOME" "$XDG_DATA_HOME" "$XDG_CACHE_HOME" "$XDG_STATE_HOME" "$XDG_RUNTIME_DIR" "$TMPDIR"
chmod 700 "$XDG_RUNTIME_DIR"
tree() { (cd "$work" && find . | sort); }
before=$(tree)
same_tree() { [ "$(tree)" = "$before" ] || fail "$1: left behind: $(diff <(echo "$before") <(tree) || true)"; }

# Starts a window demo in the background; sets pid and home once its first scan has run.
start_window() {
  local known
  known=$(ls "$TMPDIR")
  "$vonel" --demo </dev/null >/dev/null 2>&1 &
  pid=$!
  started+=("$pid")
  home=""
  # Up to 30 s: a sanitizer build on a busy machine starts slowly.
  for _ in $(seq 1 300); do
    for candidate in "$TMPDIR"/vonel-demo-*; do
      grep -qxF "$(basename "$candidate")" <<<"$known" && continue
      grep -qs "startup complete" "$candidate/log.txt" && home=$candidate
    done
    [ -n "$home" ] && break
    sleep 0.1
  done
  [ -n "$home" ] || fail "no demo window came up"
  pop3_port=$(sed -n 's/^POPPORT0, *\([0-9]*\).*/\1/p' "$home/Vonel.ini")
  smtp_port=$(sed -n 's/^SMTPPORT0, *\([0-9]*\).*/\1/p' "$home/Vonel.ini")
}
port_open() { (exec 3<>"/dev/tcp/127.0.0.1/$1") 2>/dev/null; }
nothing_runs() {
  ! kill -0 "$pid" 2>/dev/null || fail "$1: the demo still runs"
  ! pgrep -f -- "--home $home" >/dev/null || fail "$1: the program still runs"
  ! port_open "$pop3_port" || fail "$1: the POP3 port is still open"
  ! port_open "$smtp_port" || fail "$1: the SMTP port is still open"
}

"$vonel" --demo --scan </dev/null >/dev/null || fail "--demo --scan exited with $?"
same_tree "exit"

for signal in TERM INT HUP; do
  start_window
  port_open "$pop3_port" || fail "the sandbox serves no POP3"
  kill -"$signal" "$pid"
  wait "$pid" || true
  nothing_runs "SIG$signal"
  same_tree "SIG$signal"
done

# Killed outright: the program dies with it, and the next demo removes the home.
start_window
program=$(pgrep -f -- "--home $home")
kill -KILL "$pid"
wait "$pid" 2>/dev/null || true
for _ in $(seq 1 50); do kill -0 "$program" 2>/dev/null || break; sleep 0.1; done
nothing_runs "kill -9"
[ -d "$home" ] || fail "kill -9: the home went without a clean-up"
"$vonel" --demo --scan </dev/null >/dev/null
same_tree "kill -9 and a new start"

# Two at once: each its own home and ports.
start_window
first_pid=$pid first_home=$home first_port=$pop3_port
start_window
[ "$home" != "$first_home" ] && [ "$pop3_port" != "$first_port" ] || fail "two demos share a home or a port"
kill -TERM "$first_pid" "$pid"
wait "$first_pid" "$pid" || true
nothing_runs "two demos"
same_tree "two demos"

# A temporary folder that can't hold a home.
touch "$work/file"
if TMPDIR="$work/file/tmp" "$vonel" --demo --scan </dev/null >"$work/out" 2>"$work/err"; then fail "no home, yet it ran"; else code=$?; fi
[ "$code" -eq 2 ] || fail "exit $code for a folder that can't hold a home"
[ "$(wc -l <"$work/err")" -eq 1 ] && grep -q "^vonel: can't make the demo's home in $work/file/tmp: " "$work/err" ||
  fail "not one clear line: $(cat "$work/err")"
[ ! -s "$work/out" ] || fail "output without a home: $(cat "$work/out")"
rm "$work/file" "$work/out" "$work/err"
same_tree "no home"
echo "demo leaves nothing behind: ok"
