#include "segmenter/resource_file.hpp"

#include <gtest/gtest.h>

#include "testing/files.hpp"

namespace ZQ::Dialog::segmenter {
namespace {

TEST(ResourcePaths, DicrcGetsOneSlash) {
  struct Row {
    const char* dir;
    const char* rcfile;
    const char* dicdir;
    const char* dicrc;
  };
  const Row rows[] = {
      {"/d/ipadic/", "/d/ipadic/", "/d/ipadic/", "/d/ipadic/dicrc"},
      {"/d/ipadic", "/d/ipadic", "/d/ipadic", "/d/ipadic/dicrc"},
      {"", "MECAB_DEFAULT_RC", ".", "./dicrc"},  // MeCab's only fallback
      {"ipadic", "ipadic", "ipadic", "ipadic/dicrc"},
      {"/d/$(rcpath)/x/", "/d/$(rcpath)/x/", "/d//d/$(rcpath)/x/x/",
       "/d//d/$(rcpath)/x/x/dicrc"},  // expanded once, by the resource file's directory
  };
  for (const Row& row : rows) {
    const ResourcePaths paths = resourcePaths(row.dir);
    EXPECT_EQ(paths.rcfile, row.rcfile) << row.dir;
    EXPECT_EQ(paths.dicdir, row.dicdir) << row.dir;
    EXPECT_EQ(paths.dicrc, row.dicrc) << row.dir;
  }
}

TEST(DictionaryList, SplitsLikeMeCab) {
  struct Row {
    const char* list;
    std::vector<std::string> names;
  };
  const Row rows[] = {
      {"", {}},
      {"/a.dic", {"/a.dic"}},
      {"/a.dic,/b.dic", {"/a.dic", "/b.dic"}},
      {" /a.dic,\t/b.dic ", {"/a.dic", "/b.dic "}},  // only leading blanks are skipped
      {"/a.dic,", {"/a.dic"}},
      {"/a.dic,,/b.dic", {"/a.dic", "", "/b.dic"}},
      {"\"/a,b.dic\",/c.dic", {"/a,b.dic", "/c.dic"}},
      {"\"say \"\"x\"\".dic\"", {"say \"x\".dic"}},
  };
  for (const Row& row : rows) EXPECT_EQ(splitDictionaryList(row.list), row.names) << row.list;
}

TEST(ResourceSettings, FirstSettingWinsAndBlanksAroundEqualsGo) {
  dialog_test::TempDir dir;
  const std::string first = dir.write("first", "; comment\n# comment\n\nuserdic =  /u.dic \n");
  const std::string second = dir.write("second", "userdic=/other.dic\ntheta=0.5\n");
  ResourceSettings settings;
  ASSERT_TRUE(settings.load(first));
  ASSERT_TRUE(settings.load(second));
  EXPECT_EQ(settings.value("userdic"), "/u.dic ");
  EXPECT_EQ(settings.value("theta"), "0.5");
  EXPECT_EQ(settings.value("missing"), "");
}

TEST(ResourceSettings, RejectsWhatMeCabRejects) {
  dialog_test::TempDir dir;
  ResourceSettings settings;
  EXPECT_FALSE(settings.load(dir.path() + "/none"));
  EXPECT_FALSE(settings.load(dir.write("broken", "a = b\nno equals sign\n")));
  EXPECT_TRUE(settings.load(dir.path()));  // a directory opens and yields no lines
}

}  // namespace
}  // namespace ZQ::Dialog::segmenter
