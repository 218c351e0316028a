// The input is an English lemma file: it is written where the data lookup finds
// it, read through the library's loader, compared entry by entry with the plain
// readLine loop's map, and every entry is looked up again.
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

#include "ku/log.hpp"
#include "stemmer/stemmer_p.hpp"
#include "testing/files.hpp"
#include "invariant.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > dialog_test::kMaxFuzzInput) return 0;
  static const dialog_test::DataRoot root;
  const std::string path =
      root.write("lemmatizer/enu/lemma", std::string(reinterpret_cast<const char*>(data), size));

  // One implementation for the whole run: "xx" creates no Snowball handle.
  static ZQ::Dialog::StemmerPrivate* const impl = [] {
    ku::log::addCategory("LibStemmer")->level = 0;  // no "Unsupported language" noise
    auto* created = new ZQ::Dialog::StemmerPrivate("xx");
    created->lang = 1;
    return created;
  }();
  impl->lemDic = impl->getLemDic("enu");
  const std::map<QString, QString> plain = dialog_test::plainLemmaLoad(path);
  if (impl->lemDic != plain) dialog_test::violated("map differs from the plain readLine loop's");
  for (auto l = impl->lemDic.cbegin(), p = plain.cbegin(); l != impl->lemDic.end(); ++l, ++p)
    if (l->second.isNull() != p->second.isNull()) dialog_test::violated("null lemma differs");

  for (const auto& [form, lemma] : impl->lemDic) {
    QString word = form;
    QString result;
    impl->stemmword(word, result);
    // The lookup key is the form after a UTF-8 round trip, which drops a
    // leading U+FEFF and ends at U+0000: it finds its own entry or the form.
    const QString key = QString::fromUtf8(form.toUtf8().constData());
    const auto found = impl->lemDic.find(key);
    const QString& expected = found != impl->lemDic.end() ? found->second : form;
    if (result != expected) dialog_test::violated("lookup differs from the dictionary");
    if (key == form && result != lemma) dialog_test::violated("entry not found again");
    if (word != result) dialog_test::violated("result differs from word");
  }
  return 0;
}
