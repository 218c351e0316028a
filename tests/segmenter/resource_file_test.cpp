#include "segmenter/resource_file.hpp"
#include <gtest/gtest.h>
#include "testing/files.hpp"

namespace ZQ::Dialog::segmenter {
namespace {

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
  dialog_test::TempDir dir;
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
