#!/usr/bin/env bash
# Builds the project, installs it (with its default data) into a prefix
# (default: build/prefix) and runs dialog-stem on a few sentences.
set -euo pipefail
cd "$(dirname "$0")/.."
prefix=$(realpath -m "${1:-build/prefix}")

cmake -S . -B build
cmake --build build -j"$(nproc)"
cmake --install build --prefix "$prefix" >/dev/null
echo "installed into $prefix"

run() {
  echo "\$ dialog-stem $*"
  "$prefix/bin/dialog-stem" "$@"
}
run "The children went to the shops" "I don't like dogs"
run --lang frf "Les chevaux mangeaient l'herbe du pré"
run --lang jpj "猫が走った"
run --words running Went geese
run --stream english <<<$'Running\nJUMPS'
