"""Inverted questions for the French lemma data.

A question typed to a dialog engine puts the subject clitic after its verb,
joined with a hyphen: "Voulez-vous", "Peut-on", "a-t-il", "Est-ce". A cut
at spaces and apostrophes keeps such a piece whole, so the file lists it.
The clitic is dropped: the piece's lemma is its verb's lemma ("Voulez-vous"
-> "vouloir", "a-t-il" -> "avoir"), the same with or without a capital.

Covered: the verbs that the evidence treebanks use as verbs or auxiliaries,
in every person of the present, future and conditional, and the most
frequent verbs also in the imperfect and simple past ("était-ce",
"fit-il"; a dialog seldom asks in those, and the file stays under its
bound of 400k pairs). "-t-" comes where the 3rd person singular ends in
neither "t" nor "d" ("va-t-on", "convainc-t-il", but "dit-il", "prend-on"),
and "-ce" after "être" ("est-ce", "serait-ce"). A 1st
person singular that ends in a mute "e" ("parle") takes no "-je": French
writes "parlé-je" there, which nobody types.
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
INVERTING = set("PFC")
INVERTING_FREQUENT = set("PFCIJ")

VERB_CATEGORIES = {"v", "auxAvoir", "auxEtre"}


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
            if (not tenses & INVERTING_FREQUENT or not persons
                    or feats[-1] not in "sp"
                    or not form.islower() or "-" in form or "'" in form
                    or not lemmacommon.valid_entry(form)
                    or not lemmacommon.valid_entry(lemma)):
                continue
            slots = readings.setdefault(form, {}).setdefault(lemma, set())
            slots.update((p, feats[-1], t) for p in persons
                         for t in tenses & INVERTING_FREQUENT)
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


def joined(form, slot, clitic):
    """The piece of form and clitic, or None where French writes none."""
    if slot == ("1", "s") and form.endswith("e"):
        return None
    if slot == ("3", "s") and not form.endswith(("t", "d")):
        return form + "-t-" + clitic
    return form + "-" + clitic


def inverted_questions(readings, verbs, chosen, frequent):
    """{piece: verb lemma} for the verbs in `verbs`, lower-case pieces and
    their capitalised spellings. A form several verbs share ("suis":
    "être", "suivre") takes the lemma its bare form has in `chosen`, else a
    frequent verb's, else the first in UTF-16 order."""
    out = {}
    for form in sorted(readings, key=lemmacommon.utf16_key):
        lemmas = {}
        for lemma, slots in readings[form].items():
            tenses = INVERTING_FREQUENT if lemma in frequent else INVERTING
            if lemma in verbs:
                lemmas[lemma] = {s[:2] for s in slots if s[2] in tenses}
        if not lemmas:
            continue
        for slot in sorted(set().union(*lemmas.values())):
            owners = sorted((l for l in lemmas if slot in lemmas[l]),
                            key=lemmacommon.utf16_key)
            lemma = chosen.get(form)
            if lemma not in owners:
                lemma = min(owners, key=lambda l: (l not in frequent,
                                                   lemmacommon.utf16_key(l)))
            clitics = SUBJECTS[slot]
            if lemma == "être" and slot[0] == "3":
                clitics = clitics + ("ce",)
            for clitic in clitics:
                piece = joined(form, slot, clitic)
                if piece:
                    out.setdefault(piece, lemma)
    for piece in sorted(out, key=lemmacommon.utf16_key):
        out[lemmacommon.upper_first(piece)] = out[piece]
    return out
