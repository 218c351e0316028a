#!/usr/bin/env bash
# Configures, builds and runs every test in ./build (CMake preset "default").
# Extra arguments go to the configure step (e.g. -DDIALOG_WERROR=ON).
set -euo pipefail
cd "$(dirname "$0")/.."
cmake --preset default "$@"
cmake --build --preset default -j"$(nproc)"
ctest --preset default -j"$(nproc)"
