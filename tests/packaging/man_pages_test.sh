#!/usr/bin/env bash
# The man pages name every option the programs' --help prints, and talvexctl's page every
# command: a new option or command without its page fails here.
# usage: man_pages_test.sh MAN_FOLDER TALVEX TALVEXCTL TALVEX_SIM
set -uo pipefail
man=$1
failures=0
passed=0

check() {  # check PAGE WORD...: each WORD must stand in the page (roff escapes its dashes)
  local page=$1; shift
  local word text
  # Read once: grep -q leaving a pipe early would fail the pipeline under pipefail.
  text=$(sed 's/\\-/-/g' "$man/$page")
  for word in "$@"; do
    if grep -qw -- "$word" <<<"$text"; then
      passed=$((passed + 1))
    else
      echo "$page does not name $word"
      failures=$((failures + 1))
    fi
  done
}

# Standard output and error read one after the other: merged into one pipe, their writes can
# interleave inside a word.
options() {
  local out err
  out=$("$@" 2>/dev/null)
  err=$("$@" 2>&1 >/dev/null)
  printf '%s\n%s\n' "$out" "$err" | grep -o -- '--[a-z][a-z-]*' | sort -u
}

check talvex.1 $(QT_QPA_PLATFORM=offscreen options "$2" --help)
check talvexctl.1 $(options "$3" --help) $("$3" words commands)
check talvex-sim.1 $(options "$4" --help)
echo "$passed passed, $failures failed"
[ "$failures" -eq 0 ]
