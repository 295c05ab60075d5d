#!/usr/bin/env bash
# Builds everything with the address and undefined-behaviour sanitizers (the asan preset) and
# runs every test under them. A report stops the test that made it (-fno-sanitize-recover), so
# the run fails. The sanitizer options come with the asan test preset (CMakePresets.json). Qt and
# the system libraries have needed no suppression so far; a suppression, if ever needed, must
# name a frame outside our code and say why.
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/install-deps.sh
cmake --preset asan
cmake --build --preset asan
ctest --preset asan
