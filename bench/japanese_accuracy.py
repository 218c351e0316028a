#!/usr/bin/python3
"""Scores `dialog-stem --lang jpj --morphemes` against a Japanese treebank.

Feeds each sentence's `# text =` line of a CoNLL-U file to the tool, one line
each, and compares the elements of each sentence with its LEMMA column as bags
(multisets): micro precision, recall and F1 over all sentences. A report, not a
test: the treebank is only measured on, never learnt from.

Usage: bench/japanese_accuracy.py [--tool PATH] [--dictionary NAME ...] [CONLLU]
(default: build/tools/dialog-stem, ipadic and unidic, ../shared/ud/ja_gsd-ud-dev.conllu).
The tool finds its dictionaries as usual (KU_PREFIX_PATH, see --check --lang jpj).
"""
import argparse
import collections
import json
import os
import subprocess
import sys

HERE = os.path.dirname(os.path.abspath(__file__))


def sentences(path):
    """(text, gold lemmas) per sentence; multiword ranges and empty nodes skipped."""
    text, lemmas = None, []
    with open(path, encoding="utf-8") as conllu:
        for line in conllu:
            line = line.rstrip("\n")
            if line.startswith("# text = "):
                text = line[len("# text = "):]
            elif line and not line.startswith("#"):
                columns = line.split("\t")
                if columns[0].isdigit():
                    lemmas.append(columns[2])
            elif not line and text is not None:
                yield text, lemmas
                text, lemmas = None, []
    if text is not None:
        yield text, lemmas


def score(tool, dictionary, corpus):
    texts, golds = zip(*corpus)
    result = subprocess.run(
        [tool, "--lang", "jpj", "--morphemes", "--dictionary", dictionary, "--format", "jsonl"],
        input="".join(t.replace("\n", " ") + "\n" for t in texts).encode(),
        stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)
    if result.returncode != 0:
        sys.exit("%s: %s" % (dictionary, result.stderr.decode(errors="replace").strip()))
    records = result.stdout.decode().splitlines()
    if len(records) != len(texts):
        sys.exit("%s: %d records for %d sentences" % (dictionary, len(records), len(texts)))
    common = guessed = gold_total = 0
    for record, gold in zip(records, golds):
        predicted = collections.Counter(json.loads(record))
        wanted = collections.Counter(gold)
        common += sum((predicted & wanted).values())
        guessed += sum(predicted.values())
        gold_total += sum(wanted.values())
    precision = common / guessed if guessed else 0.0
    recall = common / gold_total if gold_total else 0.0
    f1 = 2 * precision * recall / (precision + recall) if precision + recall else 0.0
    return len(texts), precision, recall, f1


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--tool", default=os.path.join(HERE, "..", "build", "tools", "dialog-stem",
                                                       "dialog-stem"))
    parser.add_argument("--dictionary", action="append", choices=["ipadic", "unidic"])
    parser.add_argument("conllu", nargs="?",
                        default=os.path.join(HERE, "..", "..", "shared", "ud", "ja_gsd-ud-dev.conllu"))
    args = parser.parse_args()
    corpus = list(sentences(args.conllu))
    print("| dictionary | sentences | precision | recall | F1 |")
    print("| --- | --- | --- | --- | --- |")
    for dictionary in args.dictionary or ["ipadic", "unidic"]:
        count, precision, recall, f1 = score(args.tool, dictionary, corpus)
        print("| %s | %d | %.4f | %.4f | %.4f |" % (dictionary, count, precision, recall, f1))


if __name__ == "__main__":
    main()
