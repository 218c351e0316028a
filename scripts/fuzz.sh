#!/usr/bin/env bash
# Builds the libFuzzer targets with clang in ./build-fuzz (CMake preset "fuzz")
# and runs each for a bounded time, starting from the seed corpus in
# tests/fuzz/corpus/<target>.
# Usage: scripts/fuzz.sh [SECONDS_PER_TARGET]   (default 15: about two minutes in all)
# Inputs may reach 70,000 bytes, past the targets' 68 KiB cap. libFuzzer grows
# its length limit slowly, so seeds past the library's 64 KiB read step start
# mutations at that size (a mutation may keep its input's length).
# New inputs go to build-fuzz/corpus/<target>; a crashing input is kept in
# build-fuzz/artifacts/ and ends the script with a failure.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-15}
build=build-fuzz
targets=(fuzz_lemma_file fuzz_sentences fuzz_stem_stream fuzz_morphemes fuzz_segmenter_files
  fuzz_find_data fuzz_tool_options fuzz_fast_sentences fuzz_morpheme_mode)

cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j"$(nproc)"

# Leaks are checked per input; the fuzzers keep their stemmers reachable, so no
# suppression is needed. Any sanitizer report is fatal.
export LC_ALL=C.UTF-8
export ASAN_OPTIONS=halt_on_error=1:detect_leaks=1
export UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1
mkdir -p "$build/artifacts"
for target in "${targets[@]}"; do
  corpus="$build/corpus/$target"
  mkdir -p "$corpus"
  echo "== $target (${seconds}s)"
  log="$build/$target.log"
  status=0
  "$build/tests/fuzz/$target" "$corpus" "tests/fuzz/corpus/$target" \
    -max_total_time="$seconds" -max_len=70000 -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
    -artifact_prefix="$build/artifacts/$target-" >"$log" 2>&1 || status=$?
  # The summary only; the whole output stays in the log.
  grep -E 'DONE|number_of_executed_units|ERROR|SUMMARY|invariant|Test unit written' "$log" || true
  if [ "$status" -ne 0 ]; then
    echo "fuzz.sh: $target failed (log: $log; input kept in $build/artifacts/)" >&2
    exit 1
  fi
done
echo "fuzz.sh: no findings"
