#!/usr/bin/env bash
# Builds everything with clang and warnings as errors in ./build-clang, and
# writes the compile_commands.json that scripts/ci-tidy.sh reads.
set -euo pipefail
cd "$(dirname "$0")/.."
CC=clang CXX=clang++ cmake -S . -B build-clang -DDIALOG_WERROR=ON -DCMAKE_EXPORT_COMPILE_COMMANDS=ON "$@"
cmake --build build-clang -j"$(nproc)"
