#!/usr/bin/env bash
# The install layouts and packages beyond the default one:
#  - a multiarch library folder (lib/x86_64-linux-gnu) without RUNPATH,
#    consumed through pkg-config;
#  - the project as an add_subdirectory() of a consumer;
#  - the Debian packages of the build tree (cpack), their contents and
#    dependencies.
# Usage: layout_test.sh SOURCE_DIR BUILD_DIR CONSUMER_SOURCE_DIR
set -euo pipefail
source=$1
build=$2
consumer=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
data="$work/data/share/dialog/lemmatizer/enu"
mkdir -p "$data"
printf 'went\ngo\nchildren\nchild\n' >"$data/lemma"
export KU_PREFIX_PATH="$work/data" XDG_DATA_HOME="$work/none" LC_ALL=C.UTF-8
jobs=$(nproc)
lean=(-DDIALOG_BUILD_TESTS=OFF -DDIALOG_BUILD_TOOLS=OFF -DDIALOG_BUILD_DATA=OFF
  -DDIALOG_BUILD_PYTHON=OFF)

echo "-- multiarch library folder, no RUNPATH, pkg-config"
libdir=lib/x86_64-linux-gnu
prefix="$work/multiarch"
cmake -S "$source" -B "$work/ma" -DCMAKE_INSTALL_LIBDIR=$libdir -DDIALOG_INSTALL_RPATH=OFF \
  "${lean[@]}" >/dev/null
cmake --build "$work/ma" -j"$jobs" >/dev/null
cmake --install "$work/ma" --prefix "$prefix" >/dev/null
export PKG_CONFIG_PATH="$prefix/$libdir/pkgconfig"
[ "$(realpath "$(pkg-config --variable=libdir dialog-stemmer)")" = "$prefix/$libdir" ]
[ "$(realpath "$(pkg-config --variable=includedir dialog-stemmer)")" = "$prefix/include" ]
if readelf -d "$prefix/$libdir/libdialog-stemmer.so" | grep -q -E 'RUNPATH|RPATH'; then
  echo "RUNPATH left in although DIALOG_INSTALL_RPATH=OFF"
  exit 1
fi
read -a flags <<<"$(pkg-config --cflags --libs dialog-stemmer)"
c++ -std=c++17 "$consumer/main.cpp" -o "$work/pc-consumer" "${flags[@]}"
LD_LIBRARY_PATH="$prefix/$libdir" "$work/pc-consumer"
unset PKG_CONFIG_PATH

echo "-- add_subdirectory"
cmake -S "$consumer" -B "$work/sub" -DDIALOG_SOURCE_DIR="$source" >/dev/null
cmake --build "$work/sub" -j"$jobs" >/dev/null
"$work/sub/consumer"
# As a subproject the project builds its libraries only.
if [ -e "$work/sub/dialog-stemmer/tools" ] || [ -e "$work/sub/dialog-stemmer/tests" ]; then
  echo "a subproject built its tools or tests"
  exit 1
fi

echo "-- Debian packages"
(cd "$build" && cpack -G DEB -B "$work/deb" >/dev/null)
contents() { dpkg-deb -c "$work/deb/$1"_*.deb | awk '{print $6}'; }
expect() {
  local package=$1 path=$2
  contents "$package" | grep -q -- "$path" || { echo "$package lacks $path"; exit 1; }
}
expect libdialog-stemmer1 "/libdialog-stemmer.so.1"
expect libdialog-stemmer1 "/libku.so"
expect libdialog-stemmer-dev "/include/stemmer/stemmer.hpp"
expect libdialog-stemmer-dev "/pkgconfig/dialog-stemmer.pc"
expect libdialog-stemmer-dev "/cmake/DialogStemmer/DialogStemmerConfig.cmake"
expect dialog-stem "/usr/bin/dialog-stem"
expect dialog-stem "/man1/dialog-stem.1"
expect dialog-stemmer-data-enu "/share/dialog/lemmatizer/enu/lemma"
expect dialog-stemmer-data-enu "/share/dialog/lemmatizer/enu/LICENSE"
expect dialog-stemmer-data-frf "/share/dialog/lemmatizer/frf/LICENSE"
expect dialog-stemmer-data-jpj "/share/dialog/data/ipadic"
if [ -n "$(ls "$build"/python/dialog_stemmer*.so 2>/dev/null)" ]; then
  expect python3-dialog-stemmer "/lib/python3/dist-packages/dialog_stemmer"
fi
if contents libdialog-stemmer1 | grep -q -E 'include/|lemmatizer'; then
  echo "the runtime package holds development or data files"
  exit 1
fi
dpkg-deb -f "$work/deb"/dialog-stem_*.deb Depends | grep -q 'libdialog-stemmer1 (= '
dpkg-deb -f "$work/deb"/dialog-stemmer-data-jpj_*.deb Depends | grep -q mecab-ipadic-utf8
echo "layout test passed"
