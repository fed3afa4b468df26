#!/usr/bin/env bash
# The program can't tell the sandbox from a user's own servers: nothing in
# the engine's layers may know of it. Fails, naming the lines, when the word
# the sandbox goes by appears in src/core, src/protocol or src/app.
#   tools/check-sandbox-names.sh [SOURCE_DIR]
set -euo pipefail
source_dir=${1:-$(dirname "$0")/..}
if found=$(grep -rniI --include='*' 'demo' "$source_dir/src/core" "$source_dir/src/protocol" "$source_dir/src/app"); then
  echo "FAIL: the engine names the sandbox; give the hook a name for what it does:" >&2
  echo "$found" >&2
  exit 1
fi
echo "engine free of sandbox names: ok"
