#!/usr/bin/env bash
# Installs the build tree into a temporary prefix, then builds and runs a small
# consumer against it, once through the CMake package and once through pkg-config.
# Also holds the installed lemma files to the repository's checksums.
# Usage: package_test.sh BUILD_DIR CONSUMER_SOURCE_DIR [LEMMA_SHA256SUMS]
set -euo pipefail
build=$1
consumer=$2
sums=${3:+$(realpath "$3")}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix="$work/prefix with space"

cmake --install "$build" --prefix "$prefix" >/dev/null

# Data for the consumer, found through the lookup's first location.
mkdir -p "$work/data/share/dialog/lemmatizer/enu"
printf 'went\ngo\nchildren\nchild\n' >"$work/data/share/dialog/lemmatizer/enu/lemma"
export KU_PREFIX_PATH="$work/data" XDG_DATA_HOME="$work/none" LC_ALL=C.UTF-8

if [ -n "$sums" ]; then
  echo "-- installed lemma files"
  (cd "$prefix/share/dialog/lemmatizer" && sha256sum --quiet -c "$sums")
  for code in enu frf; do
    grep -q LICENSE <(ls "$prefix/share/dialog/lemmatizer/$code") ||
      { echo "no licence beside the $code lemma file"; exit 1; }
  done
fi

echo "-- CMake package"
cmake -S "$consumer" -B "$work/cmake-build" -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$work/cmake-build" >/dev/null
"$work/cmake-build/consumer"

echo "-- pkg-config"
export PKG_CONFIG_PATH="$prefix/lib/pkgconfig"
# Without -r, read honours the backslash escapes pkg-config puts before blanks.
read -a flags <<<"$(pkg-config --cflags --libs dialog-stemmer)"
c++ -std=c++17 "$consumer/main.cpp" -o "$work/pc-consumer" "${flags[@]}" \
  -Wl,-rpath,"$prefix/lib"
"$work/pc-consumer"

echo "-- exported symbols"
exported=$(nm -D --defined-only "$prefix/lib/libdialog-stemmer.so" | awk '{print $3}' | c++filt)
unexpected=$(grep -v -E '^(ZQ::Dialog::|MeCab::createTagger\(\))' <<<"$exported" || true)
if [ -n "$unexpected" ]; then
  echo "unexpected exports:"
  echo "$unexpected"
  exit 1
fi
readelf -d "$prefix/lib/libdialog-stemmer.so" | grep -q 'SONAME.*libdialog-stemmer.so.1'
echo "package test passed"
