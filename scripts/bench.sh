#!/usr/bin/env bash
# Builds the benchmarks in Release in their own build directory, runs every
# benchmark program with repetitions into JSON and prints one table: median,
# range over the repetitions and ratio to the baseline run beside it.
#
#   scripts/bench.sh            full run: 7 to 15 repetitions (about 5 minutes on 2 cores)
#   scripts/bench.sh --quick    2 short repetitions, constructions of 100k pairs
#                               and of the default data only (under a minute)
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
if ! { cmake --preset bench -B "$build" "${cmake_args[@]}" &&
       cmake --build "$build" -j"$(nproc)"; } >"$log" 2>&1; then
  tail -n 40 "$log" >&2
  echo "bench.sh: build failed, full log in $log" >&2
  exit 1
fi

# settings <program>: the repetition and filter flags of one program, one a line.
settings() {
  if [ "$quick" = 1 ]; then
    printf '%s\n' --benchmark_repetitions=2 --benchmark_min_time=0.1
    [ "$1" = construction ] &&
      printf '%s\n' '--benchmark_filter=construct/(default_enu|default_frf|sorted_100k|shuffled_100k)/'
    return 0
  fi
  # Repetitions of all cases interleaved at random, so that changes in the
  # machine's load fall on library and baseline alike; the cheap programs get
  # many short repetitions for the same reason.
  printf '%s\n' --benchmark_enable_random_interleaving=true
  case "$1" in
    construction) printf '%s\n' --benchmark_repetitions=7 ;;
    stream) printf '%s\n' --benchmark_repetitions=9 ;;
    *) printf '%s\n' --benchmark_repetitions=15 --benchmark_min_time=0.2 ;;
  esac
}

# The lemma files are decoded with the locale's codec, as in production.
export LC_ALL=C.UTF-8
rm -rf "$results"
mkdir -p "$results"
for program in construction stemword sentence stream japanese; do
  mapfile -t flags < <(settings "$program")
  echo "== $program: ${flags[*]}"
  SECONDS=0
  "$build/bench/dialog_bench_$program" "${flags[@]}" \
    --benchmark_display_aggregates_only=true \
    --benchmark_out="$results/$program.json" --benchmark_out_format=json \
    >"$results/$program.txt" 2>&1 || {
      tail -n 20 "$results/$program.txt" >&2
      echo "bench.sh: $program failed" >&2
      exit 1
    }
  echo "   ${SECONDS}s"
done

echo
python3 bench/bench_table.py "$results"/construction.json "$results"/stemword.json \
  "$results"/sentence.json "$results"/stream.json "$results"/japanese.json
if compgen -G "$build/python/dialog_stemmer*.so" >/dev/null; then
  echo
  PYTHONPATH="$build/python" /usr/bin/python3 bench/python_bench.py "$build" \
    --repetitions "$([ "$quick" = 1 ] && echo 2 || echo 7)"
fi
echo "$(nproc) cores, $(grep -m1 'model name' /proc/cpuinfo | sed 's/.*: //'), commit $(git rev-parse --short HEAD 2>/dev/null || echo '?')"
echo "raw results: $results/"
