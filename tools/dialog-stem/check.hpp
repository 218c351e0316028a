#ifndef DIALOG_STEM_CHECK_HPP
#define DIALOG_STEM_CHECK_HPP

#include <string>

// --check: prints each place where the data of `language` is looked for, in
// order, marks the one that holds it, and for enu and frf counts the lemma
// file's pairs, for jpj says whether the dictionary directory opens. Returns 1
// when the lemma file (enu, frf) or dictionary (jpj) is missing, else 0.
int runCheck(const std::string& language);

#endif  // DIALOG_STEM_CHECK_HPP
