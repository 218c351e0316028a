#!/usr/bin/env bash
# Builds the benchmarks in Release in their own build directory, runs every
# benchmark program with repetitions into JSON and prints one table: median,
# range over the repetitions and ratio to the baseline run beside it.
#
#   scripts/bench.sh            full run: 5 repetitions (about 8 minutes on 2 cores)
#   scripts/bench.sh --quick    2 short repetitions, constructions of 100k pairs
#                               and of the default data only (about 2 minutes)
#   scripts/bench.sh [--quick] -- CMAKE_ARGS...   extra configure arguments
#
# Environment: DIALOG_BENCH_BUILD (build directory, default build-bench),
# DIALOG_BENCH_DATA (colon-separated prefixes holding
# share/dialog/lemmatizer/{enu,frf}/lemma; the build's staged data otherwise),
# DIALOG_BENCH_UD (corpus directory, default ../shared/ud beside the source),
# DIALOG_BENCH_IPADIC (IPA dictionary directory).
set -euo pipefail
cd "$(dirname "$0")/.."

quick=0
cmake_args=()
while [ $# -gt 0 ]; do
  case "$1" in
    --quick) quick=1 ;;
    --) shift; cmake_args=("$@"); break ;;
    -h|--help) sed -n '2,17p' "$0" | sed 's/^# \{0,1\}//'; exit 0 ;;
    *) echo "bench.sh: unknown argument: $1 (try --help)" >&2; exit 2 ;;
  esac
  shift
done

build=${DIALOG_BENCH_BUILD:-build-bench}
results="$build/bench-results"
log="$build/bench-build.log"
mkdir -p "$build"

echo "== building in $build (Release) ..."
if ! { cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DDIALOG_BUILD_BENCHMARKS=ON \
         -DDIALOG_BUILD_TESTS=ON -DDIALOG_BUILD_TOOLS=OFF "${cmake_args[@]}" &&
       cmake --build "$build" -j"$(nproc)"; } >"$log" 2>&1; then
  tail -n 40 "$log" >&2
  echo "bench.sh: build failed, full log in $log" >&2
  exit 1
fi

if [ "$quick" = 1 ]; then
  common=(--benchmark_repetitions=2 --benchmark_min_time=0.1)
  construct_filter='construct/(default_enu|default_frf|sorted_100k|shuffled_100k)/'
else
  # Repetitions of all cases interleaved at random, so that drift in the
  # machine's load falls on library and baseline alike.
  common=(--benchmark_repetitions=5 --benchmark_enable_random_interleaving=true)
  construct_filter='.'
fi

# The lemma files are decoded with the locale's codec, as in production.
export LC_ALL=C.UTF-8
rm -rf "$results"
mkdir -p "$results"
for program in construction stemword sentence stream japanese; do
  filter='.'
  [ "$program" = construction ] && filter=$construct_filter
  echo "== $program ..."
  "$build/bench/dialog_bench_$program" "${common[@]}" --benchmark_filter="$filter" \
    --benchmark_display_aggregates_only=true \
    --benchmark_out="$results/$program.json" --benchmark_out_format=json \
    >"$results/$program.txt" 2>&1 || {
      tail -n 20 "$results/$program.txt" >&2
      echo "bench.sh: $program failed" >&2
      exit 1
    }
done

echo
python3 bench/bench_table.py "$results"/construction.json "$results"/stemword.json \
  "$results"/sentence.json "$results"/stream.json "$results"/japanese.json
echo "$(nproc) cores, $(grep -m1 'model name' /proc/cpuinfo | sed 's/.*: //'), commit $(git rev-parse --short HEAD 2>/dev/null || echo '?')"
echo "raw results: $results/"
