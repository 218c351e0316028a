#include "testing/mecab.hpp"
#include <unistd.h>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <stdexcept>
#include "testing/files.hpp"

namespace ZQ::Dialog::testing {

namespace fs = std::filesystem;

namespace {

const char kDicrc[] =
    "cost-factor = 800\nbos-feature = BOS/EOS,*,*,*,*,*,*,*,*\nconfig-charset = UTF-8\n";
// One context id (one cell of connection cost), three character classes.
const std::pair<const char*, const char*> kSources[] = {
    {"matrix.def", "1 1\n0 0 0\n"},
    {"char.def",
     "DEFAULT 0 1 0\nSPACE 0 1 0\nKANJI 0 0 2\nHIRAGANA 1 1 0\n0x0020 SPACE\n"
     "0x4E00..0x9FFF KANJI\n0x3041..0x309F HIRAGANA\n"},
    {"unk.def",
     "DEFAULT,0,0,1000,名詞,一般,*,*,*,*,*\nSPACE,0,0,1000,記号,空白,*,*,*,*,*\n"
     "KANJI,0,0,1000,名詞,一般,*,*,*,*,*\nHIRAGANA,0,0,1000,名詞,一般,*,*,*,*,*\n"},
    {"words.csv",
     "猫,0,0,100,名詞,一般,*,*,*,*,猫,ネコ,ネコ\n"
     "が,0,0,100,助詞,格助詞,一般,*,*,*,が,ガ,ガ\n"
     "走っ,0,0,100,動詞,自立,*,*,五段・ラ行,連用タ接続,走る,ハシッ,ハシッ\n"
     "た,0,0,100,助動詞,*,*,*,特殊・タ,基本形,た,タ,タ\n"},
    {"user.csv", "犬,0,0,100,名詞,一般,*,*,*,*,犬,イヌ,イヌ\n"},
    {"dicrc", kDicrc}};

// The directory holding the compiled "system/" and "user.dic", made once per
// program by mecab-dict-index (its chatter in source/log).
const std::string& compiled() {
  static const TempDir root;
  static const std::string path = [] {
    if (const std::string why = missing(Need::kDictionaryIndexer); !why.empty())
      throw std::runtime_error(why);
    for (const auto& [name, text] : kSources) root.write("source/" + std::string(name), text);
    fs::create_directories(root.path() + "/system");
    for (const char* arguments : {"-o ../system", "-u ../user.dic user.csv"}) {
      const std::string command = "cd '" + root.path() +
                                  "/source' && '" DIALOG_MECAB_DICT_INDEX
                                  "' -d . -f UTF-8 -t UTF-8 " +
                                  arguments + " >>log 2>&1";
      if (std::system(command.c_str()) != 0)
        throw std::runtime_error("mecab-dict-index failed: " +
                                 readFile(root.path() + "/source/log"));
    }
    writeFile(root.path() + "/system/dicrc", kDicrc);
    return root.path();
  }();
  return path;
}
// MeCab's own option words for `rcfile` and `dicdir`.
struct MecabArguments {
  MecabArguments(const std::string& rcfile, const std::string& dicdir)
      : rc("--rcfile=" + rcfile), dic("--dicdir=" + dicdir) {}
  std::string program = "mecab", rc, dic;
  char* argv[4] = {program.data(), rc.data(), dic.data(), nullptr};
};

}  // namespace

std::string missing(Need need) {
  std::error_code error;
  switch (need) {
    case Need::kIpaDictionary:
      if (fs::is_regular_file(DIALOG_IPADIC_DIR "/sys.dic", error)) return "";
      return "no IPA dictionary in " DIALOG_IPADIC_DIR " (install mecab-ipadic-utf8)";
    case Need::kDictionaryIndexer:
      if (*DIALOG_MECAB_DICT_INDEX) return "";
      return "mecab-dict-index was not found at configure time (install mecab-utils)";
    case Need::kUnprivileged:
      return geteuid() != 0 ? "" : "running as root: file modes do not stop reading";
  }
  return "unknown need";
}

std::string ipadicDir() { return DIALOG_IPADIC_DIR; }

TaggerPtr openMecab(const std::string& dir) {
  MecabArguments arguments(dir + "/dicrc", dir);
  return TaggerPtr(MeCab::createTagger(3, arguments.argv));
}

std::string mecabError(const std::string& rcfile, const std::string& dicdir) {
  MecabArguments arguments(rcfile, dicdir);
  MeCab::deleteModel(MeCab::createModel(3, arguments.argv));
  return MeCab::getLastError();
}

void installDictionary(const std::string& dir) {
  fs::create_directories(dir);
  for (const char* name : {"dicrc", "unk.dic", "char.bin", "sys.dic", "matrix.bin"})
    fs::copy_file(compiled() + "/system/" + name, dir + "/" + name,
                  fs::copy_options::overwrite_existing);
}

void installUserDictionary(const std::string& path) {
  fs::copy_file(compiled() + "/user.dic", path, fs::copy_options::overwrite_existing);
}

}  // namespace ZQ::Dialog::testing
