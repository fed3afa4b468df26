#!/usr/bin/env bash
# `vonel --demo --scan --demo-date 2026-01-15` prints the same lines on every
# run, in any time zone: the golden file's. A day that is no day is refused.
set -euo pipefail
vonel=$1
source_dir=$2
fail() { echo "FAIL: $*" >&2; exit 1; }
golden="$source_dir/tests/data/demo/scan_2026-01-15.txt"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export TMPDIR="$work/tmp"
mkdir -p "$TMPDIR"

for run in 1 2; do
  TZ=Pacific/Auckland LC_ALL=C.UTF-8 "$vonel" --demo --scan --demo-date 2026-01-15 </dev/null >"$work/out$run" ||
    fail "run $run exited with $?"
  diff -u "$golden" "$work/out$run" || fail "run $run differs from the golden lines"
done
for word in PASS 'SPAM?' FAIL BLOCK IGNORE; do
  grep -qF $'\t'"$word"$'\t' "$golden" || fail "the golden lines have no $word"
done

if "$vonel" --demo --scan --demo-date 2026-02-30 </dev/null 2>"$work/err"; then fail "a bad day was taken"; fi
[ "$(cat "$work/err")" = "vonel: --demo-date needs a day as YYYY-MM-DD" ] || fail "bad day: $(cat "$work/err")"
# The program's own today is the demo's day: the store names its files by it.
"$vonel" --demo --download --demo-date 2026-01-15 </dev/null >"$work/download"
grep -q '^stored' "$work/download" || fail "nothing stored: $(cat "$work/download")"
! grep '^stored' "$work/download" | grep -vE -- '-260115\)( [0-9]+)?\.EML$' || fail "stored under another day"
[ -z "$(ls -A "$TMPDIR")" ] || fail "left behind: $(ls -A "$TMPDIR")"
echo "demo scan golden: ok"
