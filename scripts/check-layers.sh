#!/usr/bin/env bash
# Fails when a layer reaches past another's interface: product code outside
# src/stemmer reading StemmerPrivate's fields or including stemmer_p.hpp, a
# CMakeLists outside tools/ compiling a tool's source, or a cycle among the
# folders that product code includes from. Run by CTest (test "Layers").
set -uo pipefail
cd "$(dirname "$0")/.." || exit 2
status=0
fail() {
  echo "check-layers: $1:" >&2
  sed 's/^/  /' >&2
  status=1
}

leaks=$(grep -rn -E '\bimpl->(lemDic|lang|stemmer|tagger)\b|#include *"([a-z_/]*/)?stemmer_p\.hpp"' \
  src include tools python --include='*.cpp' --include='*.hpp' |
  grep -v -E '^src/(stemmer|testing)/')
[ -z "$leaks" ] || fail "StemmerPrivate is read outside src/stemmer" <<<"$leaks"

bags=$(find . -name CMakeLists.txt -not -path './build*' -not -path './tools/*' -print0 |
  xargs -0 grep -n -E '(_DIR\}|\.\.)/tools/[^ )]+\.(c|cc|cpp)\b|tools/dialog-stem/[A-Za-z_]+\.cpp')
[ -z "$bags" ] || fail "a CMakeLists outside tools/ compiles a tool's source" <<<"$bags"

# Folder-to-folder include arrows, each quoted include resolved as the build
# does: next to the file, then under src/, then under include/.
edges=$(find src include tools python -name '*.[ch]pp' | sort | while IFS= read -r file; do
  dir=$(dirname "$file")
  sed -n 's/^#include *"\([^"]*\)".*/\1/p' "$file" | while IFS= read -r inc; do
    for target in "$dir/$inc" "src/$inc" "include/$inc"; do
      if [ -f "$target" ]; then
        to=$(dirname "$target")
        [ "$to" = "$dir" ] || echo "$dir $to"
        break
      fi
    done
  done
done | sort -u)
if ! loop=$(tsort <<<"$edges" 2>&1 >/dev/null) || [ -n "$loop" ]; then
  fail "the include arrows between folders form a cycle" <<<"$loop"
fi

[ "$status" -ne 0 ] || echo "check-layers: the layers meet at their interfaces"
exit "$status"
