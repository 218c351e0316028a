"""Shared helpers for the lemma data builders.

The lemma file format read by the library: UTF-8, "\\n" line ends, pairs of
lines (word form, then its lemma), ordered by form in UTF-16 code unit order,
no duplicates, no empty strings, no "_", spaces or tabs.
"""

import os
import sys


def fail(message):
    """Print a one-line error and exit with status 2."""
    sys.stderr.write("error: %s\n" % message)
    sys.exit(2)


def require_file(path, what):
    if not path or not os.path.isfile(path):
        fail("%s not found: %s" % (what, path))
    return path


def require_dir(path, what):
    if not path or not os.path.isdir(path):
        fail("%s not found: %s" % (what, path))
    return path


def utf16_key(s):
    """Sort key giving QString operator< order (UTF-16 code units)."""
    return s.encode("utf-16-be")


_BAD_CHARS = ("_", " ", "\t", "\n", "\r", "\x0b", "\x0c", "\x85",
              "\u2028", "\u2029")


def valid_entry(s):
    """True when s may appear as a form or lemma in a lemma file."""
    if not s:
        return False
    for c in _BAD_CHARS:
        if c in s:
            return False
    return True


def upper_first(word):
    """word with its first character upper-cased (only when that is a
    single character, so the rest of the word is left alone)."""
    if not word:
        return word
    first = word[0].upper()
    if len(first) != 1:
        return word
    return first + word[1:]


def add_capitalised(mapping, lowercase_lemmas, attested):
    """Add sentence-initial variants.

    lowercase_lemmas: {form: lemma} for lower-case forms (identity pairs
    included, so "the" -> "the" gives "The" -> "the").
    attested: set of forms that exist as words of their own with a capital
    (names and the like); those are never overridden.
    Existing entries in mapping are kept.
    """
    for form in sorted(lowercase_lemmas):
        cap = upper_first(form)
        if cap == form or cap in attested or cap in mapping:
            continue
        mapping[cap] = lowercase_lemmas[form]


def lower_case_lemmas(mapping, own_lemmas):
    """A form written in lower case (it has cased letters, all of them lower
    case) gets its lemma in lower case: "airlines" -> "airline", never
    "Airline", so that "airline" and "airlines" share their normal form.
    Forms without cased letters are left alone; own_lemmas {form: lemma}
    lists the exceptions (English "i" and "me" -> "I"), which take their
    table's lemma. Returns the number of lemmas changed."""
    changed = 0
    for form in sorted(mapping, key=utf16_key):
        lemma = own_lemmas.get(form, mapping[form].lower())
        if form.islower() and lemma != mapping[form]:
            mapping[form] = lemma
            changed += 1
    for form in sorted(own_lemmas, key=utf16_key):
        mapping[form] = own_lemmas[form]
    return changed


def follow_lower_case(mapping, kept):
    """A capitalised form (capital first letter, no other capital) whose
    lemma is written in lower case is its lower-case spelling at the start
    of a sentence, and so gets exactly what that spelling gets ("Children"
    -> "child", "Mangez" -> "manger"). mapping must hold the known words
    as pairs, identity pairs included: a capital that drops an accent
    ("Etat" -> "état") has no lower-case spelling there and keeps its lemma.
    A form whose lemma keeps a capital is a word of its own ("Bush",
    "Department") and stays, and so do single letters, which
    drop_letter_expansions settles. kept: capitalised forms left alone ("A"
    is also "à" without its accent). Returns the number of lemmas changed."""
    changed = 0
    for form in sorted(mapping, key=utf16_key):
        lower = form.lower()
        lemma = mapping[form]
        if (len(form) == 1 or form == lower or upper_first(lower) != form
                or form in kept or lemma != lemma.lower()
                or lower not in mapping):
            continue
        target = mapping[lower]
        if target != lemma:
            mapping[form] = target
            changed += 1
    return changed


def drop_letter_expansions(mapping, letter_words):
    """A single letter stands for a longer word only when it is one of
    letter_words, the letters the closed-class tables map: the pieces a cut
    at apostrophes leaves ("t", French "l" and "L") and words such as French
    "a". Any other letter, in either case, is its own lemma, so that "plan b",
    "vitamin e" and "5 K" keep their meaning. Returns the number of pairs
    dropped."""
    dropped = 0
    for form in sorted(mapping, key=utf16_key):
        if (len(form) == 1 and form.isalpha() and form not in letter_words
                and len(mapping[form]) > 1):
            del mapping[form]
            dropped += 1
    return dropped


def apply_final_rules(mapping, letter_words, own_lemmas=None, kept=()):
    """The rules no lexicon or treebank choice may override, applied last
    by both builders: lower_case_lemmas, drop_letter_expansions and
    follow_lower_case."""
    lowered = lower_case_lemmas(mapping, own_lemmas or {})
    dropped = drop_letter_expansions(mapping, letter_words)
    followed = follow_lower_case(mapping, set(kept))
    sys.stderr.write("lower-case forms: %d lemmas lowered; single letters: "
                     "%d expansions dropped; capitalised forms: %d follow "
                     "their lower-case spelling\n" % (lowered, dropped, followed))


def write_pairs(path, mapping):
    """Write {form: lemma} as a lemma file; identity pairs and invalid
    entries are dropped. Returns the number of pairs written."""
    pairs = []
    for form, lemma in mapping.items():
        if form == lemma or not valid_entry(form) or not valid_entry(lemma):
            continue
        pairs.append((utf16_key(form), form, lemma))
    pairs.sort()
    out_dir = os.path.dirname(os.path.abspath(path))
    if not os.path.isdir(out_dir):
        fail("output directory not found: %s" % out_dir)
    tmp = path + ".tmp"
    with open(tmp, "w", encoding="utf-8", newline="\n") as f:
        for _, form, lemma in pairs:
            f.write(form)
            f.write("\n")
            f.write(lemma)
            f.write("\n")
    os.replace(tmp, path)
    return len(pairs)


def read_pairs(path):
    """Read a lemma file into {form: lemma} (last pair wins)."""
    with open(path, "r", encoding="utf-8", newline="\n") as f:
        lines = f.read().split("\n")
    if lines and lines[-1] == "":
        lines.pop()
    if len(lines) % 2:
        fail("odd number of lines in lemma file: %s" % path)
    mapping = {}
    for i in range(0, len(lines), 2):
        mapping[lines[i]] = lines[i + 1]
    return mapping
