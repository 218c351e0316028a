"""Treebank evidence for the lemma data builders.

The lexicons propose the pairs; a treebank of gold lemmas settles what they
leave open. Only the treebanks that ../shared/ud/README.md names as evidence
are read here; the measuring sets are only ever scored (evaluate.py).

Rules, applied in this order by both builders:
  1. Attested forms: a form seen in the evidence takes the lemma its
     readings carry most often, when that lemma holds at least half of
     them (ties keep the lexicon's choice; MIN_COUNT and MIN_SHARE). This settles
     proper noun against sentence-initial capital, participle against
     adjective, noun/verb homographs, capitals and closed-class conventions
     for the words that actually occur.
  2. Typographic apostrophes: every form with an ASCII apostrophe is also
     listed with U+2019 ("l'" and "l\u2019"), with the same lemma (the
     treebanks write lemmas with the ASCII apostrophe).
The English builder also lets an unseen all-capitals form follow the
evidence of its lower-case or capitalised spelling (add_capitals).
"""

import collections

import lemmacommon

MIN_COUNT = 1
MIN_SHARE = 0.5
NAME_SHARE = 0.1


def read_conllu(paths):
    """{form: Counter(lemma)} over the word lines of CoNLL-U files
    (comments, multiword-token ranges and empty nodes skipped)."""
    readings = collections.defaultdict(collections.Counter)
    for path in paths:
        lemmacommon.require_file(path, "treebank")
        with open(path, "r", encoding="utf-8") as f:
            for line in f:
                if not line or line.startswith("#"):
                    continue
                cols = line.rstrip("\n").split("\t")
                if len(cols) < 3 or not cols[0].isdigit():
                    continue
                readings[cols[1]][cols[2]] += 1
    return readings


def attested_lemma(counts, current):
    """The lemma a form's readings settle on, or None when they do not."""
    total = sum(counts.values())
    if total < MIN_COUNT:
        return None
    best = max(counts.values())
    tied = sorted((l for l, n in counts.items() if n == best), key=lemmacommon.utf16_key)
    if best < MIN_SHARE * total:
        return None
    return current if current in tied else tied[0]


def apply_attested(mapping, readings):
    """Rule 1: mapping[form] follows the evidence where it settles a form.
    A form that is its own lemma is stored as an identity pair, which the
    writer leaves out. A capitalised form settled on a capitalised lemma
    is a name only when it is seen at least NAME_SHARE times as often as
    its lower-case spelling; else it is mostly that word at the start of a
    sentence ("Children", seen once in a name beside many "children") and
    gets a lower-case lemma, which lemmacommon.follow_lower_case later
    makes its lower-case spelling's."""
    for form in sorted(readings, key=lemmacommon.utf16_key):
        if not lemmacommon.valid_entry(form):
            continue
        lemma = attested_lemma(readings[form], mapping.get(form, form))
        if lemma is None or not lemmacommon.valid_entry(lemma):
            continue
        lower = form.lower()
        if (lemma != lemma.lower() and lemmacommon.upper_first(lower) == form
                and sum(readings[form].values())
                < NAME_SHARE * sum(readings.get(lower, {}).values())):
            lemma = lower
        mapping[form] = lemma


def add_capitals(mapping, readings, min_length=3):
    """Rule 3 (English): a form written in capitals that the evidence never
    shows ("SUSHI", "GOD") takes the lemma the evidence settles for its
    lower-case spelling, or, when that is not seen either, for its
    capitalised one ("God"); from min_length letters on, since shorter
    capitals are mostly acronyms."""
    for form in sorted(readings, key=lemmacommon.utf16_key):
        upper = form.upper()
        if (upper == form or len(upper) != len(form)
                or len(form) < min_length or upper in readings
                or not lemmacommon.valid_entry(form)):
            continue
        if form.islower() or (form[1:].islower()
                              and form.lower() not in readings):
            lemma = attested_lemma(readings[form], mapping.get(form, form))
            if lemma is not None and lemmacommon.valid_entry(lemma):
                mapping[upper] = lemma


def add_typographic_apostrophes(mapping):
    """Rule 2: the U+2019 spelling of every form with an ASCII apostrophe."""
    for form in sorted((f for f in mapping if "'" in f), key=lemmacommon.utf16_key):
        mapping.setdefault(form.replace("'", "\u2019"), mapping[form])


def frequent_forms(readings, minimum=1):
    """Forms seen at least `minimum` times, lower-cased."""
    out = collections.Counter()
    for form, counts in readings.items():
        out[form.lower()] += sum(counts.values())
    return {f for f, n in out.items() if n >= minimum}
