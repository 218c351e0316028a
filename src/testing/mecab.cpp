#include "testing/mecab.hpp"

#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <stdexcept>

#include "testing/files.hpp"
#include "testing/requirements.hpp"

namespace dialog_test {

namespace fs = std::filesystem;

namespace {

const char kDicrc[] =
    "; resource file of the test dictionary\n"
    "cost-factor = 800\n"
    "bos-feature = BOS/EOS,*,*,*,*,*,*,*,*\n"
    "config-charset = UTF-8\n";
// One context id, so one cell of connection cost.
const char kMatrix[] = "1 1\n0 0 0\n";
const char kCharDef[] =
    "DEFAULT 0 1 0\n"
    "SPACE 0 1 0\n"
    "KANJI 0 0 2\n"
    "HIRAGANA 1 1 0\n"
    "0x0020 SPACE\n"
    "0x4E00..0x9FFF KANJI\n"
    "0x3041..0x309F HIRAGANA\n";
const char kUnkDef[] =
    "DEFAULT,0,0,1000,名詞,一般,*,*,*,*,*\n"
    "SPACE,0,0,1000,記号,空白,*,*,*,*,*\n"
    "KANJI,0,0,1000,名詞,一般,*,*,*,*,*\n"
    "HIRAGANA,0,0,1000,名詞,一般,*,*,*,*,*\n";
const char kWords[] =
    "猫,0,0,100,名詞,一般,*,*,*,*,猫,ネコ,ネコ\n"
    "が,0,0,100,助詞,格助詞,一般,*,*,*,が,ガ,ガ\n"
    "走っ,0,0,100,動詞,自立,*,*,五段・ラ行,連用タ接続,走る,ハシッ,ハシッ\n"
    "た,0,0,100,助動詞,*,*,*,特殊・タ,基本形,た,タ,タ\n";
const char kUserWords[] = "犬,0,0,100,名詞,一般,*,*,*,*,犬,イヌ,イヌ\n";

// Runs mecab-dict-index with `arguments` in `dir`, its chatter kept in a log.
void runIndexer(const std::string& arguments, const std::string& dir) {
  const std::string log = dir + "/indexer.log";
  const std::string command =
      "cd '" + dir + "' && '" DIALOG_MECAB_DICT_INDEX "' " + arguments + " >>indexer.log 2>&1";
  if (std::system(command.c_str()) != 0)
    throw std::runtime_error("mecab-dict-index failed; see " + log + ":\n" + readFile(log));
}

// The dictionaries, compiled once per test program.
class Compiled {
 public:
  Compiled() {
    if (const std::string why = missing(Need::kDictionaryIndexer); !why.empty())
      throw std::runtime_error(why);
    const std::string source = root_.write("source/dicrc", kDicrc);
    const std::string sourceDir = fs::path(source).parent_path().string();
    root_.write("source/matrix.def", kMatrix);
    root_.write("source/char.def", kCharDef);
    root_.write("source/unk.def", kUnkDef);
    root_.write("source/words.csv", kWords);
    root_.write("source/user.csv", kUserWords);
    system_ = root_.path() + "/system";
    fs::create_directories(system_);
    runIndexer("-d . -o '" + system_ + "' -f UTF-8 -t UTF-8", sourceDir);
    writeFile(system_ + "/dicrc", kDicrc);
    user_ = root_.path() + "/user.dic";
    runIndexer("-d . -u '" + user_ + "' -f UTF-8 -t UTF-8 user.csv", sourceDir);
  }
  const std::string& system() const { return system_; }
  const std::string& user() const { return user_; }

 private:
  TempDir root_;
  std::string system_;
  std::string user_;
};

const Compiled& compiled() {
  static const Compiled dictionaries;
  return dictionaries;
}

}  // namespace

std::string ipadicDir() { return DIALOG_IPADIC_DIR; }

TaggerPtr openMecab(const std::string& dir) {
  std::string program = "mecab", rc = "--rcfile=" + dir + "/dicrc", dic = "--dicdir=" + dir;
  char* argv[] = {program.data(), rc.data(), dic.data(), nullptr};
  return TaggerPtr(MeCab::createTagger(3, argv));
}

void installDictionary(const std::string& dir) {
  fs::create_directories(dir);
  for (const char* name : {"dicrc", "unk.dic", "char.bin", "sys.dic", "matrix.bin"}) {
    fs::copy_file(compiled().system() + "/" + name, dir + "/" + name,
                  fs::copy_options::overwrite_existing);
  }
}

void installUserDictionary(const std::string& path) {
  fs::copy_file(compiled().user(), path, fs::copy_options::overwrite_existing);
}

void patchField(const std::string& path, std::size_t offset, unsigned value) {
  std::string bytes = readFile(path);
  for (int i = 0; i < 4; ++i) bytes.at(offset + i) = static_cast<char>((value >> (8 * i)) & 0xff);
  writeFile(path, bytes);
}

std::string mecabError(const std::string& rcfile, const std::string& dicdir) {
  std::string program = "test", rc = "--rcfile=" + rcfile, dic = "--dicdir=" + dicdir;
  char* argv[] = {program.data(), rc.data(), dic.data(), nullptr};
  MeCab::Model* model = MeCab::createModel(3, argv);
  MeCab::deleteModel(model);
  return MeCab::getLastError();
}

std::vector<std::string> baseForms(MeCab::Tagger& tagger, const char* sentence) {
  std::vector<std::string> forms;
  for (const MeCab::Node* node = tagger.parseToNode(sentence); node != nullptr; node = node->next) {
    if (node->stat == MECAB_BOS_NODE || node->stat == MECAB_EOS_NODE) continue;
    std::vector<std::string> fields;
    std::stringstream feature(node->feature);
    for (std::string field; std::getline(feature, field, ',');) fields.push_back(field);
    forms.push_back(fields.size() > 6 ? fields[6] : std::string());
  }
  return forms;
}

}  // namespace dialog_test
