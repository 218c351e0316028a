#!/usr/bin/env bash
# The installed package, as its users meet it:
#  - the build tree installed into a prefix with a blank, used by a consumer
#    through the CMake package; lemma files held to the repository's checksums;
#    only the library's own symbols exported;
#  - a multiarch library folder without RUNPATH, used through pkg-config;
#  - the project as an add_subdirectory() of a consumer.
# The Debian packages built from debian/ are tested by scripts/ci-deb.sh.
# Usage: package_test.sh SOURCE_DIR BUILD_DIR CONSUMER_SOURCE_DIR [LEMMA_SHA256SUMS]
set -euo pipefail
source=$1
build=$2
consumer=$3
sums=${4:+$(realpath "$4")}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/data/share/dialog/lemmatizer/enu"
printf 'went\ngo\nchildren\nchild\n' >"$work/data/share/dialog/lemmatizer/enu/lemma"
export KU_PREFIX_PATH="$work/data" XDG_DATA_HOME="$work/none" LC_ALL=C.UTF-8
jobs=$(nproc)

echo "-- installed build tree, CMake package"
prefix="$work/prefix with space"
cmake --install "$build" --prefix "$prefix" >/dev/null
if [ -n "$sums" ]; then
  (cd "$prefix/share/dialog/lemmatizer" && sha256sum --quiet -c "$sums")
  for code in enu frf; do
    [ -f "$prefix/share/dialog/lemmatizer/$code/LICENSE" ] ||
      { echo "no licence beside the $code lemma file"; exit 1; }
  done
fi
cmake -S "$consumer" -B "$work/cmake-build" -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$work/cmake-build" >/dev/null
"$work/cmake-build/consumer"
exported=$(nm -D --defined-only "$prefix/lib/libdialog-stemmer.so" | awk '{print $3}' | c++filt)
grep -v -E '^(ZQ::Dialog::|MeCab::createTagger\(\))' <<<"$exported" &&
  { echo "unexpected exports above"; exit 1; }
readelf -d "$prefix/lib/libdialog-stemmer.so" | grep -q 'SONAME.*libdialog-stemmer.so.1'

echo "-- multiarch library folder, no RUNPATH, pkg-config"
libdir=lib/x86_64-linux-gnu
prefix="$work/multi arch"
cmake -S "$source" -B "$work/ma" -DCMAKE_INSTALL_LIBDIR=$libdir -DDIALOG_INSTALL_RPATH=OFF \
  -DDIALOG_BUILD_TESTS=OFF -DDIALOG_BUILD_TOOLS=OFF -DDIALOG_BUILD_DATA=OFF \
  -DDIALOG_BUILD_PYTHON=OFF >/dev/null
cmake --build "$work/ma" -j"$jobs" >/dev/null
cmake --install "$work/ma" --prefix "$prefix" >/dev/null
export PKG_CONFIG_PATH="$prefix/$libdir/pkgconfig"
# pkg-config escapes the blank in the prefix.
variable() { realpath "$(pkg-config --variable="$1" dialog-stemmer | sed 's/\\ / /g')"; }
[ "$(variable libdir)" = "$prefix/$libdir" ]
[ "$(variable includedir)" = "$prefix/include" ]
if readelf -d "$prefix/$libdir/libdialog-stemmer.so" | grep -q -E 'RUNPATH|RPATH'; then
  echo "RUNPATH left in although DIALOG_INSTALL_RPATH=OFF"
  exit 1
fi
# Without -r, read honours the backslash escapes pkg-config puts before blanks.
read -a flags <<<"$(pkg-config --cflags --libs dialog-stemmer)"
# Qt 5 asks its users for position-independent code (not a flag of the .pc file).
c++ -std=c++17 -fPIC "$consumer/main.cpp" -o "$work/pc-consumer" "${flags[@]}"
LD_LIBRARY_PATH="$prefix/$libdir" "$work/pc-consumer"

echo "-- add_subdirectory"
cmake -S "$consumer" -B "$work/sub" -DDIALOG_SOURCE_DIR="$source" >/dev/null
cmake --build "$work/sub" -j"$jobs" >/dev/null
"$work/sub/consumer"
# As a subproject the project builds its libraries only.
if [ -e "$work/sub/dialog-stemmer/tools" ] || [ -e "$work/sub/dialog-stemmer/tests" ]; then
  echo "a subproject built its tools or tests"
  exit 1
fi

echo "package test passed"
