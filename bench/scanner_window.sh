#!/usr/bin/env bash
# The scanner window against `vonel --scan` on one Dovecot mailbox of N
# messages (default 6000): both scan times and the window's own figures.
# Usage: bench/scanner_window.sh BUILD_DIR [N]
set -euo pipefail
build=$(realpath "$1")
count=${2:-6000}
source_dir=$(cd "$(dirname "$0")/.." && pwd)
source "$source_dir/tools/one-dovecot.sh"
home="$work/home"
mkdir -p "$home"
account0_settings >"$home/Vonel.ini"
"$source_dir/tools/fill-maildir.py" "$maildir/new" 0 "$count"
chmod -R a+rwX "$maildir"
# Warm the server's index so that its first listing doesn't count.
"$build/vonel" --home "$home" --scan >/dev/null </dev/null
start=$(date +%s.%N)
"$build/vonel" --home "$home" --scan >/dev/null </dev/null
end=$(date +%s.%N)
echo "headless --scan of $count messages, start to end: $(python3 -c "print(f'{($end - $start) * 1000:.1f} ms')")"
QT_QPA_PLATFORM=offscreen "$build/bench/ui/bench_scanner_window" "$home"
