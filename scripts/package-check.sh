#!/usr/bin/env bash
# Installs the package that scripts/package.sh built, checks the installed files as a user
# would use them, and removes the package again (also when a check fails). Installs as root,
# through sudo when not root.
set -euo pipefail
cd "$(dirname "$0")/.."
package=$(ls build/package/talvex_*.deb)
version=$(dpkg-deb -f "$package" Version)
home=$(mktemp -d)
program=""
sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then sudo_cmd=(sudo); fi

cleanup() {
  [ -n "$program" ] && kill "$program" 2>/dev/null || true
  rm -rf "$home"
  "${sudo_cmd[@]}" env DEBIAN_FRONTEND=noninteractive apt-get remove -y --purge talvex >/dev/null
  if [ -e /usr/bin/talvexctl ]; then echo "FAIL: talvexctl is still there after removal"; exit 1; fi
  echo "removed"
}

fail() { echo "FAIL: $*"; exit 1; }
expect() {  # expect NAME ACTUAL WANTED-PART
  case "$2" in *"$3"*) echo "ok: $1" ;; *) fail "$1: wanted \"$3\" in: $2" ;; esac
}

"${sudo_cmd[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y "./$package" >/dev/null
trap cleanup EXIT

expect "talvexctl --version" "$(talvexctl --version)" "talvexctl $version"
expect "talvex-sim --version" "$(talvex-sim --version)" "talvex-sim $version"
expect "talvexctl --port sim:0 scan" "$(talvexctl --port sim:0 scan 2>/dev/null)" "ID 0  SIM 2x2 00"
# The installed program keeps its files in the user's folders, even for root, who could write
# into /usr/bin.
help=$(HOME="$home" XDG_CONFIG_HOME="" XDG_DATA_HOME="" talvex --help | tr -s " \n" "  ")
expect "talvex --help" "$help" "--config-dir"
expect "talvex --help names the user's folder" "$help" "(now: $home/.config/talvex, presets in $home/.local/share/talvex/preset)"
expect "man talvexctl" "$(MANPAGER=cat MANWIDTH=100 man talvexctl 2>/dev/null)" "talvexctl - control TALVEX loudspeaker processors"
expect "man talvex" "$(man -w talvex)" "/usr/share/man/man1/talvex.1.gz"
expect "man talvex-sim" "$(man -w talvex-sim)" "/usr/share/man/man1/talvex-sim.1.gz"

complete() {  # complete WORD...: what bash completion offers for the last word
  bash -c 'source /usr/share/bash-completion/completions/talvexctl
           COMP_WORDS=("$@"); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _talvexctl
           printf "%s\n" "${COMPREPLY[@]}"' complete "$@"
}
expect "completion of a command" "$(complete talvexctl --port sim re)" "recall"
expect "completion of a parameter" "$(complete talvexctl get out1.lp.)" "out1.lp.freq"
expect "completion of a channel" "$(complete talvexctl response --channel o)" "out6"

desktop-file-validate /usr/share/applications/talvex.desktop && echo "ok: desktop entry is valid"
exec_line=$(sed -n 's/^Exec=//p' /usr/share/applications/talvex.desktop)
[ "$(command -v "${exec_line%% *}")" = /usr/bin/talvex ] || fail "the desktop entry's Exec is not /usr/bin/talvex"
# Started as the desktop entry starts it, on a virtual screen: it runs, and makes its folders in
# the user's home.
HOME="$home" XDG_CONFIG_HOME="" XDG_DATA_HOME="" xvfb-run -a -s "-screen 0 1280x800x24" \
  $exec_line --no-splash >"$home/talvex.log" 2>&1 &
program=$!
for _ in $(seq 1 50); do
  [ -d "$home/.config/talvex" ] && [ -d "$home/.local/share/talvex/preset" ] && break
  sleep 0.2
done
kill -0 "$program" 2>/dev/null || fail "talvex ended at once: $(cat "$home/talvex.log")"
[ -d "$home/.config/talvex" ] || fail "talvex made no configuration folder in the user's home"
[ -d "$home/.local/share/talvex/preset" ] || fail "talvex made no preset folder in the user's home"
echo "ok: the desktop entry starts talvex, which keeps its files in $home/.config/talvex"
kill "$program"; wait "$program" 2>/dev/null || true
program=""
sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then sudo_cmd=(sudo); fi
echo "package checks passed"
