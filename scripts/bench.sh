#!/usr/bin/env bash
# Builds the benchmarks in Release (preset "bench"), runs dialog_bench and
# prints one table, then the Python module's figures when it was built (see
# bench/README.md). DIALOG_BENCH_BUILD: build directory (build-bench);
# DIALOG_BENCH_DATA: colon-separated prefixes holding the default lemma files.
#
#   scripts/bench.sh [--quick] [-- CMAKE_ARGS...]
#     full run: 9 repetitions, about 4 minutes on 2 cores; --quick: 2 short
#     repetitions, no constructions of 400k or 1M pairs, about a minute
set -euo pipefail
cd "$(dirname "$0")/.."

quick=0 cmake_args=()
while [ $# -gt 0 ]; do
  case "$1" in
    --quick) quick=1 ;;
    --) shift; cmake_args=("$@"); break ;;
    -h|--help) sed -n '2,9p' "$0" | sed 's/^# \{0,1\}//'; exit 0 ;;
    *) echo "bench.sh: unknown argument: $1 (try --help)" >&2; exit 2 ;;
  esac
  shift
done

build=${DIALOG_BENCH_BUILD:-build-bench}
results="$build/bench-results"
rm -rf "$results" && mkdir -p "$results"
echo "== building in $build (Release) ..."
if ! { cmake --preset bench -B "$build" "${cmake_args[@]}" &&
       cmake --build "$build" -j2 --target benchmarks; } >"$results/build.log" 2>&1; then
  tail -n 40 "$results/build.log" >&2
  echo "bench.sh: build failed, full log in $results/build.log" >&2
  exit 1
fi

# Repetitions of all cases interleaved at random, so that changes in the
# machine's load fall on library and baseline alike.
flags=(--benchmark_enable_random_interleaving=true --benchmark_report_aggregates_only=true
       --benchmark_out="$results/bench.json" --benchmark_out_format=json)
if [ "$quick" = 1 ]; then
  flags+=(--benchmark_repetitions=2 --benchmark_min_time=0.05 '--benchmark_filter=-(400k|1M)/')
else
  flags+=(--benchmark_repetitions=9 --benchmark_min_time=0.2)
fi
echo "== dialog_bench ${flags[*]}"
# The lemma files are decoded with the locale's codec, as in production.
if ! LC_ALL=C.UTF-8 "$build/bench/dialog_bench" "${flags[@]}" >"$results/bench.txt" 2>&1; then
  tail -n 20 "$results/bench.txt" >&2
  echo "bench.sh: dialog_bench failed, output in $results/bench.txt" >&2
  exit 1
fi
echo
/usr/bin/python3 bench/bench_table.py "$results/bench.json"
if compgen -G "$build/python/dialog_stemmer*.so" >/dev/null; then
  echo
  LC_ALL=C.UTF-8 PYTHONPATH="$build/python" /usr/bin/python3 bench/python_bench.py "$build" \
    --repetitions "$([ "$quick" = 1 ] && echo 2 || echo 7)"
fi
echo "$(nproc) cores, $(grep -m1 'model name' /proc/cpuinfo | sed 's/.*: //')," \
  "commit $(git rev-parse --short HEAD 2>/dev/null || echo '?')"
echo "raw results: $results/"
