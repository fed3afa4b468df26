#!/usr/bin/env bash
# A new user's first start (wizard, scanner, settings, first scan of a real
# server) on a real X server rather than the offscreen platform.
set -euo pipefail
vonel=$1
walk="$(dirname "$vonel")/tests/ui/first_start_test"
[ -x "$walk" ] || { echo "FAIL: no $walk" >&2; exit 1; }
command -v xvfb-run >/dev/null || { echo "FAIL: xvfb-run is missing" >&2; exit 1; }
env -u QT_QPA_PLATFORM xvfb-run -a -s "-screen 0 1280x900x24" "$walk"
