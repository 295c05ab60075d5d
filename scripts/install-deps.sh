#!/usr/bin/env bash
# Installs, with apt-get, whatever this project needs to build, test and run that the machine
# lacks. Safe to run again: it installs nothing when everything is there.
set -euo pipefail

packages=(
  g++ cmake ninja-build pkg-config
  qt6-base-dev qt6-serialport-dev qt6-svg-dev libgl-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  socat ser2net
  xvfb xauth
  clang libclang-rt-dev clang-format
  dpkg-dev desktop-file-utils g++-mingw-w64-x86-64-posix man-db
)

missing=()
for package in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$package")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

echo "Installing: ${missing[*]}"
sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then
  sudo_cmd=(sudo)
fi
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update
"${sudo_cmd[@]}" apt-get install -y --no-install-recommends "${missing[@]}"
