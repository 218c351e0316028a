#ifndef DIALOG_STEMMER_SEGMENTER_OPEN_TAGGER_HPP
#define DIALOG_STEMMER_SEGMENTER_OPEN_TAGGER_HPP

#include <cstdio>
#include <string>

#include <mecab.h>

namespace ZQ::Dialog::segmenter {

// Opens a MeCab tagger whose resource file and dictionary directory are both
// `dir` ("MECAB_DEFAULT_RC" and "." when `dir` is empty), so that MeCab never
// falls back to the home directory, the environment or /etc/mecabrc. Writes
// the progress trail to `out`. Returns the tagger, or null with MeCab's last
// error left empty. Never throws on its own account.
MeCab::Tagger* openTagger(const std::string& dir, std::FILE* out = stdout);

}  // namespace ZQ::Dialog::segmenter

#endif  // DIALOG_STEMMER_SEGMENTER_OPEN_TAGGER_HPP
