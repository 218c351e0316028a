#!/usr/bin/env python3
"""Measure the accuracy of a lemma file against a CoNLL-U treebank.

Usage: python3 data/lemmas/evaluate.py LEMMAFILE CONLLU

For every word line of the CoNLL-U file (comments, multiword-token ranges
such as 3-4 and empty nodes such as 5.1 are skipped), the form (column 2)
is looked up the way the library does it: the text is cut at ASCII
apostrophes, each piece is looked up whole (the lemma if listed, else the
piece itself) and the results are joined again with apostrophes; empty
pieces vanish, so "l'" is looked up as "l". The English contraction
token "n't" is looked up as "t", since the library's cut of "don't" gives
"don" and "t". The prediction is compared with the gold lemma (column 3).

Prints accuracy overall, on words whose gold lemma differs from the form
("inflected") and on words whose gold lemma is the form ("own lemma").
"""

import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import lemmacommon  # noqa: E402


def predict(mapping, form):
    if form.lower() == "n't":
        return mapping.get(form[-1], form[-1])
    if "'" not in form:
        return mapping.get(form, form)
    pieces = [p for p in form.split("'") if p]
    return "'".join(mapping.get(p, p) for p in pieces)


def main(argv):
    if len(argv) != 3 or argv[1].startswith("-"):
        lemmacommon.fail("usage: evaluate.py LEMMAFILE CONLLU")
    lemmacommon.require_file(argv[1], "lemma file")
    lemmacommon.require_file(argv[2], "CoNLL-U file")
    mapping = lemmacommon.read_pairs(argv[1])
    counts = {"inflected": [0, 0], "own": [0, 0]}
    with open(argv[2], "r", encoding="utf-8") as f:
        for line in f:
            line = line.rstrip("\n")
            if not line or line.startswith("#"):
                continue
            cols = line.split("\t")
            if len(cols) < 3 or not cols[0].isdigit():
                continue
            form, gold = cols[1], cols[2]
            kind = "own" if gold == form else "inflected"
            counts[kind][1] += 1
            if predict(mapping, form) == gold:
                counts[kind][0] += 1
    total_ok = counts["inflected"][0] + counts["own"][0]
    total = counts["inflected"][1] + counts["own"][1]
    if total == 0:
        lemmacommon.fail("no word lines in %s" % argv[2])

    def show(name, ok, n):
        acc = ok / n if n else 0.0
        print("%-10s %.4f  (%d/%d)" % (name, acc, ok, n))

    print("entries    %d" % len(mapping))
    show("overall", total_ok, total)
    show("inflected", *counts["inflected"])
    show("own-lemma", *counts["own"])
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
