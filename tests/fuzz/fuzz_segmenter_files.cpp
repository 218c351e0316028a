// The segmenter's own reading of MeCab's files: the input is written as a
// resource file, a dictionary file and "char.bin", and is also read as a
// userdic list. Checks what each reader promises about its result.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "segmenter/dictionary_header.hpp"
#include "segmenter/resource_file.hpp"
#include "testing/files.hpp"
#include "invariant.hpp"

namespace seg = ZQ::Dialog::segmenter;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > dialog_test::kMaxFuzzInput) return 0;
  const std::string input(reinterpret_cast<const char*>(data), size);
  static const dialog_test::TempDir dir;
  const std::string path = dir.write("file", input);

  // A resource file read twice gives the same settings; a key set by the first
  // file keeps its value when a second file sets it again.
  seg::ResourceSettings once, twice;
  const bool loaded = once.load(path);
  if (twice.load(path) != loaded) dialog_test::violated("resource file read differently twice");
  for (const char* key : {"dicdir", "userdic", "cost-factor", ""}) {
    if (once.value(key) != twice.value(key)) dialog_test::violated("resource values differ");
    const std::string first = once.value(key);
    once.load(path);
    if (once.value(key) != first) dialog_test::violated("a later file replaced a value");
  }

  // A userdic list never yields more names than it has commas plus one.
  const std::vector<std::string> names = seg::splitDictionaryList(input);
  std::size_t commas = 0;
  for (const char c : input) commas += c == ',';
  if (names.size() > commas + 1) dialog_test::violated("more dictionaries than list items");

  // A dictionary that is intact was read, has the one version MeCab opens,
  // and is at least as long as its fixed header.
  const seg::DictionaryCheck check = seg::checkDictionary(path);
  if (check.intact && (!check.headerRead || check.header.version != seg::kDictionaryVersion))
    dialog_test::violated("intact dictionary without a readable header of version 102");
  if (check.headerRead && size < 72) dialog_test::violated("header read from a short file");
  seg::checkCharProperty(path);
  return 0;
}
