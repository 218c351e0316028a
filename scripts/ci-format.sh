#!/usr/bin/env bash
# Fails when a tracked C++ file differs from clang-format's layout.
set -euo pipefail
cd "$(dirname "$0")/.."
git ls-files '*.cpp' '*.hpp' | xargs clang-format --dry-run --Werror
