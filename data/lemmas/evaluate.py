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
the form ("inflected") and on words whose gold lemma is the form ("kept").
"""

import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import evidence  # noqa: E402
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


def main(argv):
    if len(argv) != 3 or argv[1].startswith("-"):
        lemmacommon.fail("usage: evaluate.py LEMMAFILE CONLLU")
    lemmacommon.require_file(argv[1], "lemma file")
    mapping = lemmacommon.read_pairs(argv[1])
    readings = evidence.read_conllu([argv[2]])
    # counts[measure][kind] = [right, all]
    counts = {m: {"inflected": [0, 0], "kept": [0, 0]} for m, _ in MEASURES}
    for form, lemmas in readings.items():
        for gold, n in lemmas.items():
            kind = "kept" if gold == form else "inflected"
            for name, predict in MEASURES:
                counts[name][kind][1] += n
                if predict(mapping, form) == gold:
                    counts[name][kind][0] += n
    if sum(counts["word"][k][1] for k in ("inflected", "kept")) == 0:
        lemmacommon.fail("no word lines in %s" % argv[2])

    print("pairs %d" % len(mapping))
    print("%-9s %-20s %-20s %-20s" % ("measure", "overall", "inflected", "kept"))
    for name, _ in MEASURES:
        c = counts[name]
        ok = c["inflected"][0] + c["kept"][0]
        n = c["inflected"][1] + c["kept"][1]
        cells = ["%.4f (%d/%d)" % (r / t if t else 0.0, r, t)
                 for r, t in ((ok, n), tuple(c["inflected"]), tuple(c["kept"]))]
        print("%-9s %-20s %-20s %-20s" % (name, *cells))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
