#!/usr/bin/env bash
# Fails when a C++ file of the repository differs from what clang-format (with the repo's
# .clang-format) makes of it, and names the files; `clang-format -i FILE` fixes one.
set -euo pipefail
cd "$(dirname "$0")/.."
mapfile -t files < <(git ls-files '*.cpp' '*.h' '*.h.in')
drifted=()
for file in "${files[@]}"; do
  if ! clang-format --dry-run --Werror "$file" >/dev/null 2>&1; then drifted+=("$file"); fi
done
if [ ${#drifted[@]} -gt 0 ]; then
  printf 'not formatted: %s\n' "${drifted[@]}"
  echo "clang-format: ${#drifted[@]} of ${#files[@]} files differ; run clang-format -i on them"
  exit 1
fi
echo "clang-format: all ${#files[@]} C++ files formatted"
