#include <mecab.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <utility>
#include <vector>

#include "corpus/morphemes.hpp"
#include "ku/path.hpp"

namespace ZQ::Dialog::corpus {

namespace {

constexpr std::size_t kIpadicFields = 9;
constexpr std::size_t kUnidicFields = 29;
// This many entries, read from the start of the system dictionary's features,
// must all have one layout's field count.
constexpr std::size_t kEntriesLooked = 64;
constexpr std::size_t kFeatureBytesRead = std::size_t{1} << 16;
// MeCab's compiled dictionary: ten 32-bit little-endian fields (the sizes of
// the double array, the tokens and the features are the 7th to 9th), a charset
// name of 32 bytes, then those three sections.
constexpr std::size_t kHeaderBytes = 10 * 4 + 32;
constexpr std::size_t kArraySizeAt = 24;

std::uint32_t littleEndian32(const char* bytes) {
  std::uint32_t value = 0;
  for (int i = 3; i >= 0; --i) value = value << 8 | static_cast<unsigned char>(bytes[i]);
  return value;
}

// Fields of one feature record by MeCab's CSV rules: a field that starts with a
// double quote runs to the closing one ("" inside stands for a quote).
std::size_t countFields(std::string_view feature) {
  std::size_t fields = 1;
  bool quoted = false;
  for (std::size_t i = 0; i < feature.size(); ++i) {
    const char c = feature[i];
    if (quoted) {
      if (c == '"' && i + 1 < feature.size() && feature[i + 1] == '"')
        ++i;
      else
        quoted = c != '"';
    } else if (c == '"' && (i == 0 || feature[i - 1] == ',')) {
      quoted = true;
    } else if (c == ',') {
      ++fields;
    }
  }
  return fields;
}

// The field counts of the first entries of the system dictionary `path`, whose
// features are NUL-terminated in entry order; none when it cannot be read.
std::vector<std::size_t> entryFieldCounts(const std::string& path) {
  std::vector<std::size_t> counts;
  std::ifstream file(path, std::ios::binary);
  char header[kHeaderBytes];
  if (!file.read(header, sizeof header)) return counts;
  const std::uint32_t arraySize = littleEndian32(header + kArraySizeAt);
  const std::uint32_t tokenSize = littleEndian32(header + kArraySizeAt + 4);
  const std::uint32_t featureSize = littleEndian32(header + kArraySizeAt + 8);
  file.seekg(static_cast<std::streamoff>(kHeaderBytes + std::uint64_t{arraySize} + tokenSize));
  std::string features(std::min<std::size_t>(featureSize, kFeatureBytesRead), '\0');
  if (!file.read(features.data(), static_cast<std::streamsize>(features.size()))) return counts;
  std::string_view rest = features;
  for (std::size_t end; counts.size() < kEntriesLooked && (end = rest.find('\0')) != rest.npos;
       rest.remove_prefix(end + 1))
    counts.push_back(countFields(rest.substr(0, end)));
  return counts;
}

// Why the model's entries fit neither layout, or "" when they fit `layout`.
std::string recogniseLayout(MeCab::Model& model, DictionaryLayout& layout) {
  const MeCab::DictionaryInfo* system = model.dictionary_info();
  while (system && system->type != MECAB_SYS_DIC) system = system->next;
  const std::vector<std::size_t> counts =
      entryFieldCounts(system && system->filename ? system->filename : "");
  if (counts.empty()) return "its system dictionary's entries cannot be read";
  for (const std::size_t count : counts)
    if (count != counts.front())
      return "its entries mix " + std::to_string(counts.front()) + " and " + std::to_string(count) +
             " feature fields";
  if (counts.front() == kIpadicFields) {
    layout = DictionaryLayout::kIpadic;
  } else if (counts.front() == kUnidicFields) {
    layout = DictionaryLayout::kUnidic;
  } else {
    return "its entries have " + std::to_string(counts.front()) +
           " feature fields, not 9 (ipadic layout) or 29 (UniDic layout)";
  }
  return "";
}

}  // namespace

bool MorphemeDictionary::knownName(std::string_view name) {
  return name == "ipadic" || name == "unidic";
}

MorphemeDictionary::MorphemeDictionary(std::string name, std::string directory, MeCab::Model* model,
                                       DictionaryLayout layout)
    : name_(std::move(name)), directory_(std::move(directory)), model_(model), layout_(layout) {}

MorphemeDictionary::~MorphemeDictionary() { MeCab::deleteModel(model_); }

std::shared_ptr<const MorphemeDictionary> MorphemeDictionary::open(const std::string& name,
                                                                   std::string& error) {
  if (!knownName(name)) {
    error = "unknown dictionary '" + name + "': expected ipadic or unidic";
    return nullptr;
  }
  const std::string relative = "data/" + name + "/";
  const std::string dir = ku::path::findData("dialog", relative, false);
  if (dir.empty()) {
    error = "dictionary " + name + " not found: no data \"" + relative +
            "\" of package \"dialog\" (see --check --lang jpj)";
    return nullptr;
  }
  // The directory is both the resource file and the dictionary directory, as
  // for the library's tagger: MeCab then reads nothing else.
  std::string words[] = {"dialog-stem", "--rcfile=" + dir, "--dicdir=" + dir};
  char* argv[] = {words[0].data(), words[1].data(), words[2].data(), nullptr};
  MeCab::Model* model = MeCab::createModel(3, argv);
  if (!model) {
    std::string why = MeCab::getLastError();
    std::replace(why.begin(), why.end(), '\n', ' ');  // one line, whatever MeCab says
    error = "dictionary " + name + " at " + dir + " does not open: " + why;
    return nullptr;
  }
  DictionaryLayout layout = DictionaryLayout::kIpadic;
  if (const std::string why = recogniseLayout(*model, layout); !why.empty()) {
    MeCab::deleteModel(model);
    error = "dictionary " + name + " at " + dir + " is of neither layout: " + why;
    return nullptr;
  }
  return std::shared_ptr<const MorphemeDictionary>(
      new MorphemeDictionary(name, dir, model, layout));
}

}  // namespace ZQ::Dialog::corpus
