// The segmenter's readings of MeCab's files: the input as a resource file, a
// dictionary, "char.bin" and a userdic list.
#include <algorithm>
#include "invariant.hpp"
#include "segmenter/dictionary_header.hpp"
#include "segmenter/resource_file.hpp"
#include "testing/files.hpp"

namespace seg = ZQ::Dialog::segmenter;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > ZQ::Dialog::testing::kMaxFuzzInput) return 0;
  const std::string input(reinterpret_cast<const char*>(data), size);
  static const ZQ::Dialog::testing::TempDir dir;
  const std::string path = dir.write("file", input);
  seg::ResourceSettings once, twice;  // a key set by the first file keeps its value
  ZQ::Dialog::testing::check(once.load(path) == twice.load(path), "read differently twice");
  const std::string first = once.value("userdic");
  ZQ::Dialog::testing::check((once.load(path), once.value("userdic") == first), "value replaced");
  ZQ::Dialog::testing::check(
      seg::splitDictionaryList(input).size() <= 1u + std::count(input.begin(), input.end(), ','),
      "more dictionaries than list items");
  const seg::DictionaryCheck dic = seg::checkDictionary(path);
  ZQ::Dialog::testing::check(!dic.intact || dic.header.version == seg::kDictionaryVersion,
                             "intact dictionary of another version");
  ZQ::Dialog::testing::check(!dic.headerRead || size >= 100, "header read from a short file");
  seg::checkCharProperty(path);
  return 0;
}
