#!/usr/bin/env bash
# Rebuilds the default lemma files from their pinned inputs and fails when a
# byte differs from the packed ones; skips (status 0) when an input is not at
# hand here (no npm registry, no treebanks beside the repository).
set -uo pipefail
cd "$(dirname "$0")/.."
data/regenerate.sh --check
status=$?
if [ "$status" = 2 ]; then
  echo "ci-data.sh: inputs not at hand, regeneration check skipped"
  exit 0
fi
exit "$status"
