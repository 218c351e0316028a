// The morpheme path: a StemmerPrivate with a Snowball handle and selector 0,
// whose tagger is opened on the system's IPA dictionary with MeCab's own API.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "ku/log.hpp"
#include "stemmer/stemmer_p.hpp"
#include "invariant.hpp"
#include "testing/mecab.hpp"
#include "testing/requirements.hpp"

namespace {

ZQ::Dialog::StemmerPrivate& morphemes() {
  static ZQ::Dialog::StemmerPrivate* const impl = [] {
    ku::log::addCategory("LibStemmer")->level = 0;  // no "Unsupported language" noise
    auto* created = new ZQ::Dialog::StemmerPrivate("xx");
    created->tagger = dialog_test::openMecab(dialog_test::ipadicDir()).release();
    if (!created->tagger) {
      std::fprintf(stderr, "%s\n", dialog_test::missing(dialog_test::Need::kIpaDictionary).c_str());
      std::exit(1);
    }
    created->stemmer = sb_stemmer_new("english", "UTF_8");
    return created;
  }();
  return *impl;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // MeCab's lattice grows with the sentence; short inputs find the same paths.
  if (size > 4096) return 0;
  const std::string sentence(reinterpret_cast<const char*>(data), size);
  std::vector<std::string> stems{"kept"};
  morphemes().stem_sentence(sentence, stems);
  if (stems.front() != "kept") dialog_test::violated("output not appended to");
  return 0;
}
