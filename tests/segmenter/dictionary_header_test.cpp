#include "segmenter/dictionary_header.hpp"

#include <gtest/gtest.h>

#include "testing/files.hpp"
#include "testing/mecab.hpp"

namespace ZQ::Dialog::segmenter {
namespace {

using Versions = std::vector<std::uint32_t>;

void put32(std::string& bytes, std::size_t offset, std::uint32_t value) {
  for (int i = 0; i < 4; ++i) bytes[offset + i] = static_cast<char>(value >> (8 * i));
}

// A dictionary file: a 72-byte header, then sections of 8 + 8 + `feature`
// bytes and `extra` more; the magic number matches the file's size.
std::string dictionary(std::uint32_t type, std::uint32_t feature = 12, int extra = 0,
                       std::uint32_t version = kDictionaryVersion) {
  std::string bytes(72 + 16 + feature + extra, '\0');
  const std::uint32_t fields[] = {0, version, type, 0, 1, 1, 8, 8, feature};
  for (std::size_t i = 0; i < std::size(fields); ++i) put32(bytes, i * 4, fields[i]);
  put32(bytes, 0, static_cast<std::uint32_t>(bytes.size()) ^ 0xef718f77u);
  bytes.replace(40, 5, "UTF-8");
  return bytes;
}

TEST(DictionaryHeader, SizeMagicVersionAndSections) {
  struct Row {
    const char* name;
    std::string bytes;
    bool read, intact;
  };
  const Row rows[] = {
      {"100 bytes, the least MeCab reads", dictionary(1), true, true},
      {"99 bytes", dictionary(1, 11), false, false},
      {"magic of another size", dictionary(1, 13).substr(0, 100), false, false},
      {"a byte beyond the sections", dictionary(1, 12, 1), true, false},
      {"a byte short of the sections", dictionary(1, 20, -1), true, false},
      {"version 101", dictionary(1, 12, 0, 101), true, false},
      {"empty", "", false, false},
  };
  dialog_test::TempDir dir;
  for (const Row& row : rows) {
    const DictionaryCheck check = checkDictionary(dir.write("d", row.bytes));
    EXPECT_EQ(check.headerRead, row.read) << row.name;
    EXPECT_EQ(check.intact, row.intact) << row.name;
    EXPECT_TRUE(!row.read || check.header.charset == "UTF-8") << row.name;
  }
  EXPECT_FALSE(checkDictionary(dir.path()).headerRead);  // a directory
}

// The versions MeCab announces over unk.dic, char.bin, sys.dic and two user
// dictionaries, each row spoiling one field of one file (offset -1: one byte more).
TEST(DictionaryHeader, AnnouncedVersionsStopAtTheFirstRejectedFile) {
  struct Row {
    const char* file;
    int offset;
    std::uint32_t value;
    const char* charset;
    Versions versions;
  };
  const Versions all{102, 102, 102, 102};
  const Row rows[] = {
      {"", 0, 0, nullptr, all},
      {"unk.dic", 4, 101, nullptr, {101}},
      {"unk.dic", 0, 0, nullptr, {}},  // magic
      {"unk.dic", 32, 13, nullptr, {102}},
      {"char.bin", -1, 0, nullptr, {102}},
      {"char.bin", 0, 2, nullptr, {102}},  // category count
      {"sys.dic", 4, 101, nullptr, {102, 101}},
      {"sys.dic", 8, 1, nullptr, {102, 102}},  // a user dictionary
      {"sys.dic", 24, 7, nullptr, {102, 102}},
      {"sys.dic", -1, 0, nullptr, {102}},
      {"u1.dic", 4, 101, nullptr, {102, 102, 101}},
      {"u1.dic", 8, 0, nullptr, {102, 102, 102}},   // a system dictionary
      {"u1.dic", 16, 2, nullptr, {102, 102, 102}},  // left context size
      {"u1.dic", 20, 2, nullptr, {102, 102, 102}},  // right context size
      {"u1.dic", 28, 9, nullptr, {102, 102, 102}},
      {"u2.dic", 8, 2, nullptr, all},
      {"u1.dic", 0, 0, "utf_8", all},  // the same encoding, spelled otherwise
      {"u1.dic", 0, 0, "EUC-JP", {102, 102, 102}},
      {"u1.dic", 0, 0, "SJIS", {102, 102, 102}},
      {"u1.dic", 0, 0, "UTF-16", {102, 102, 102}},
      {"sys.dic", 0, 0, "ascii", {102, 102, 102}},
  };
  for (const Row& row : rows) {
    dialog_test::TempDir dir;
    dir.write("unk.dic", dictionary(2));
    std::string charBin(4 + 32 + 4 * 0xffff, '\0');
    put32(charBin, 0, 1);
    dir.write("char.bin", charBin);
    dir.write("sys.dic", dictionary(0));
    const std::vector<std::string> users{dir.write("u1.dic", dictionary(1)),
                                         dir.write("u2.dic", dictionary(1))};
    const std::string path = dir.path() + "/" + row.file;
    if (row.charset) {
      std::string bytes = dialog_test::readFile(path);
      bytes.replace(40, 32, std::string(row.charset) + std::string(32, '\0'), 0, 32);
      dialog_test::writeFile(path, bytes);
    } else if (row.offset < 0) {
      dialog_test::writeFile(path, dialog_test::readFile(path) + "x");
    } else if (*row.file) {
      dialog_test::patchField(path, row.offset, row.value);
    }
    EXPECT_EQ(announcedVersions(dir.path(), users), row.versions)
        << row.file << " " << row.offset << " " << (row.charset ? row.charset : "");
  }
}

}  // namespace
}  // namespace ZQ::Dialog::segmenter
