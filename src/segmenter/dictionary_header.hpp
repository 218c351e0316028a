#ifndef DIALOG_STEMMER_SEGMENTER_DICTIONARY_HEADER_HPP
#define DIALOG_STEMMER_SEGMENTER_DICTIONARY_HEADER_HPP

#include <cstdint>
#include <string>
#include <vector>

namespace ZQ::Dialog::segmenter {

// The only dictionary format version MeCab opens.
inline constexpr std::uint32_t kDictionaryVersion = 102;

// The fixed header of a compiled MeCab dictionary file ("unk.dic", "sys.dic",
// user dictionaries): ten 32-bit little-endian fields, then 32 bytes of charset name.
struct DictionaryHeader {
  std::uint32_t magic = 0;
  std::uint32_t version = 0;
  std::uint32_t type = 0;  // 0 system, 1 user, 2 unknown-word
  std::uint32_t lexiconSize = 0;
  std::uint32_t leftSize = 0;
  std::uint32_t rightSize = 0;
  std::uint32_t arraySize = 0;
  std::uint32_t tokenSize = 0;
  std::uint32_t featureSize = 0;
  std::uint32_t reserved = 0;
  std::string charset;
};

// What MeCab finds when it opens one dictionary file.
struct DictionaryCheck {
  // The file opened and passed the size and magic checks, so MeCab reads its
  // version (and announces it) before judging the rest.
  bool headerRead = false;
  // Also the right version, and the sections fill the file exactly.
  bool intact = false;
  DictionaryHeader header;
};

DictionaryCheck checkDictionary(const std::string& path);

// Whether "char.bin" at `path` has the size its category count calls for.
bool checkCharProperty(const std::string& path);

// The versions MeCab announces while its analyser opens the dictionaries of
// `dicdir` and the user dictionaries, in its order ("unk.dic", "sys.dic", each
// user dictionary), ending with the first file that it rejects.
std::vector<std::uint32_t> announcedVersions(const std::string& dicdir,
                                             const std::vector<std::string>& userDictionaries);

}  // namespace ZQ::Dialog::segmenter

#endif  // DIALOG_STEMMER_SEGMENTER_DICTIONARY_HEADER_HPP
