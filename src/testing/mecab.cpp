#include "testing/mecab.hpp"
#include <unistd.h>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <sstream>
#include <stdexcept>
#include <vector>
#include "testing/files.hpp"

namespace ZQ::Dialog::testing {

namespace fs = std::filesystem;

namespace {

const char kDicrc[] =
    "cost-factor = 800\nbos-feature = BOS/EOS,*,*,*,*,*,*,*,*\nconfig-charset = UTF-8\n";
// One context id (one cell of connection cost), three character classes.
const char kMatrix[] = "1 1\n0 0 0\n";
const char kCharDef[] =
    "DEFAULT 0 1 0\nSPACE 0 1 0\nKANJI 0 0 2\nHIRAGANA 1 1 0\n0x0020 SPACE\n"
    "0x4E00..0x9FFF KANJI\n0x3041..0x309F HIRAGANA\n";
using Sources = std::vector<std::pair<std::string, std::string>>;

// A UniDic entry: 29 feature fields, the lexeme 8th and the written base form
// 11th; the accent type (25th) quoted, as UniDic writes one holding a comma.
std::string unidicEntry(const std::string& surface, const std::string& pos,
                        const std::string& lexeme, const std::string& base) {
  return surface + ",0,0,100," + pos + ",*,*,*,*,*," + lexeme + "," + surface + ",*," + base +
         ",*,和,*,*,*,*,*,*,和,*,*,*,*,\"0,2\",*,*,1,1\n";
}

Sources sources(Layout layout) {
  Sources files = {{"matrix.def", kMatrix}, {"char.def", kCharDef}, {"dicrc", kDicrc}};
  switch (layout) {
    case Layout::kIpadic:
      files.insert(files.end(),
                   {{"unk.def",
                     "DEFAULT,0,0,1000,名詞,一般,*,*,*,*,*\nSPACE,0,0,1000,記号,空白,*,*,*,*,*\n"
                     "KANJI,0,0,1000,名詞,一般,*,*,*,*,*\nHIRAGANA,0,0,1000,名詞,一般,*,*,*,*,*\n"},
                    {"words.csv",
                     "猫,0,0,100,名詞,一般,*,*,*,*,猫,ネコ,ネコ\n"
                     "が,0,0,100,助詞,格助詞,一般,*,*,*,が,ガ,ガ\n"
                     "走っ,0,0,100,動詞,自立,*,*,五段・ラ行,連用タ接続,走る,ハシッ,ハシッ\n"
                     "た,0,0,100,助動詞,*,*,*,特殊・タ,基本形,た,タ,タ\n"
                     "ネコ,0,0,100,名詞,一般,*,*,*,*,*,ネコ,ネコ\n"},
                    {"user.csv", "犬,0,0,100,名詞,一般,*,*,*,*,犬,イヌ,イヌ\n"}});
      break;
    case Layout::kUnidic:
      files.insert(files.end(),
                   {{"unk.def",
                     "DEFAULT,0,0,1000,名詞,普通名詞,一般,*,*,*\nSPACE,0,0,1000,空白,*,*,*,*,*\n"
                     "KANJI,0,0,1000,名詞,普通名詞,一般,*,*,*\n"
                     "HIRAGANA,0,0,1000,名詞,普通名詞,一般,*,*,*\n"},
                    {"words.csv",
                     unidicEntry("走っ", "動詞,一般", "走る", "走る") +
                         unidicEntry("し", "動詞,非自立可能", "為る", "する") +
                         unidicEntry("ウイルス", "名詞,普通名詞", "ウイルス-virus", "ウイルス") +
                         unidicEntry("東京", "名詞,固有名詞", "トウキョウ", "東京") +
                         unidicEntry("，", "補助記号,読点", "、", "，") +
                         unidicEntry("２", "名詞,数詞", "二", "２") +
                         unidicEntry("CD", "名詞,普通名詞", "シーディー-CD", "CD") +
                         unidicEntry("猫", "名詞,普通名詞", "*", "猫")}});
      break;
    case Layout::kOther:  // 7 fields, as in a dictionary of yet another tradition
      files.insert(files.end(),
                   {{"unk.def",
                     "DEFAULT,0,0,1000,名詞,*,*,*,*,*,*\nSPACE,0,0,1000,特殊,空白,*,*,*,*,*\n"
                     "KANJI,0,0,1000,名詞,*,*,*,*,*,*\nHIRAGANA,0,0,1000,名詞,*,*,*,*,*,*\n"},
                    {"words.csv", "猫,0,0,100,名詞,普通名詞,*,*,猫,ねこ,代表表記:猫\n"}});
      break;
  }
  return files;
}

// The directory holding the compiled dictionary of `layout` in "system/" (and
// for ipadic "user.dic"), made once per program by mecab-dict-index (its
// chatter in source/log).
const std::string& compiled(Layout layout) {
  static const TempDir root;
  static std::map<Layout, std::string> made;
  std::string& path = made[layout];
  if (!path.empty()) return path;
  if (const std::string why = missing(Need::kDictionaryIndexer); !why.empty())
    throw std::runtime_error(why);
  const std::string dir = root.path() + "/" + std::to_string(static_cast<int>(layout));
  for (const auto& [name, text] : sources(layout)) writeFile(dir + "/source/" + name, text);
  fs::create_directories(dir + "/system");
  std::vector<std::string> runs = {"-o ../system"};
  if (layout == Layout::kIpadic) runs.push_back("-u ../user.dic user.csv");
  for (const std::string& arguments : runs) {
    const std::string command =
        "cd '" + dir + "/source' && '" DIALOG_MECAB_DICT_INDEX "' -d . -f UTF-8 -t UTF-8 " +
        arguments + " >>log 2>&1";
    if (std::system(command.c_str()) != 0)
      throw std::runtime_error("mecab-dict-index failed: " + readFile(dir + "/source/log"));
  }
  writeFile(dir + "/system/dicrc", kDicrc);
  return path = dir;
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

void installDictionary(const std::string& dir, Layout layout) {
  fs::create_directories(dir);
  for (const char* name : {"dicrc", "unk.dic", "char.bin", "sys.dic", "matrix.bin"})
    fs::copy_file(compiled(layout) + "/system/" + name, dir + "/" + name,
                  fs::copy_options::overwrite_existing);
}

void installUserDictionary(const std::string& path) {
  fs::copy_file(compiled(Layout::kIpadic) + "/user.dic", path,
                fs::copy_options::overwrite_existing);
}

}  // namespace ZQ::Dialog::testing
