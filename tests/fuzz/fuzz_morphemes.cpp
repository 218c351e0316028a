// The morpheme path: a StemmerPrivate with a Snowball handle and selector 0,
// its tagger opened on the system's IPA dictionary with MeCab's own API.
#include "invariant.hpp"
#include "ku/log.hpp"
#include "stemmer/stemmer_p.hpp"
#include "testing/mecab.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > 4096) return 0;  // MeCab's lattice grows with the sentence
  static ZQ::Dialog::StemmerPrivate* const impl = [] {
    ku::log::addCategory("LibStemmer")->level = 0;
    auto* created = new ZQ::Dialog::StemmerPrivate("xx");
    created->tagger = ZQ::Dialog::testing::openMecab(ZQ::Dialog::testing::ipadicDir()).release();
    ZQ::Dialog::testing::check(created->tagger, "no IPA dictionary (mecab-ipadic-utf8)");
    created->stemmer = sb_stemmer_new("english", "UTF_8");
    return created;
  }();
  std::vector<std::string> stems{"kept"};
  impl->stem_sentence(std::string(reinterpret_cast<const char*>(data), size), stems);
  ZQ::Dialog::testing::check(stems.front() == "kept", "output not appended to");
  return 0;
}
