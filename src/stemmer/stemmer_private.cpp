#include "segmenter/segmenter.hpp"
#include "stemmer/log_category.hpp"
#include "stemmer/stemmer_p.hpp"

namespace ZQ::Dialog {

StemmerPrivate::StemmerPrivate(std::string language)
    : lemDic(), lang(0), stemmer(nullptr), tagger(nullptr) {
  if (language == "enu") {
    stemmer = sb_stemmer_new("english", "UTF_8");
    lemDic = getLemDic(language);
    lang = 1;
  } else if (language == "frf") {
    stemmer = sb_stemmer_new("french", "UTF_8");
    lemDic = getLemDic(language);
    lang = 2;
  } else if (language == "jpj") {
    tagger = MeCab::createTagger();
    lang = 0;
  } else if (logCategory && logCategory->level >= ku::log::Error) {
    ku::log::LogStream(ku::log::Error, "", "StemmerPrivate", 0, logCategory)
        << "Unsupported language";
  }
}

// The Snowball stemmer and the tagger are deliberately not released: a stemmer
// lives as long as the process in the engines that load this library.
StemmerPrivate::~StemmerPrivate() = default;

}  // namespace ZQ::Dialog
