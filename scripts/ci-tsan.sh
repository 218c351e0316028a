#!/usr/bin/env bash
# Builds the test programs with ThreadSanitizer in ./build-tsan and runs the
# tests of shared use across threads, Concurrency.* and MorphemeConcurrency.*
# (CMake preset "tsan").
set -euo pipefail
cd "$(dirname "$0")/.."
cmake --preset tsan "$@"
cmake --build --preset tsan -j"$(nproc)"
ctest --preset tsan -j"$(nproc)"
