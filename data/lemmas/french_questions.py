"""Inverted questions for the French lemma data.

A question typed to a dialog engine puts the subject clitic after its verb,
joined with a hyphen: "Voulez-vous", "Peut-on", "a-t-il", "Est-ce". A cut
at spaces and apostrophes keeps such a piece whole, so the file lists it.
The clitic is dropped: the piece's lemma is its verb's lemma ("Voulez-vous"
-> "vouloir", "a-t-il" -> "avoir"), the same with or without a capital;
the frequent verbs' pieces are also listed in capitals ("VOULEZ-VOUS").

Covered: the verbs that the evidence treebanks use as verbs or auxiliaries,
in every person of the present and conditional, and the most frequent
verbs also in the future, imperfect and simple past ("pourra-t-on",
"était-ce", "fit-il"; a dialog seldom asks other verbs in those, and the
file stays under its bound of 400k pairs). "-t-" comes where the 3rd person singular ends in
neither "t" nor "d" ("va-t-on", "convainc-t-il", but "dit-il", "prend-on"),
and "-ce" after "être" ("est-ce", "serait-ce"). A 1st
person singular that ends in a mute "e" ("parle") takes no "-je": French
writes "parlé-je" there, which nobody types.

A request joins an imperative and its object the same way ("Donnez-moi",
"Allons-y", "Asseyez-vous"), and gets the same lemma: the same verbs, with
the pronouns a request puts there (IMPERATIVE_OBJECTS), and the "s" that a
2nd person singular in a vowel takes before "en" and "y" ("vas-y").
These pieces, and the capitalised words that open a request, are also
listed with the "E" that a typed capital writes for "É" ("Etes-vous").

Two more openings of a typed utterance: the capitalised first piece of a
word with an inner apostrophe ("Aujourd"), and titles that the Lefff writes
with a capital lemma ("Mademoiselle"), as their lower-case spellings.
"""

import lemmacommon

# Person and number of a Lefff verb reading -> the subject clitics that
# follow it.
SUBJECTS = {
    ("1", "s"): ("je",), ("2", "s"): ("tu",), ("3", "s"): ("il", "elle", "on"),
    ("1", "p"): ("nous",), ("2", "p"): ("vous",), ("3", "p"): ("ils", "elles"),
}

# Lefff tense letters of the readings that invert: indicative present,
# future and conditional for every verb covered; imperfect and simple past
# only for the frequent verbs.
INVERTING = set("PC")
INVERTING_FREQUENT = set("PFCIJ")

VERB_CATEGORIES = {"v", "auxAvoir", "auxEtre"}

# Person and number of an imperative -> the object pronouns joined to it,
# reflexive ones included ("Dépêche-toi", "Asseyez-vous").
IMPERATIVE_OBJECTS = {
    ("2", "s"): ("moi", "toi", "le", "la", "les", "en", "y"),
    ("1", "p"): ("nous", "le", "la", "les", "en", "y"),
    ("2", "p"): ("moi", "nous", "vous", "le", "la", "les", "en", "y"),
}


def verb_readings(lefff_path):
    """{form: {lemma: set of (person, number, tense)}} over the Lefff's
    verb readings in an inverting tense ("voulez" -> {"vouloir": {("2",
    "p", "P")}})."""
    readings = {}
    with open(lefff_path, "r", encoding="utf-8") as f:
        for line in f:
            cols = line.rstrip("\n").split("\t")
            if len(cols) < 4 or cols[1] not in VERB_CATEGORIES:
                continue
            form, lemma, feats = cols[0], cols[2], cols[3]
            tenses = {c for c in feats if c.isupper()}
            persons = [c for c in feats if c.isdigit()]
            if (not tenses & (INVERTING_FREQUENT | {"Y"}) or not persons
                    or feats[-1] not in "sp"
                    or not form.islower() or "-" in form or "'" in form
                    or not lemmacommon.valid_entry(form)
                    or not lemmacommon.valid_entry(lemma)):
                continue
            slots = readings.setdefault(form, {}).setdefault(lemma, set())
            slots.update((p, feats[-1], t) for p in persons
                         for t in tenses & (INVERTING_FREQUENT | {"Y"}))
    return readings


def evidence_verbs(treebanks):
    """Lemmas that the CoNLL-U treebanks tag as verbs or auxiliaries."""
    verbs = set()
    for path in treebanks:
        with open(path, "r", encoding="utf-8") as f:
            for line in f:
                cols = line.split("\t")
                if (len(cols) > 3 and cols[0].isdigit()
                        and cols[3] in ("VERB", "AUX")):
                    verbs.add(cols[2])
    return verbs


def joined(form, slot, clitic, imperative):
    """The piece of form and clitic, or None where French writes none."""
    if imperative:
        if (clitic in ("en", "y") and slot == ("2", "s")
                and form.endswith(("e", "a"))):
            return form + "s-" + clitic
        return form + "-" + clitic
    if slot == ("1", "s") and form.endswith("e"):
        return None
    if slot == ("3", "s") and not form.endswith(("t", "d")):
        return form + "-t-" + clitic
    return form + "-" + clitic


def inverted_questions(readings, verbs, chosen, frequent):
    """{piece: verb lemma} for the verbs in `verbs`: inverted questions and
    imperatives with their object, lower-case pieces and their capitalised
    spellings, and for the frequent verbs their spellings in capitals. A
    form several verbs share ("suis": "être", "suivre") takes
    the lemma its bare form has in `chosen`, else a frequent verb's, else
    the first in UTF-16 order."""
    out = {}
    for form in sorted(readings, key=lemmacommon.utf16_key):
        for imperative in (True, False):
            join_clitics(out, form, readings[form], imperative, verbs, chosen,
                         frequent)
    for piece in sorted(out, key=lemmacommon.utf16_key):
        out[lemmacommon.upper_first(piece)] = out[piece]
        # A question typed in capitals mostly asks a frequent verb
        # ("VOULEZ-VOUS", "Y A-T-IL"); the other verbs' would add 30k pairs.
        upper = piece.upper()
        if out[piece] in frequent and len(upper) == len(piece):
            out[upper] = out[piece]
    return out


def join_clitics(out, form, readings, imperative, verbs, chosen, frequent):
    """Adds to out the pieces of form with the object pronouns of its
    imperative readings, or with the subject clitics of its readings in a
    tense that inverts."""
    lemmas = {}
    for lemma, slots in readings.items():
        tenses = INVERTING_FREQUENT if lemma in frequent else INVERTING
        if imperative:
            tenses = {"Y"}
        if lemma in verbs:
            lemmas[lemma] = {s[:2] for s in slots if s[2] in tenses}
    table = IMPERATIVE_OBJECTS if imperative else SUBJECTS
    for slot in sorted(set().union(set(), *lemmas.values())):
        owners = sorted((l for l in lemmas if slot in lemmas[l]),
                        key=lemmacommon.utf16_key)
        lemma = chosen.get(form)
        if lemma not in owners:
            lemma = min(owners, key=lambda l: (l not in frequent,
                                               lemmacommon.utf16_key(l)))
        clitics = table.get(slot, ())
        if lemma == "être" and slot[0] == "3" and not imperative:
            clitics = clitics + ("ce",)
        for clitic in clitics:
            piece = joined(form, slot, clitic, imperative)
            if piece:
                out.setdefault(piece, lemma)


def add_pieces(mapping, lemmas, lefff_path, treebanks, frequent):
    """Adds the pieces of inverted_questions() to mapping, unless lemmas
    (the Lefff's words) has the piece as a word of its own
    ("rendez-vous")."""
    pieces = inverted_questions(verb_readings(lefff_path),
                                evidence_verbs(treebanks) | frequent,
                                lemmas, frequent)
    for piece in sorted(pieces, key=lemmacommon.utf16_key):
        if piece.lower() not in lemmas:
            mapping.setdefault(piece, pieces[piece])


def add_plain_capitals(mapping, names, opening):
    """A typed capital often drops its accent: the pieces above and the
    capitalised words that open a sentence (opening: their lower-case
    spellings) that start with "É", "È" or "Ê" are also listed with "E"
    ("Etes-vous", "Ecoutez"), unless that spelling is a name."""
    for form in sorted(mapping, key=lemmacommon.utf16_key):
        plain = "E" + form[1:]
        if (form[:1] in "ÉÈÊ" and plain not in mapping and plain not in names
                and ("-" in form or form.lower() in opening)):
            mapping[plain] = mapping[form]


def add_apostrophe_openings(mapping, lefff_path, names):
    """A word written with an inner apostrophe ("aujourd'hui", "prud'homme")
    is cut there into pieces; the first piece, capitalised where it opens a
    sentence ("Aujourd"), is listed with its lower-case spelling, which
    keeps itself. Pieces of three letters or fewer ("ch'ti") and pieces that
    are words of their own ("parc") are left alone."""
    with open(lefff_path, "r", encoding="utf-8") as f:
        for line in f:
            form = line.split("\t", 1)[0]
            piece, apostrophe, rest = form.partition("'")
            cap = lemmacommon.upper_first(piece)
            if (apostrophe and rest[:1].isalpha() and len(piece) > 3
                    and piece.isalpha() and piece.islower()
                    and piece not in mapping and cap not in mapping
                    and cap not in names):
                mapping[cap] = piece


def add_lower_case_titles(mapping, seen):
    """Titles and interjections that the Lefff writes with a capital lemma
    ("Mademoiselle" -> "Monsieur", "Okay" -> "OK") open an utterance as
    their lower-case spelling does ("mademoiselle", "ok"), where that is a
    word and the evidence (seen) does not show the capitalised form. Single
    letters ("M") are initials, not titles."""
    for form in sorted(mapping, key=lemmacommon.utf16_key):
        lemma, lower = mapping[form], form.lower()
        if (form != lower and form[1:] == lower[1:] and len(form) > 1
                and lemma != lemma.lower() and form not in seen
                and lower in mapping):
            # The lower-case form's lemma is lower-cased by the final rules.
            mapping[form] = mapping.get(lower, lower).lower()

