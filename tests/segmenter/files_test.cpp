#include "testing/files.hpp"
#include <gtest/gtest.h>
#include "segmenter/dictionary_header.hpp"
#include "segmenter/resource_file.hpp"

namespace ZQ::Dialog::segmenter {
namespace {

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
  return bytes.replace(40, 5, "UTF-8");
}

TEST(DictionaryHeader, SizeMagicVersionAndSections) {
  const std::tuple<std::string, bool, bool> rows[] = {
      // bytes, header read, intact
      {dictionary(1), true, true},  // 100 bytes, the least MeCab reads
      {dictionary(1, 11), false, false},
      {dictionary(1, 13).substr(0, 100), false, false},  // magic of another size
      {dictionary(1, 12, 1), true, false},               // a byte beyond the sections
      {dictionary(1, 20, -1), true, false},              // a byte short of them
      {dictionary(1, 12, 0, 101), true, false},
      {"", false, false},
  };
  ZQ::Dialog::testing::TempDir dir;
  for (const auto& [bytes, read, intact] : rows) {
    const DictionaryCheck check = checkDictionary(dir.write("d", bytes));
    EXPECT_EQ(check.headerRead, read) << bytes.size();
    EXPECT_EQ(check.intact, intact) << bytes.size();
    EXPECT_TRUE(!read || check.header.charset == "UTF-8") << bytes.size();
  }
  EXPECT_FALSE(checkDictionary(dir.path()).headerRead);  // a directory
}
// The versions MeCab announces over unk.dic, char.bin, sys.dic and two user dictionaries,
// a row spoiling one field of one file (offset -1: one byte more), or its charset.
TEST(DictionaryHeader, AnnouncedVersionsStopAtTheFirstRejectedFile) {
  using Versions = std::vector<std::uint32_t>;
  const Versions all{102, 102, 102, 102}, three{102, 102, 102};
  const std::tuple<const char*, int, std::uint32_t, const char*, Versions> rows[] = {
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
      {"u1.dic", 8, 0, nullptr, three},   // a system dictionary
      {"u1.dic", 16, 2, nullptr, three},  // left context size
      {"u1.dic", 20, 2, nullptr, three},  // right context size
      {"u1.dic", 28, 9, nullptr, three},
      {"u2.dic", 8, 2, nullptr, all},
      {"u1.dic", 0, 0, "utf_8", all},  // the same encoding, spelled otherwise
      {"u1.dic", 0, 0, "EUC-JP", three},
      {"u1.dic", 0, 0, "SJIS", three},
      {"u1.dic", 0, 0, "UTF-16", three},
      {"sys.dic", 0, 0, "ascii", three},
  };
  for (const auto& [file, offset, value, charset, versions] : rows) {
    ZQ::Dialog::testing::TempDir dir;
    dir.write("unk.dic", dictionary(2));
    std::string charBin(4 + 32 + 4 * 0xffff, '\0');
    put32(charBin, 0, 1);
    dir.write("char.bin", charBin);
    dir.write("sys.dic", dictionary(0));
    const std::vector<std::string> users{dir.write("u1.dic", dictionary(1)),
                                         dir.write("u2.dic", dictionary(1))};
    const std::string path = dir.path() + "/" + file;
    std::string bytes = ZQ::Dialog::testing::readFile(path);
    if (charset) bytes.replace(40, 32, std::string(charset) + std::string(32, '\0'), 0, 32);
    if (offset < 0) bytes += 'x';
    if (*file && !charset && offset >= 0) put32(bytes, offset, value);
    if (*file) ZQ::Dialog::testing::writeFile(path, bytes);
    EXPECT_EQ(announcedVersions(dir.path(), users), versions) << file << offset << charset;
  }
}

TEST(ResourceFiles, PathsListsAndSettingsAsMeCabReadsThem) {
  const char* const paths[][4] = {
      // dir, rcfile, dicdir, dicrc
      {"/d/ipadic/", "/d/ipadic/", "/d/ipadic/", "/d/ipadic/dicrc"},
      {"/d/ipadic", "/d/ipadic", "/d/ipadic", "/d/ipadic/dicrc"},
      {"", "MECAB_DEFAULT_RC", ".", "./dicrc"},  // MeCab's only fallback
      {"ipadic", "ipadic", "ipadic", "ipadic/dicrc"},
      {"/d/$(rcpath)/x/", "/d/$(rcpath)/x/", "/d//d/$(rcpath)/x/x/", "/d//d/$(rcpath)/x/x/dicrc"},
  };
  for (const auto& row : paths) {
    const ResourcePaths p = resourcePaths(row[0]);
    EXPECT_EQ(p.rcfile + "|" + p.dicdir + "|" + p.dicrc,
              std::string(row[1]) + "|" + row[2] + "|" + row[3]);
  }
  const std::pair<const char*, std::vector<std::string>> lists[] = {
      {"", {}},
      {"/a.dic,/b.dic", {"/a.dic", "/b.dic"}},
      {" /a.dic,\t/b.dic ", {"/a.dic", "/b.dic "}},  // only leading blanks are skipped
      {"/a.dic,", {"/a.dic"}},
      {"/a.dic,,/b.dic", {"/a.dic", "", "/b.dic"}},
      {"\"/a,b.dic\" x,/c.dic", {"/a,b.dic", "/c.dic"}},  // after the quote, up to the comma: gone
      {"\"say \"\"x\"\".dic\"", {"say \"x\".dic"}},
      {"\"open", {"open"}},
  };
  for (const auto& [list, names] : lists) EXPECT_EQ(splitDictionaryList(list), names) << list;
  ZQ::Dialog::testing::TempDir dir;
  ResourceSettings settings;
  ASSERT_TRUE(settings.load(dir.write("1", "; c\n# c\n\n  userdic  =  /u.dic \nempty=\n")));
  ASSERT_TRUE(settings.load(dir.write("2", "userdic=/other.dic\ntheta=0.5\n")));
  EXPECT_EQ(settings.value("  userdic"), "/u.dic ");  // the first setting wins
  EXPECT_EQ(settings.value("theta") + settings.value("empty") + settings.value("none"), "0.5");
  EXPECT_FALSE(settings.load(dir.path() + "/none"));
  EXPECT_FALSE(settings.load(dir.write("3", "a = b\nno equals sign\n")));
  EXPECT_TRUE(settings.load(dir.path()));  // a directory opens and yields no lines
}

}  // namespace
}  // namespace ZQ::Dialog::segmenter
