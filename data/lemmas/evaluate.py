#!/usr/bin/env python3
"""Measure the accuracy of a lemma file against a CoNLL-U treebank.

Usage: python3 data/lemmas/evaluate.py LEMMAFILE CONLLU

Every word line of the CoNLL-U file (comments, multiword-token ranges such
as 3-4 and empty nodes such as 5.1 skipped) is looked up in two ways and
compared with its gold lemma (column 3):

  word      the form whole, as stemword() returns it: the lemma if the
            file lists the form, else the form itself;
  sentence  the form as stem_sentence() meets it inside raw text: cut at
            ASCII apostrophes, each non-empty piece looked up whole, the
            results joined again with apostrophes ("l'" is looked up as
            "l"); the contraction token "n't" is looked up as "t", since
            the cut of "don't" gives "don" and "t".

Each measure is reported overall, on words whose gold lemma differs from
the form ("inflected") and on words whose gold lemma is the form ("kept"),
for all words, for sentence-initial words (the first word of a sentence
that holds a letter, where a typed utterance has its capital) and for the
rest.
"""

import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import lemmacommon  # noqa: E402


def predict_word(mapping, form):
    return mapping.get(form, form)


def predict_sentence(mapping, form):
    if form.lower() == "n't":
        return mapping.get(form[-1], form[-1])
    if "'" not in form:
        return mapping.get(form, form)
    pieces = [p for p in form.split("'") if p]
    return "'".join(mapping.get(p, p) for p in pieces)


MEASURES = (("word", predict_word), ("sentence", predict_sentence))
PARTS = ("all", "initial", "rest")


def read_words(path):
    """{(form, gold lemma, sentence-initial): count} over the word lines
    of a CoNLL-U file."""
    words = {}
    lemmacommon.require_file(path, "treebank")
    with open(path, "r", encoding="utf-8") as f:
        initial = True
        for line in f:
            if not line.strip():
                initial = True
                continue
            if line.startswith("#"):
                continue
            cols = line.rstrip("\n").split("\t")
            if len(cols) < 3 or not cols[0].isdigit():
                continue
            first = initial and any(c.isalpha() for c in cols[1])
            initial = initial and not first
            key = (cols[1], cols[2], first)
            words[key] = words.get(key, 0) + 1
    return words




def main(argv):
    if len(argv) != 3 or argv[1].startswith("-"):
        lemmacommon.fail("usage: evaluate.py LEMMAFILE CONLLU")
    lemmacommon.require_file(argv[1], "lemma file")
    mapping = lemmacommon.read_pairs(argv[1])
    words = read_words(argv[2])
    # counts[measure][part][kind] = [right, all]
    counts = {m: {p: {"inflected": [0, 0], "kept": [0, 0]} for p in PARTS}
              for m, _ in MEASURES}
    for (form, gold, first), n in words.items():
        kind = "kept" if gold == form else "inflected"
        for name, predict in MEASURES:
            right = predict(mapping, form) == gold
            for part in ("all", "initial" if first else "rest"):
                cell = counts[name][part][kind]
                cell[0] += n if right else 0
                cell[1] += n
    if not words:
        lemmacommon.fail("no word lines in %s" % argv[2])

    print("pairs %d" % len(mapping))
    print("%-9s %-8s %-20s %-20s %-20s"
          % ("measure", "words", "overall", "inflected", "kept"))
    for name, _ in MEASURES:
        for part in PARTS:
            c = counts[name][part]
            ok = c["inflected"][0] + c["kept"][0]
            n = c["inflected"][1] + c["kept"][1]
            cells = ["%.4f (%d/%d)" % (r / t if t else 0.0, r, t)
                     for r, t in ((ok, n), tuple(c["inflected"]),
                                  tuple(c["kept"]))]
            print("%-9s %-8s %-20s %-20s %-20s" % (name, part, *cells))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
