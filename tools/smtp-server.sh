#!/usr/bin/env bash
# Starts or stops the test SMTP server (smtp-server.py) in a folder.
#   smtp-server.sh start DIR   prints the port once the server listens
#   smtp-server.sh stop DIR    stops the server started in DIR by its process id
set -euo pipefail
action=$1
dir=$2
python=/usr/bin/python3
[ -x "$python" ] || python=python3
case "$action" in
  start)
    mkdir -p "$dir"
    rm -f "$dir/port"
    "$python" "$(dirname "$0")/smtp-server.py" "$dir" >"$dir/server.log" 2>&1 &
    echo $! >"$dir/pid"
    for _ in $(seq 1 100); do
      [ -s "$dir/port" ] && { cat "$dir/port"; exit 0; }
      kill -0 "$(cat "$dir/pid")" 2>/dev/null || break
      sleep 0.1
    done
    echo "SMTP server did not start:" >&2
    cat "$dir/server.log" >&2
    exit 1
    ;;
  stop)
    [ -f "$dir/pid" ] || exit 0
    pid=$(cat "$dir/pid")
    kill "$pid" 2>/dev/null || true
    for _ in $(seq 1 50); do kill -0 "$pid" 2>/dev/null || break; sleep 0.1; done
    rm -f "$dir/pid"
    ;;
  *)
    echo "usage: $0 start|stop DIR" >&2
    exit 2
    ;;
esac
