#include "testing/requirements.hpp"

#include <unistd.h>

#include <clocale>
#include <filesystem>
#include <string>

namespace dialog_test {

std::string missing(Need need) {
  std::error_code error;
  switch (need) {
    case Need::kIpaDictionary:
      if (std::filesystem::is_regular_file(DIALOG_IPADIC_DIR "/sys.dic", error)) return "";
      return "no IPA dictionary in " DIALOG_IPADIC_DIR " (install mecab-ipadic-utf8)";
    case Need::kDictionaryIndexer:
      if (*DIALOG_MECAB_DICT_INDEX) return "";
      return "mecab-dict-index was not found at configure time (install mecab-utils)";
    case Need::kTreebanks:
      if (std::filesystem::is_directory(DIALOG_UD_DIR, error)) return "";
      return "no UD development sets in " DIALOG_UD_DIR;
    case Need::kLatin1Locale: {
      // Probing switches the locale; the previous one comes back at once.
      const std::string previous = std::setlocale(LC_ALL, nullptr);
      const bool there = std::setlocale(LC_ALL, "fr_FR.ISO-8859-1") != nullptr;
      std::setlocale(LC_ALL, previous.c_str());
      if (there) return "";
      return "locale fr_FR.ISO-8859-1 not generated (localedef -i fr_FR -f ISO-8859-1)";
    }
    case Need::kUnprivileged:
      if (geteuid() != 0) return "";
      return "running as root: file modes do not stop reading";
  }
  return "unknown need";
}

}  // namespace dialog_test
