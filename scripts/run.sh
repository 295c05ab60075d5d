#!/usr/bin/env bash
# Builds the programs and starts the desktop editor on the simulated line (three processors,
# IDs 0, 1, 2): no hardware needed. Extra arguments go to talvex (e.g. --no-splash).
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/install-deps.sh
cmake --preset dev >/dev/null
cmake --build --preset dev --target talvex talvexctl talvex-sim
program=(./build/dev/src/app/talvex --port sim:0,1,2 "$@")
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
  echo "No display here: starting talvex on a virtual screen (xvfb-run); connect a display to see it."
  exec xvfb-run -a -s "-screen 0 1280x800x24" "${program[@]}"
fi
exec "${program[@]}"
