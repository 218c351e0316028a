#!/usr/bin/env bash
# Runs clang-tidy (the checks in .clang-tidy) over the library's sources in
# src/, with the compile commands of the clang build made by scripts/ci-clang.sh.
set -euo pipefail
cd "$(dirname "$0")/.."
if [ ! -f build-clang/compile_commands.json ]; then
  echo "ci-tidy.sh: run scripts/ci-clang.sh first" >&2
  exit 1
fi
run-clang-tidy-14 -quiet -clang-tidy-binary clang-tidy-14 -p build-clang "$PWD/src/" \
  2> >(grep -vE '^[0-9]+ warnings? generated\.$|^Suppressed [0-9]+ warnings|^Use -header-filter' >&2)
echo "ci-tidy.sh: clean"
