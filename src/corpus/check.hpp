#ifndef DIALOG_CORPUS_CHECK_HPP
#define DIALOG_CORPUS_CHECK_HPP

#include <string>

namespace ZQ::Dialog::corpus {

// --check: prints each place where the data of `language` is looked for, in
// order, marks the one that holds it, and for enu and frf counts the lemma
// file's pairs, for jpj says whether the dictionary directory opens. Returns 1
// when the lemma file (enu, frf) is missing or unusable or the dictionary (jpj)
// does not open, else 0.
int runCheck(const std::string& language);

// Why the lemma file of `language` gives no words: "no enu lemma file", "the
// enu lemma file ... is not a regular file" or "... cannot be read"; "" when
// it can be read.
std::string lemmaFileProblem(const std::string& language);

}  // namespace ZQ::Dialog::corpus

#endif  // DIALOG_CORPUS_CHECK_HPP
