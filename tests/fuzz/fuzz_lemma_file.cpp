// The input is an English lemma file, read through the library's loader,
// streamed and in up to 3 parts side by side, and compared entry by entry
// with the plain readLine loop's map.
#include "invariant.hpp"
#include "ku/log.hpp"
#include "stemmer/stemmer_p.hpp"
#include "testing/files.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > ZQ::Dialog::testing::kMaxFuzzInput) return 0;
  static const ZQ::Dialog::testing::DataRoot root;
  const std::string path =
      root.write("lemmatizer/enu/lemma", std::string(reinterpret_cast<const char*>(data), size));
  static ZQ::Dialog::StemmerPrivate* const impl = [] {
    ku::log::addCategory("LibStemmer")->level = 0;  // no "Unsupported language" noise
    return new ZQ::Dialog::StemmerPrivate("xx");    // "xx" creates no Snowball handle
  }();
  const std::map<QString, QString> plain = ZQ::Dialog::testing::plainLemmaLoad(path);
  for (const unsigned threads : {1, 3}) {
    ZQ::Dialog::setLemmaLoadThreads(threads, 1);
    const std::map<QString, QString> map = impl->getLemDic("enu");
    ZQ::Dialog::testing::check(map == plain, "map differs from the plain readLine loop's");
    for (auto l = map.cbegin(), p = plain.cbegin(); l != map.end(); ++l, ++p)
      ZQ::Dialog::testing::check(l->second.isNull() == p->second.isNull(), "null lemma differs");
  }
  return 0;
}
