#ifndef DIALOG_STEMMER_SEGMENTER_HPP
#define DIALOG_STEMMER_SEGMENTER_HPP

#include <mecab.h>

#include "stemmer/export.hpp"

namespace MeCab {

// Opens a tagger on the dictionary directory installed as data "data/ipadic/"
// of package "dialog", writing its progress to standard output. Returns the
// new tagger, or null when the dictionary cannot be opened. Never throws.
DIALOG_STEMMER_EXPORT Tagger* createTagger();

}  // namespace MeCab

#endif  // DIALOG_STEMMER_SEGMENTER_HPP
