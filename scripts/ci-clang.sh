#!/usr/bin/env bash
# Builds everything with clang and warnings as errors in ./build-clang, and
# writes the compile_commands.json that scripts/ci-tidy.sh reads (preset "clang").
set -euo pipefail
cd "$(dirname "$0")/.."
cmake --preset clang "$@"
cmake --build --preset clang -j"$(nproc)"
