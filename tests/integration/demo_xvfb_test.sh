#!/usr/bin/env bash
# The demo's session on a real X server rather than the offscreen platform,
# with a picture of the scanner after the first scan kept as an artefact:
# $VONEL_SCREENSHOT_DIR when set, else screenshots/ beside the program.
set -euo pipefail
vonel=$1
session="$(dirname "$vonel")/tests/ui/demo_session_test"
[ -x "$session" ] || { echo "FAIL: no $session" >&2; exit 1; }
command -v xvfb-run >/dev/null || { echo "FAIL: xvfb-run is missing" >&2; exit 1; }
shots=${VONEL_SCREENSHOT_DIR:-$(dirname "$vonel")/screenshots}
mkdir -p "$shots"
rm -f "$shots/demo_first_scan.png"
VONEL_SCREENSHOT_DIR=$shots env -u QT_QPA_PLATFORM xvfb-run -a -s "-screen 0 1280x900x24" "$session"
[ -s "$shots/demo_first_scan.png" ] || { echo "FAIL: no picture of the first scan in $shots" >&2; exit 1; }
echo "demo on X, picture in $shots/demo_first_scan.png: ok"
