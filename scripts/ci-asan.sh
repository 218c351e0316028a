#!/usr/bin/env bash
# Builds everything with AddressSanitizer and UndefinedBehaviorSanitizer in
# ./build-asan and runs the whole test suite there; the first report fails it.
# Leaks the library keeps by design are named in tests/sanitizers/lsan.supp.
# Left out, and run by the normal build instead: the package tests
# (DIALOG_INSTALL=OFF), whose consumers are built without the sanitizer runtime,
# and the Python module, which cannot load into an interpreter without it.
set -euo pipefail
cd "$(dirname "$0")/.."
cmake -S . -B build-asan -DDIALOG_SANITIZE=address -DDIALOG_INSTALL=OFF -DDIALOG_WERROR=ON \
  -DDIALOG_BUILD_PYTHON=OFF "$@"
cmake --build build-asan -j"$(nproc)"
export LC_ALL=C.UTF-8
export ASAN_OPTIONS=halt_on_error=1:detect_leaks=1:detect_stack_use_after_return=1:strict_init_order=1
export UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1
# The slow unwinder sees through libstemmer and libmecab, which have no frame
# pointers, so the suppressions can match their callers. The list of
# suppressions used stays quiet: tools tests compare standard error.
export LSAN_OPTIONS=suppressions=$PWD/tests/sanitizers/lsan.supp:fast_unwind_on_malloc=0:print_suppressions=0
ctest --test-dir build-asan --output-on-failure -j"$(nproc)"
