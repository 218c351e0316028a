// The segmenter's readings of MeCab's files: the input as a resource file, a
// dictionary, "char.bin" and a userdic list.
#include <algorithm>

#include "invariant.hpp"
#include "segmenter/dictionary_header.hpp"
#include "segmenter/resource_file.hpp"
#include "testing/files.hpp"

namespace seg = ZQ::Dialog::segmenter;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > dialog_test::kMaxFuzzInput) return 0;
  const std::string input(reinterpret_cast<const char*>(data), size);
  static const dialog_test::TempDir dir;
  const std::string path = dir.write("file", input);
  seg::ResourceSettings once, twice;  // a key set by the first file keeps its value
  if (once.load(path) != twice.load(path)) dialog_test::violated("read differently twice");
  const std::string first = once.value("userdic");
  if (once.load(path), once.value("userdic") != first) dialog_test::violated("value replaced");
  if (seg::splitDictionaryList(input).size() > 1u + std::count(input.begin(), input.end(), ','))
    dialog_test::violated("more dictionaries than list items");
  const seg::DictionaryCheck check = seg::checkDictionary(path);
  if ((check.intact && (!check.headerRead || check.header.version != seg::kDictionaryVersion)) ||
      (check.headerRead && size < 100))
    dialog_test::violated("intact without a header of version 102, or read from a short file");
  seg::checkCharProperty(path);
  return 0;
}
