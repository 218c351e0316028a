#!/usr/bin/env bash
# Builds the test programs with ThreadSanitizer in ./build-tsan and runs the
# test of shared use across threads, Concurrency.* (CMake preset "tsan").
set -euo pipefail
cd "$(dirname "$0")/.."
cmake --preset tsan "$@"
cmake --build --preset tsan -j"$(nproc)"
ctest --preset tsan -j"$(nproc)"
