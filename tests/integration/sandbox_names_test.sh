#!/usr/bin/env bash
# The CI check that keeps the sandbox's name out of the engine, and proof
# that it catches a file that breaks the rule.
set -euo pipefail
source_dir=$2
fail() { echo "FAIL: $*" >&2; exit 1; }
"$source_dir/tools/check-sandbox-names.sh" "$source_dir"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/src/core" "$work/src/protocol" "$work/src/app/pop3"
echo 'int ports = 0;' >"$work/src/core/a.cpp"
"$source_dir/tools/check-sandbox-names.sh" "$work" >/dev/null || fail "a clean tree fails"
echo 'bool isDemo = false;' >"$work/src/app/pop3/b.h"
if "$source_dir/tools/check-sandbox-names.sh" "$work" 2>"$work/out"; then fail "a name in app/ passes"; fi
grep -q 'src/app/pop3/b.h:1:' "$work/out" || fail "the line is not named: $(cat "$work/out")"
echo "sandbox names check: ok"
