#!/usr/bin/env bash
# Installs what is missing, builds Vonel and vonel-inspect, and starts Vonel.
# Arguments go to the program (for example: --home DIR).
set -euo pipefail
cd "$(dirname "$0")/.."
tools/install-deps.sh
cmake --preset default -DVONEL_GUI=ON -DVONEL_TESTS=OFF >/dev/null
cmake --build build/default -j"$(nproc)" --target vonel vonel-inspect
exec build/default/vonel "$@"
