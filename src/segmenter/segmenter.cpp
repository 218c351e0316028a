#include "segmenter/segmenter.hpp"

namespace MeCab {

Tagger* createTagger() { return nullptr; }

}  // namespace MeCab
