#!/usr/bin/env bash
# The Debian packages as a user meets them: built with dpkg-buildpackage from a
# clean copy of the tree (tracked files only, no ./build), held to lintian (no
# error, no warning) and to a copyright file in each package, installed all
# together (the UniDic link's only where unidic-mecab is), used (the tool, its
# --check, both consumers, the Python module), then purged, leaving nothing.
# As root they are installed with apt; otherwise, or with DIALOG_DEB_UNPACK=1,
# they are unpacked with dpkg -x into a throwaway root and used from there.
# Usage: scripts/ci-deb.sh [OUT_DIR]   (OUT_DIR keeps the packages and logs)
set -euo pipefail
cd "$(dirname "$0")/.."
source=$PWD
work=$(mktemp -d)
out=${1:-}
installed=()
fail() { echo "ci-deb.sh: $*" >&2; exit 1; }
phase() { echo "-- $* (at $SECONDS s)"; }
cleanup() {
  if [ ${#installed[@]} -gt 0 ]; then
    apt-get purge -y -qq "${installed[@]}" >/dev/null 2>&1 || true
  fi
  rm -rf "$work"
}
trap cleanup EXIT
export LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive
for tool in dpkg-buildpackage dh lintian; do
  command -v $tool >/dev/null || fail "$tool is missing (run scripts/setup.sh)"
done

phase "dpkg-buildpackage from a clean copy of the tree"
mkdir "$work/src"
# The tracked files as they stand, committed or not.
tree=$(git stash create)
git archive "${tree:-HEAD}" | tar -x -C "$work/src"
(cd "$work/src" && dpkg-buildpackage -us -uc -b -j"$(nproc)") >"$work/build.log" 2>&1 ||
  { tail -n 40 "$work/build.log"; fail "dpkg-buildpackage failed (log above)"; }
debs=("$work"/*.deb)
if [ -n "$out" ]; then mkdir -p "$out" && cp "${debs[@]}" "$work"/*.changes "$work"/*.buildinfo "$work/build.log" "$out/"; fi
grep -E '^[0-9]+% tests passed|^[0-9]+/[0-9]+ Test' "$work/build.log" | tail -n 1 || true
for deb in "${debs[@]}"; do printf '%8d  %s\n' "$(stat -c %s "$deb")" "$(basename "$deb")"; done

phase "lintian"
status=0
lintian -I --pedantic "$work"/*.changes >"$work/lintian.txt" 2>"$work/lintian.err" || status=$?
cat "$work/lintian.txt"
if grep -q -E '^[EW]: ' "$work/lintian.txt"; then fail "lintian reports errors or warnings"; fi
[ "$status" -eq 0 ] || { cat "$work/lintian.err"; fail "lintian failed"; }
echo "lintian: $(grep -c -E '^[IP]: ' "$work/lintian.txt" || true) informational tags, no error, no warning"

phase "a copyright file in every package"
packages=()
for deb in "${debs[@]}"; do
  package=$(dpkg-deb -f "$deb" Package)
  packages+=("$package")
  # A -dbgsym package links its folder to its library's, as dh_strip makes it.
  doc=" \./usr/share/doc/$package/copyright\$"
  [[ $package != *-dbgsym ]] || doc=" \./usr/share/doc/$package -> ${package%-dbgsym}\$"
  grep -q -E "$doc" <<<"$(dpkg-deb -c "$deb")" || fail "$package has no /usr/share/doc/$package/copyright"
done

triplet=$(dpkg-architecture -qDEB_HOST_MULTIARCH)
# Only the packages' files may be used.
unset LD_LIBRARY_PATH PYTHONPATH KU_PREFIX_PATH
if [ "$(id -u)" -eq 0 ] && [ -z "${DIALOG_DEB_UNPACK:-}" ]; then
  # The UniDic link's package pulls in unidic-mecab, a 1 GB download: it is
  # installed only where that dictionary is already.
  install_debs=()
  for deb in "${debs[@]}"; do
    if [[ $(basename "$deb") == dialog-stemmer-data-jpj-unidic_* ]] && ! dpkg -s unidic-mecab >/dev/null 2>&1; then
      echo "leaving out $(basename "$deb"): unidic-mecab is not installed"
      continue
    fi
    install_debs+=("$deb")
    installed+=("$(dpkg-deb -f "$deb" Package)")
  done
  present=("${installed[@]}")
  phase "apt-get install of ${#install_debs[@]} of ${#debs[@]} packages"
  apt-get install -y -qq "${install_debs[@]}" >"$work/apt.log" 2>&1 || { cat "$work/apt.log"; fail "apt-get install failed"; }
  root=""
  # Here-strings rather than pipes into grep -q, which would cut the writer off.
  for lib in libdialog-stemmer.so.1 libku.so.1; do
    grep -q "$lib " <<<"$(ldconfig -p)" || fail "the loader cache lacks $lib"
  done
else
  phase "dpkg -x of all ${#debs[@]} packages into a throwaway root"
  root="$work/root"
  present=("${packages[@]}")
  for deb in "${debs[@]}"; do dpkg -x "$deb" "$root"; done
  export LD_LIBRARY_PATH="$root/usr/lib/$triplet" PYTHONPATH="$root/usr/lib/python3/dist-packages"
fi
libdir="$root/usr/lib/$triplet"
export XDG_DATA_HOME="$work/no-user-data"

phase "libraries, tool and Python module"
for package in "${present[@]}"; do
  [ -f "$root/usr/share/doc/$package/copyright" ] || fail "no /usr/share/doc/$package/copyright once installed"
done
for file in "$libdir/libdialog-stemmer.so.1" "$libdir/libku.so.1" \
  "$root"/usr/lib/python3/dist-packages/dialog_stemmer.*.so; do
  [ -e "$file" ] || fail "$file is not installed"
  if grep -q -E 'RUNPATH|RPATH' <<<"$(readelf -d "$file")"; then fail "$file has a RUNPATH"; fi
done
stems=$("$root/usr/bin/dialog-stem" --format tsv "the children went home")
[ "$stems" = "$(printf 'the\tchild\tgo\thome')" ] || fail "dialog-stem gave: $stems"
for lang in enu frf jpj; do
  "$root/usr/bin/dialog-stem" --lang $lang --check >"$work/check.txt" 2>&1 || { cat "$work/check.txt"; fail "--check $lang"; }
done
# The morpheme mode on each installed dictionary, in the tool and the module
# (unpacked, the data is looked for under the throwaway root).
dictionaries=(ipadic)
if [ -z "$root" ] && [[ " ${present[*]} " == *" dialog-stemmer-data-jpj-unidic "* ]]; then dictionaries+=(unidic); fi
for dictionary in "${dictionaries[@]}"; do
  got=$(KU_PREFIX_PATH="$root/usr" "$root/usr/bin/dialog-stem" --lang jpj --morphemes --dictionary $dictionary \
    --format tsv 猫が走った) || fail "dialog-stem --morphemes --dictionary $dictionary failed"
  [ "$got" = "$(printf '猫\tが\t走る\tた')" ] || fail "dialog-stem --morphemes --dictionary $dictionary gave: $got"
  KU_PREFIX_PATH="$root/usr" /usr/bin/python3 -c 'import dialog_stemmer as d, sys
assert d.Stemmer("jpj", morphemes=True, dictionary=sys.argv[1]).stem_sentence("猫が走った") == ["猫", "が", "走る", "た"]' \
    $dictionary || fail "the Python module's morpheme mode fails with $dictionary"
done
module=$(/usr/bin/python3 -c 'import dialog_stemmer as d; assert d.Stemmer("enu").stemword("went") == "go"
print(d.__file__)') || fail "the Python module does not work"
[[ $module == "$root/usr/lib/python3/dist-packages/"* ]] || fail "the module came from $module"
[ -f "$root/usr/share/man/man1/dialog-stem.1.gz" ] || fail "no compressed manual page"

phase "consumers: CMake package and pkg-config"
consumer=$source/tests/package/consumer
cmake -S "$consumer" -B "$work/cmake" -DCMAKE_PREFIX_PATH="$root/usr" >/dev/null
cmake --build "$work/cmake" >/dev/null
"$work/cmake/consumer"
pc=$libdir/pkgconfig/dialog-stemmer.pc
if grep -q -E '\.\./|pcfiledir' "$pc"; then fail "$pc has relative paths"; fi
# Unpacked, the file is moved to the throwaway root (--define-variable would
# move Qt's too).
mkdir "$work/pc"
sed "s|^prefix=/usr\$|prefix=$root/usr|" "$pc" >"$work/pc/dialog-stemmer.pc"
export PKG_CONFIG_PATH="$work/pc"
read -r -a flags <<<"$(pkg-config --cflags --libs dialog-stemmer)"
# Qt 5 asks its users for position-independent code.
c++ -std=c++17 -fPIC "$consumer/main.cpp" -o "$work/pc-consumer" "${flags[@]}"
"$work/pc-consumer"

if [ -n "$root" ]; then echo "ci-deb.sh: passed (unpacked, not installed)"; exit 0; fi
phase "apt-get purge"
apt-get purge -y -qq "${present[@]}" >"$work/apt.log" 2>&1 || { cat "$work/apt.log"; fail "apt-get purge failed"; }
installed=()
for package in "${packages[@]}"; do
  if grep -q '^.[^n]' <<<"$(dpkg-query -W -f='${db:Status-Abbrev}' "$package" 2>/dev/null)"; then
    fail "$package is still known to dpkg after the purge"
  fi
done
if grep -q -E 'libdialog-stemmer|libku\.so' <<<"$(ldconfig -p)"; then fail "the loader cache still lists the libraries"; fi
for path in /usr/share/dialog /usr/include/stemmer /usr/lib/$triplet/cmake/DialogStemmer /usr/bin/dialog-stem; do
  [ ! -e "$path" ] || fail "$path is left after the purge"
done
echo "ci-deb.sh: passed in $SECONDS s"
