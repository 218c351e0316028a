#!/usr/bin/env bash
# Builds the test programs with ThreadSanitizer in ./build-tsan and runs the
# tests of shared use across threads: Concurrency.* and the log's concurrent
# registration and logging.
set -euo pipefail
cd "$(dirname "$0")/.."
cmake -S . -B build-tsan -DDIALOG_SANITIZE=thread -DDIALOG_INSTALL=OFF -DDIALOG_BUILD_TOOLS=OFF \
  -DDIALOG_WERROR=ON "$@"
cmake --build build-tsan -j"$(nproc)" --target stemmer_tests ku_tests
export LC_ALL=C.UTF-8
export TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1
ctest --test-dir build-tsan --output-on-failure -j"$(nproc)" \
  -R '^(Concurrency\.|Log\.ConcurrentRegistrationAndLogging$)' --no-tests=error
