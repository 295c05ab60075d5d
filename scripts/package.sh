#!/usr/bin/env bash
# Builds the Debian package (talvex, talvexctl, talvex-sim, desktop entry, icon, man pages,
# bash completion) with CPack from an optimised build without tests: build/package/talvex_*.deb.
# Install it with: sudo apt-get install ./build/package/talvex_*.deb
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/install-deps.sh
cmake --preset package >/dev/null
cmake --build --preset package
(cd build/package && rm -f ./*.deb && cpack -G DEB >/dev/null)
ls build/package/talvex_*.deb
