#include "segmenter/segmenter.hpp"

#include "ku/path.hpp"
#include "segmenter/open_tagger.hpp"

namespace MeCab {

// The dictionary is looked up again on every call: nothing is cached.
Tagger* createTagger() {
  return ZQ::Dialog::segmenter::openTagger(ku::path::findData("dialog", "data/ipadic/", false));
}

}  // namespace MeCab
