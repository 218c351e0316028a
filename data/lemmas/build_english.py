#!/usr/bin/env python3
"""Build the default English lemma file.

Inputs:
    apt-get install wordnet-base wamerican
        -> /usr/share/wordnet (WordNet 3.0), /usr/share/dict/american-english
    cp data/npm/package.json data/npm/package-lock.json BUILDDIR/
    npm ci --prefix BUILDDIR --ignore-scripts --no-audit --no-fund
        -> BUILDDIR/node_modules/wink-lexicon

Usage:
    python3 data/lemmas/build_english.py --wordnet /usr/share/wordnet \\
        --words /usr/share/dict/american-english \\
        --wink BUILDDIR/node_modules/wink-lexicon \\
        --evidence en_ewt-ud-train.conllu -o OUT

The output is derived from WordNet 3.0 (WordNet licence), wink-lexicon (MIT)
and UD English EWT (CC BY-SA 4.0, which the whole file carries).

How a lemma is chosen for a lower-case form:
  1. the FUNCTION_WORDS table (auxiliaries, pronouns, contraction pieces);
  2. otherwise the form's part-of-speech tags from wink-lexicon, most
     frequent first: the first tag decides. An inflected tag (NNS, VBZ, VBD,
     VBN, VBG, JJR, JJS, RBR, RBS) lemmatises with WordNet's exception lists
     and detachment rules for that part of speech; any other tag keeps the
     form as its own lemma (so "as", "his" are not reduced to "a", "hi");
  3. forms wink-lexicon does not know keep themselves when they are a
     WordNet lemma of their own, else take the first candidate of the
     verb, noun, adjective rules in that order.
Capitalised variants (sentence-initial words) of words wink-lexicon knows
and of inflected forms of the word list get the lower-case lemma, unless
the word list has the capitalised form as a word of its own (names such as
"Bush"); that exception is itself overridden for common words whose most
frequent reading is not a noun ("It", "In", "Best"). Rare base words get
none (capitalised, they are mostly names). Common words also get an
all-capitals variant ("THE", "FREE", "ORDERS"), nouns only from three
letters on (shorter capitals are mostly acronyms: "AD"), and so do names of
the word list ("LOPEZ" -> "Lopez"). Plurals of capitalised nouns take their
singular ("Christians"), short month and weekday names their full name,
round hundreds their digits ("1,200" -> "1200"). The evidence rules of
evidence.py then settle what the lexicons leave open, and all-capitals
forms the evidence never shows follow their other spellings' evidence; the
contraction pieces and the contraction tokens ("n't", "'ll") keep the
tables' lemmas.
Last, the rules that nothing overrides (lemmacommon.apply_final_rules): a
lower-case form gets a lower-case lemma ("airlines" -> "airline") but for
the pronoun ("i", "me" -> "I"), a single letter stands for a longer word
only as a contraction piece ("t" -> "not"; "b" is not "billion"), and a
capitalised form with a lower-case lemma follows its lower-case spelling.
"""

import argparse
import os
import re
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import evidence  # noqa: E402
import lemmacommon  # noqa: E402

POS_FILES = (("n", "noun"), ("v", "verb"), ("a", "adj"), ("r", "adv"))

# WordNet's detachment rules (suffix, replacement) per part of speech.
DETACH = {
    "n": [("s", ""), ("ses", "s"), ("xes", "x"), ("zes", "z"),
          ("ches", "ch"), ("shes", "sh"), ("men", "man"), ("ies", "y")],
    "v": [("s", ""), ("ies", "y"), ("es", "e"), ("es", ""), ("ed", "e"),
          ("ed", ""), ("ing", "e"), ("ing", "")],
    "a": [("er", ""), ("est", ""), ("er", "e"), ("est", "e")],
    "r": [],
}

# Penn tags that mark an inflected form, with the WordNet parts of speech
# to lemmatise it with (first that gives a lemma wins).
INFLECTED_TAGS = {
    "NNS": ("n",), "NNPS": ("n",),
    "VBZ": ("v",), "VBD": ("v",), "VBN": ("v",), "VBG": ("v",),
    "JJR": ("a",), "JJS": ("a",),
    "RBR": ("a", "r"), "RBS": ("a", "r"),
}

# Closed-class words and contraction pieces. The library cuts words at
# apostrophes, so "don't" arrives as "don" + "t", "I'm" as "I" + "m".
FUNCTION_WORDS = {
    "am": "be", "are": "be", "is": "be", "was": "be", "were": "be",
    "been": "be", "being": "be", "s": "be", "m": "be", "re": "be",
    "isn": "be", "aren": "be", "wasn": "be", "weren": "be", "ain": "be",
    "ai": "be",
    "has": "have", "had": "have", "having": "have", "ve": "have",
    "hasn": "have", "haven": "have", "hadn": "have",
    "does": "do", "did": "do", "done": "do", "doing": "do",
    "don": "do", "doesn": "do", "didn": "do",
    "ll": "will", "wo": "will", "d": "would", "ca": "can", "t": "not",
    "couldn": "could", "wouldn": "would", "shouldn": "should",
    "mustn": "must", "needn": "need", "mightn": "might",
    "me": "I", "him": "he", "us": "we", "them": "they",
    "thanks": "thanks", "regards": "regards", "others": "other",
    "an": "a", "these": "this", "those": "that",
}

# The pieces above that only a cut at apostrophes produces: the evidence
# (whole tokens) never sees them as such ("m" there is "million"), so the
# table keeps the last word on them.
CONTRACTION_PIECES = {
    "s", "m", "re", "ve", "ll", "d", "t", "ca", "wo", "ai", "ain", "don",
    "doesn", "didn", "isn", "aren", "wasn", "weren", "hasn", "haven", "hadn",
    "couldn", "wouldn", "shouldn", "mustn", "needn", "mightn",
}

# Contraction tokens as a tokenizer cuts them ("do" + "n't", "I" + "'m"),
# beside the pieces above that a sentence cut at apostrophes gives. "'s" is
# left to the evidence: possessive or "is"/"has".
CONTRACTIONS = {"n't": "not", "'m": "be", "'re": "be", "'ve": "have",
                "'ll": "will", "'d": "would"}

# The one exception to "lower-case forms get lower-case lemmas", as the
# treebanks write it.
PRONOUN = {"i": "I", "me": "I"}
NOUN_TAGS = {"NN", "NNS", "NNP", "NNPS"}

# Capitalised words that are names even though the lower-case word is common.
NAMES = {
    "January", "February", "March", "April", "May", "June", "July",
    "August", "September", "October", "November", "December",
    "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday",
    "Sunday",
}
# Months and weekdays written short, with or without a full stop.
SHORT_NAMES = {name[:3]: name for name in NAMES if name != "May"}
SHORT_NAMES.update(Sept="September", Tues="Tuesday", Thur="Thursday",
                   Thurs="Thursday")


def parse_args(argv):
    p = argparse.ArgumentParser(
        description="Build the English lemma file from WordNet 3.0, a word "
                    "list and wink-lexicon.")
    p.add_argument("--wordnet", required=True,
                   help="WordNet dict directory (index.noun, verb.exc, ...)")
    p.add_argument("--words", required=True,
                   help="word list, one word a line (wamerican)")
    p.add_argument("--wink", required=True,
                   help="wink-lexicon package directory")
    p.add_argument("--evidence", nargs="+", required=True, metavar="CONLLU",
                   help="evidence treebank (UD English EWT train)")
    p.add_argument("-o", "--output", required=True, help="output file")
    return p.parse_args(argv)


def plain_word(s):
    return (lemmacommon.valid_entry(s) and "'" not in s
            and not s.startswith("-") and not s.endswith("-"))


def read_wordnet(wn_dir):
    """Returns ({pos: set of lemmas}, {pos: {form: [bases]}},
    {lemma: number of sense-tagged corpus occurrences, all parts of
    speech})."""
    index = {}
    exc = {}
    counts = {}
    for pos, name in POS_FILES:
        path = lemmacommon.require_file(os.path.join(wn_dir, "index." + name),
                                        "WordNet index")
        lemmas = set()
        with open(path, "r", encoding="utf-8", errors="replace") as f:
            for line in f:
                if line.startswith(" "):
                    continue
                fields = line.split()
                word = fields[0]
                if not plain_word(word):
                    continue
                lemmas.add(word)
                try:
                    n_ptr = int(fields[3])
                    tagged = int(fields[5 + n_ptr])
                except (IndexError, ValueError):
                    lemmacommon.fail("malformed WordNet index line in %s"
                                     % path)
                counts[word] = counts.get(word, 0) + tagged
        index[pos] = lemmas
        path = lemmacommon.require_file(os.path.join(wn_dir, name + ".exc"),
                                        "WordNet exception list")
        table = {}
        with open(path, "r", encoding="utf-8", errors="replace") as f:
            for line in f:
                parts = line.split()
                if len(parts) < 2 or not plain_word(parts[0]):
                    continue
                bases = [b for b in parts[1:] if plain_word(b)]
                if bases:
                    table.setdefault(parts[0], []).extend(bases)
        exc[pos] = table
    return index, exc, counts


_WINK_VAR = re.compile(r"^var (A_[A-Za-z0-9_$]+) = \[([^\]]*)\];")
_WINK_TAG = re.compile(r"^var ([A-Z$]+) = '([A-Z$]+)';")
_WINK_ENTRY = re.compile(
    r"^lexicon(?:\.([^\s=\[]+)|\[\s*'((?:[^'\\]|\\.)*)'\s*\])\s*=\s*"
    r"(A_[A-Za-z0-9_$]+);")


def read_wink(wink_dir):
    """Returns {form: [Penn tags, most frequent first]}."""
    path = lemmacommon.require_file(
        os.path.join(wink_dir, "src", "lexicon.js"), "wink-lexicon lexicon")
    tags = {}
    lists = {}
    lexicon = {}
    with open(path, "r", encoding="utf-8") as f:
        for line in f:
            m = _WINK_TAG.match(line)
            if m:
                tags[m.group(1)] = m.group(2)
                continue
            m = _WINK_VAR.match(line)
            if m:
                names = [t.strip() for t in m.group(2).split(",") if t.strip()]
                lists[m.group(1)] = [tags.get(t, t) for t in names]
                continue
            m = _WINK_ENTRY.match(line)
            if m:
                word = m.group(1) or m.group(2).replace("\\'", "'")
                if m.group(3) in lists:
                    lexicon[word] = lists[m.group(3)]
    if len(lexicon) < 1000:
        lemmacommon.fail("could not read wink-lexicon entries from %s" % path)
    return lexicon


def read_words(path):
    words = set()
    with open(path, "r", encoding="utf-8", errors="replace") as f:
        for line in f:
            w = line.rstrip("\n")
            if plain_word(w):
                words.add(w)
    return words


class Morphy:
    def __init__(self, index, exc, counts):
        self.index = index
        self.exc = exc
        self.counts = counts

    def bases(self, form, pos):
        """Base forms of form for pos other than form itself, in WordNet's
        order: exception list first, then detachment rules."""
        out = []
        for b in self.exc[pos].get(form, []):
            if b != form and b not in out:
                out.append(b)
        for suffix, repl in DETACH[pos]:
            if form.endswith(suffix) and len(form) > len(suffix):
                b = form[:len(form) - len(suffix)] + repl
                if b != form and b in self.index[pos] and b not in out:
                    out.append(b)
        return out

    def is_lemma(self, form):
        return any(form in self.index[pos] for pos, _ in POS_FILES)


def lemma_of(form, morphy, wink):
    if form in FUNCTION_WORDS:
        return FUNCTION_WORDS[form]
    tags = wink.get(form)
    if tags:
        for tag in tags:
            poses = INFLECTED_TAGS.get(tag)
            if poses is None:
                return form
            for pos in poses:
                bases = morphy.bases(form, pos)
                if bases:
                    return bases[0]
        return form
    # Not in wink-lexicon: the form itself when it is a WordNet lemma,
    # else the verb, noun or adjective base; a base whose senses are seen
    # more often in WordNet's tagged corpus than the form's beats it
    # ("troops" -> "troop"). Ties keep the earlier candidate.
    cands = []
    if morphy.is_lemma(form):
        cands.append(form)
    for pos in ("v", "n", "a"):
        for b in morphy.bases(form, pos):
            if b not in cands:
                cands.append(b)
    if not cands:
        return form
    best = cands[0]
    for c in cands[1:]:
        if morphy.counts.get(c, 0) > morphy.counts.get(best, 0):
            best = c
    return best


def build(wn_dir, words_path, wink_dir, treebanks):
    index, exc, counts = read_wordnet(wn_dir)
    wink = read_wink(wink_dir)
    words = read_words(words_path)
    morphy = Morphy(index, exc, counts)

    vocab = set()
    for w in words:
        if w.islower():
            vocab.add(w)
    for w in wink:
        if plain_word(w) and w.islower():
            vocab.add(w)
    for pos, _ in POS_FILES:
        vocab.update(w for w in index[pos] if w.islower())
        vocab.update(w for w in exc[pos] if w.islower())
    vocab.update(FUNCTION_WORDS)

    lower = {}
    for form in sorted(vocab):
        lemma = lemma_of(form, morphy, wink)
        if plain_word(lemma):
            lower[form] = lemma
    mapping = dict(lower)
    attested = {w for w in words if w[0].isupper()}
    attested.update(w.upper() for w in NAMES)
    # A capitalised word of the word list that is also a common word whose
    # most frequent reading is not a noun ("It", "In", "Good") is far more
    # often that word at the start of a sentence than a name.
    for form in sorted(lower):
        tags = wink.get(form)
        cap = lemmacommon.upper_first(form)
        if (cap in attested and tags and tags[0] not in NOUN_TAGS
                and (lower[form] == form or not tags[0].startswith("VB"))
                and cap not in NAMES):
            mapping[cap] = lower[form]
    # Words written in capitals ("FREE", "THE", "ORDERS"): common words only,
    # nouns from three letters on.
    for form in sorted(lower):
        tags = wink.get(form)
        upper = form.upper()
        if (tags and (tags[0] not in NOUN_TAGS or len(form) > 2)
                and len(form) > 1 and upper != form and upper not in attested
                and len(upper) == len(form)):
            mapping[upper] = lower[form]
    # Names in capitals, from four letters on (shorter ones: acronyms, "EU").
    for name in sorted(attested - set(NAMES)):
        upper = name.upper()
        if (len(name) > 3 and name[1:].islower() and len(upper) == len(name)
                and name.lower() not in words and upper not in mapping):
            mapping[upper] = name
    # Plurals of capitalised nouns ("Christians"), when the plural is no
    # WordNet lemma of its own ("Edwards", "Mars" are).
    for name in sorted(attested):
        single = name[:-1]
        if (name.endswith("s") and not name.endswith("ss")
                and single in attested and name not in mapping
                and single.lower() in index["n"]
                and not morphy.is_lemma(name.lower())):
            mapping[name] = single
    for short, name in sorted(SHORT_NAMES.items()):
        mapping[short] = mapping[short + "."] = name
    # Round hundreds with a group separator, as the evidence writes them.
    for n in range(10, 10000):
        mapping["%d,%d00" % divmod(n, 10)] = "%d00" % n
    # Sentence-initial variants: only for words wink-lexicon knows (but base
    # nouns and adjectives WordNet never tags) and inflected forms of the
    # word list. Capitalised, rarer words are mostly names ("Mariner").
    common = {f: l for f, l in lower.items()
              if (f in wink and not (l == f and wink[f][0] in ("NN", "JJ")
                                     and counts.get(f, 0) == 0))
              or (f in words and l != f)}
    lemmacommon.add_capitalised(mapping, common, attested)
    readings = evidence.read_conllu(treebanks)
    evidence.apply_attested(mapping, readings)
    evidence.add_capitals(mapping, readings)
    for piece in sorted(CONTRACTION_PIECES):
        mapping[piece] = FUNCTION_WORDS[piece]
        # An utterance that opens with "Didn't" or "Isn't" cuts into "Didn"
        # and "t"; a piece the evidence shows as a word ("Don") stays one.
        cap = lemmacommon.upper_first(piece)
        if len(piece) > 2 and cap not in readings:
            mapping[cap] = FUNCTION_WORDS[piece]
    for token in sorted(CONTRACTIONS):
        mapping[token] = mapping[token.upper()] = CONTRACTIONS[token]
    evidence.add_typographic_apostrophes(mapping)
    lemmacommon.apply_final_rules(
        mapping, {w for w in FUNCTION_WORDS if len(w) == 1}, PRONOUN)
    return mapping


def main(argv):
    args = parse_args(argv)
    lemmacommon.require_dir(args.wordnet, "WordNet directory")
    lemmacommon.require_file(args.words, "word list")
    lemmacommon.require_dir(args.wink, "wink-lexicon directory")
    mapping = build(args.wordnet, args.words, args.wink, args.evidence)
    n = lemmacommon.write_pairs(args.output, mapping)
    sys.stderr.write("wrote %d pairs to %s\n" % (n, args.output))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
