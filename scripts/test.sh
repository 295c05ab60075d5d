#!/usr/bin/env bash
# Builds everything and runs every test, including the end-to-end ones on pseudo-terminals
# (socat) and a TCP gateway (ser2net). CI (.ci/run) runs this first, then the same tests under
# the sanitizers (scripts/test-asan.sh) and each fuzz target briefly (fuzz/run.sh).
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/install-deps.sh
cmake --preset dev
cmake --build --preset dev
ctest --preset dev
