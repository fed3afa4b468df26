#!/usr/bin/env bash
# Starts and stops the real program without windows in fresh homes.
set -euo pipefail
vonel=$1
home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

# Help and version print and end well, whatever else the line holds, and open no window.
for option in --help -h; do
  help=$(env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM "$vonel" "$option" --home "$home/none") ||
    fail "$option exited $?"
  grep -q "^usage: vonel " <<<"$help" && grep -q -- "--version" <<<"$help" || fail "$option: $help"
done
version=$(env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM "$vonel" --version) || fail "--version exited $?"
grep -qE '^vonel [0-9]+\.[0-9]+\.[0-9]+$' <<<"$version" || fail "version: $version"
[ ! -e "$home/none" ] || fail "help made a home"

# The window without a display: one line and exit code 2.
set +e
message=$(env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM "$vonel" --home "$home/window" 2>&1)
code=$?
set -e
[ "$code" -eq 2 ] || fail "no display: exit $code: $message"
[ "$(printf '%s\n' "$message" | wc -l)" -eq 1 ] && grep -q "no display" <<<"$message" || fail "no display: $message"

# No settings file: one clear line and exit code 2.
set +e
message=$("$vonel" --home "$home/empty" --headless 2>&1)
code=$?
set -e
[ "$code" -eq 2 ] || fail "no settings file: exit $code"
[ "$(printf '%s\n' "$message" | wc -l)" -eq 1 ] || fail "expected one line, got: $message"
grep -q "no account is set up" <<<"$message" || fail "unclear message: $message"

# An old settings file that still holds the store root.
mkdir -p "$home/old"
printf 'TITLE0,Home\r\nREPLYADDRESS0,me@example.org\r\nMESSAGEFOLDER,%s\\\r\nDATAFOLDER,/nowhere\r\nFILTERFOLDER,/nowhere\r\n' \
  "$home/old/Store" >"$home/old/Vonel.ini"
"$vonel" --home "$home/old" --headless || fail "start-up with settings exited $?"

for folder in Store Store/Inbox Store/Outbox "Store/Sent Items" Store/Deleted Store/Archive \
              Store/SpamBayes Store/SpamBayes/BayesOld AutoReply Sigs DB DB/Attachments; do
  [ -d "$home/old/$folder" ] || fail "missing folder $folder"
done
grep -q "^MESSAGEFOLDER,$home/old/Store\\\\"$'\r'"\$" "$home/old/Paths.ini" || fail "store root not moved to Paths.ini"
! grep -qi "^MESSAGEFOLDER\|^DATAFOLDER\|^FILTERFOLDER" "$home/old/Vonel.ini" || fail "old keys left in Vonel.ini"
[ ! -e /nowhere ] || fail "dropped data folder was used"

log="$home/old/log.txt"
head -1 "$log" | grep -q "^1 [0-9][0-9]:[0-9][0-9]:[0-9][0-9], Log file created "$'\r'"\$" || fail "log header"
for line in "App: Vonel" "App path: $home/old" "Loading contacts" "Loading Bayes form" "Applying settings" \
            "Displaying tray icon" "Vonel startup complete, ready for some action." "Beginning shutdown" \
            "Saving settings" "Unloading main form" "Finished"; do
  grep -qF ", $line"$'\r' "$log" || fail "log lacks: $line"
done
[ "$(tail -1 "$log" | tr -d '\r' | sed 's/^1 [0-9:]*, //')" = "Finished" ] || fail "log does not end in Finished"
grep -q ", Startup"$'\r' "$home/old/msglog.txt" || fail "msglog.txt"

# A second start empties the log and leaves Paths.ini alone.
before=$(cat "$home/old/Paths.ini")
"$vonel" --home "$home/old" --headless
[ "$(grep -c 'Log file created' "$log")" -eq 1 ] || fail "log not started anew"
[ "$before" = "$(cat "$home/old/Paths.ini")" ] || fail "Paths.ini changed"

# Scores of message files, one line each: score, verdict and file, tab-separated;
# an unreadable file is a line on the error stream and fails the run.
printf 'From: a@example.org\r\nSubject: hello\r\n\r\nHi\r\n' >"$home/one.eml"
tabbed="$home/two"$'\t'"tabbed.eml"
cp "$home/one.eml" "$tabbed"
scores=$("$vonel" --home "$home/old" --score "$home/one.eml" "$tabbed")
[ "$(wc -l <<<"$scores")" -eq 2 ] || fail "score lines: $scores"
grep -qE $'^[0-9.]+\t(PASS|SPAM\\?|FAIL)\t'"$home/one.eml\$" <<<"$scores" || fail "score line: $scores"
grep -qE $'\t'"$home/two tabbed.eml\$" <<<"$scores" || fail "a tab in a file name: $scores"
set +e
"$vonel" --home "$home/old" --score "$home/absent.eml" "$home/one.eml" >"$home/score.out" 2>"$home/score.err"
code=$?
set -e
[ "$code" -eq 1 ] || fail "a missing file must fail the run"
grep -q "^vonel: $home/absent.eml: " "$home/score.err" || fail "missing file: $(cat "$home/score.err")"
grep -q "one.eml" "$home/score.out" || fail "the readable file was not scored"

# The home from the environment.
mkdir -p "$home/env"
printf 'REPLYADDRESS0,me@example.org\r\n' >"$home/env/Vonel.ini"
VONEL_HOME="$home/env" "$vonel" --headless
[ -d "$home/env/Messages/Inbox" ] || fail "VONEL_HOME not used"
echo "headless start-up: ok"
