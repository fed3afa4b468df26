#!/usr/bin/env bash
# The desktop entry and AppStream data are valid, `cmake --install` puts them
# in place, and once installed as the mail-link handler in a private XDG home,
# `xdg-open mailto:...` reaches the running copy.
set -euo pipefail
vonel=$1
source=$2
tmp=$(mktemp -d)
export QT_QPA_PLATFORM=offscreen
# The copies' sockets, a killed one's too, go with the temporary folder.
export XDG_RUNTIME_DIR=$tmp/run
mkdir -m 700 "$XDG_RUNTIME_DIR"
first=""
cleanup() {
  if [ -n "$first" ]; then kill "$first" 2>/dev/null || true; wait "$first" 2>/dev/null || true; fi
  rm -rf "$tmp"
}
trap cleanup EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

desktop-file-validate "$source/dist/vonel.desktop" || fail "desktop entry"
appstreamcli validate --no-net "$source/dist/org.vonel.Vonel.metainfo.xml" >"$tmp/appstream.out" ||
  fail "metainfo: $(cat "$tmp/appstream.out")"

cmake --install "$(dirname "$vonel")" --prefix "$tmp/prefix" >/dev/null
for file in bin/vonel share/applications/vonel.desktop share/icons/hicolor/scalable/apps/vonel.svg \
            share/metainfo/org.vonel.Vonel.metainfo.xml; do
  [ -f "$tmp/prefix/$file" ] || fail "cmake --install left out $file"
done

# A private desktop: nothing of the machine's own settings or handlers counts.
export HOME=$tmp/home XDG_DATA_HOME=$tmp/data XDG_CONFIG_HOME=$tmp/config XDG_CACHE_HOME=$tmp/cache
export XDG_DATA_DIRS=$tmp/system XDG_CONFIG_DIRS=$tmp/system-config
unset XDG_CURRENT_DESKTOP DESKTOP_SESSION KDE_FULL_SESSION GNOME_DESKTOP_SESSION_ID BROWSER VONEL_HOME
mkdir -p "$HOME" "$XDG_CONFIG_HOME" "$XDG_DATA_DIRS"

"$source/tools/install-desktop-entry" --program "$vonel" >/dev/null
entry=$XDG_DATA_HOME/applications/vonel.desktop
desktop-file-validate "$entry" || fail "installed entry"
grep -qxF "Exec=$(cd "$(dirname "$vonel")" && pwd)/vonel %u" "$entry" || fail "Exec: $(grep ^Exec "$entry")"
[ -f "$XDG_DATA_HOME/icons/hicolor/scalable/apps/vonel.svg" ] || fail "icon"
# Only asked does it write the user's choice of handler.
! grep -qs vonel.desktop "$XDG_CONFIG_HOME/mimeapps.list" || fail "made default unasked"
"$source/tools/install-desktop-entry" --program "$vonel" --make-default >/dev/null
[ "$(xdg-mime query default x-scheme-handler/mailto)" = vonel.desktop ] || fail "not the mailto handler"
[ "$(xdg-mime query default message/rfc822)" = vonel.desktop ] || fail "not the .eml handler"

# The running copy keeps its home in the user's data folder, as a start from the menu does.
home=$XDG_DATA_HOME/Vonel
mkdir -p "$home"
printf 'REPLYADDRESS0,me@example.org\r\n' >"$home/Vonel.ini"
"$vonel" >"$tmp/first.out" 2>&1 &
first=$!
# Its socket is open before start-up writes its first line.
for _ in $(seq 100); do
  grep -qF "startup." "$home/log.txt" 2>/dev/null && break
  sleep 0.1
done
kill -0 "$first" || fail "first copy ended: $(cat "$tmp/first.out")"

# xdg-open looks for handlers only where it sees a display.
xvfb-run -a xdg-open 'mailto:bob@example.org?subject=Hi' || fail "xdg-open exited $?"
for _ in $(seq 100); do
  grep -qF ", Command passed in: mailto:bob@example.org?subject=Hi"$'\r' "$home/log.txt" && break
  sleep 0.1
done
grep -qF ", Command passed in: mailto:bob@example.org?subject=Hi"$'\r' "$home/log.txt" ||
  fail "the link did not reach the running copy: $(cat "$home/log.txt")"
kill -0 "$first" || fail "first copy ended"
echo "desktop entry: ok"
