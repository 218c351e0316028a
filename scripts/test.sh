#!/usr/bin/env bash
# Configures, builds and runs every test in ./build. Extra arguments go to the
# CMake configure step (e.g. -DDIALOG_WERROR=ON).
set -euo pipefail
cd "$(dirname "$0")/.."
cmake -S . -B build "$@"
cmake --build build -j"$(nproc)"
LC_ALL=C.UTF-8 ctest --test-dir build --output-on-failure -j"$(nproc)"
