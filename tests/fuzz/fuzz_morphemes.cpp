// The morpheme path: a StemmerPrivate with a Snowball handle and selector 0,
// whose tagger is opened on the system's IPA dictionary with MeCab's own API.
#include <mecab.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "fuzz_support.hpp"
#include "stemmer/stemmer_p.hpp"

namespace {

constexpr char kIpadic[] = "/var/lib/mecab/dic/ipadic-utf8";

ZQ::Dialog::StemmerPrivate& morphemes() {
  static ZQ::Dialog::StemmerPrivate* const impl = [] {
    dialog_fuzz::quietLog();
    auto* created = new ZQ::Dialog::StemmerPrivate("xx");
    std::string rc = std::string(kIpadic) + "/dicrc";
    std::string dir = kIpadic;
    std::string name = "mecab", r = "-r", d = "-d";
    char* argv[] = {name.data(), r.data(), rc.data(), d.data(), dir.data()};
    created->tagger = MeCab::createTagger(5, argv);
    if (!created->tagger) {
      std::fprintf(stderr, "cannot open %s: %s\n", kIpadic, MeCab::getTaggerError());
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
  if (stems.front() != "kept") dialog_fuzz::fail("output not appended to");
  return 0;
}
