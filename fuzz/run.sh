#!/usr/bin/env bash
# Runs every fuzz target for SECONDS each (default 30; 600 for a real search), one after the
# other, each starting from its seed corpus in fuzz/corpus/NAME. New inputs the fuzzer finds go
# to a temporary folder, not into the repository. A crash, a sanitizer report or a hang stops
# that target, keeps the input in build/fuzz/findings/ and makes the script exit 1; add it to
# the regression tests (tests/...) and fix the code.
#
#   fuzz/run.sh          # 30 s each, as CI runs it
#   fuzz/run.sh 600      # 10 minutes each
# FUZZ_SEED=N fixes libFuzzer's random seed (CI uses 1, so that a run can be repeated).
set -euo pipefail
cd "$(dirname "$0")/.."
seconds="${1:-30}"
targets=(link_fuzz preset_fuzz config_fuzz cli_fuzz)

cmake --preset fuzz >/dev/null
cmake --build --preset fuzz --target "${targets[@]}"

findings="$PWD/build/fuzz/findings"
mkdir -p "$findings"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT

# The libraries print nothing on their own; the symbolizer makes a report readable.
export ASAN_OPTIONS="${ASAN_OPTIONS:-detect_leaks=1:abort_on_error=1}"
export UBSAN_OPTIONS="${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}"

seed_args=()
if [ -n "${FUZZ_SEED:-}" ]; then seed_args=(-seed="$FUZZ_SEED"); fi

# The targets keep their scratch files under $TMPDIR; libFuzzer ends a run without the exit
# handlers that would remove them, so they live in the work folder, which goes at the end.
export TMPDIR="$work/tmp"
mkdir -p "$TMPDIR"

failed=()
for target in "${targets[@]}"; do
  name="${target%_fuzz}"
  mkdir -p "$work/$name"
  echo "== $target: ${seconds} s from fuzz/corpus/$name"
  # -timeout: one input running past 10 s counts as a hang; -max_len covers a 1155-byte
  # preset and a few blocks of line noise.
  if ! (cd "$work" && "$OLDPWD/build/fuzz/fuzz/$target" "$work/$name" "$OLDPWD/fuzz/corpus/$name" \
          -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -max_len=4096 \
          -print_final_stats=1 -artifact_prefix="$findings/$name-" "${seed_args[@]}" \
          2>"$work/$name.log"); then
    failed+=("$target")
    tail -n 60 "$work/$name.log"
  else
    grep -E '^(stat::number_of_executed_units|stat::peak_rss_mb|#[0-9]+ *DONE)' \
      "$work/$name.log" || true
  fi
done

if [ ${#failed[@]} -ne 0 ]; then
  echo "fuzz: ${failed[*]} failed; inputs in $findings"
  exit 1
fi
echo "fuzz: ${#targets[@]} passed, 0 failed"
