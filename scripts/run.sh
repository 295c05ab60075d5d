#!/usr/bin/env bash
# Builds the programs and starts them on the simulated line (three processors, IDs 0, 1, 2):
# no hardware needed.
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/install-deps.sh
cmake --preset dev >/dev/null
cmake --build --preset dev --target talvexctl talvex-sim
exec ./build/dev/src/cli/talvexctl --port sim:0,1,2 scan "$@"
