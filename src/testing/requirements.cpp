#include "testing/requirements.hpp"

#include <unistd.h>

#include <filesystem>

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
    case Need::kUnprivileged:
      if (geteuid() != 0) return "";
      return "running as root: file modes do not stop reading";
  }
  return "unknown need";
}

}  // namespace dialog_test
