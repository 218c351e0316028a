#include <gtest/gtest.h>
#include <sys/stat.h>
#include <filesystem>
#include <sstream>
#include "ku/log.hpp"
#include "stemmer/stemmer_p.hpp"
#include "testing/files.hpp"
#include "testing/mecab.hpp"

using ZQ::Dialog::Stemmer;
using Dictionary = std::map<QString, QString>;

namespace {

std::string word(Stemmer& stemmer, std::string text) {
  std::string result;
  stemmer.stemword(text, result);
  return result;
}

TEST(Construction, EachCodeReadsItsOwnLemmaFileAndGivesItBack) {
  dialog_test::DataRoot data;
  data.write("lemmatizer/enu/lemma", "went\ngo\n");
  data.write("lemmatizer/frf/lemma", "yeux\nœil\n");
  ku::log::Category* const category = ku::log::addCategory("LibStemmer");
  category->level = 6;  // records go to standard error, one a line, as no handler is set
  testing::internal::CaptureStderr();
  Stemmer en("enu"), fr("frf"), ja("jpj");
  EXPECT_EQ(en.language + word(en, "went") + word(en, "yeux"), "enugoyeux");
  EXPECT_EQ(word(fr, "yeux") + word(fr, "went") + word(ja, "went"), "œilwentwent");
  const auto descriptors = [] {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
  };
  const auto before = descriptors();
  for (int i = 0; i < 1000; ++i) Stemmer("enu");
  EXPECT_EQ(descriptors(), before);                       // each gave its lemma file back
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");  // supported codes log nothing
  for (const char* code : {"ENU", "en", "enu ", "", "Frf", "jpj\n", "xx"}) {
    category->level = *code == 'x' ? 1 : 2;  // below the error level: no record
    testing::internal::CaptureStderr();
    Stemmer stemmer(code);
    EXPECT_EQ(stemmer.language + word(stemmer, "went"), code + std::string("went"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              *code == 'x' ? "" : "LibStemmer: error: Unsupported language\n")
        << code;
  }
  category->level = 4;
}

TEST(Construction, AssignmentIsShallowAndSharesTheImplementation) {
  dialog_test::DataRoot data;
  auto* a = new Stemmer("enu");
  auto* b = new Stemmer("frf");
  ZQ::Dialog::StemmerPrivate* formerA = a->impl;
  *a = *a;
  EXPECT_EQ(a->impl, formerA);
  *a = *b;
  EXPECT_EQ(a->impl, b->impl);
  EXPECT_EQ(a->language, "frf");
  Stemmer copy(*b);  // a copy shares too
  EXPECT_EQ(copy.impl, b->impl);
  copy.impl = nullptr;
  delete formerA;     // the former implementation was left alone
  a->impl = nullptr;  // only one of the sharing handles may be destroyed
  delete a;
  delete b;
}

Dictionary load(const std::string& code = "enu") {
  return ZQ::Dialog::StemmerPrivate("jpj").getLemDic(code);
}

QString q(const char* utf8) { return QString::fromUtf8(utf8); }

// The map of the plain readLine loop: pairs of lines, the last pair for a form
// winning, an odd last line or a blank line making an empty lemma; CRs, marks,
// NULs, bad or cut sequences and the 16 KiB decoding steps as QTextStream has them.
TEST(LemmaDictionary, SameMapAsPlainReadLineLoop) {
  const std::string step(16384, 'a');
  std::vector<std::string> files;
  std::istringstream list(  // "|" between files
      "went\ngo\nété\nêtre\n|went\ngo|went\ngo\nchildren\n|ran\nrun\nran\nruns\n|a\n\nb\nc\n|"
      "  Went\ngo \n||went\r\ngo\r\n|we\rnt\ngo\r\r\n|\r|went\ngo\n\r\r|\357\273\277|\357\273\277"
      "\357\273\277a\nb\n|went\ngo\n\xE2\x82|\xC3(\n\xFF\xFE\n\xED\xA0\x80\n\xF4\x90\x80\x80\n|"
      "\xE2|"
      "b\n1\na\n2\nb\n3\nc\n4\na\n5\n|\n\n\na\n\n|\n|");
  for (std::string file; std::getline(list, file, '|');) files.push_back(file);
  files.insert(files.end(),
               {std::string("\xFF\xFEw\0\n\0g\0\n\0", 10), std::string("we\0nt\ng\0o\n\0\n", 12),
                std::string(300000, 'x') + "\ny\n", step.substr(1) + "\n\r",
                step.substr(3) + "\n1\n\xC3", step.substr(1) + "\nb\n",
                step.substr(1) + "\xC3\xA9\n\xC3\xA9\n", step.substr(2) + "\n\r\nx\n"});
  for (const std::string& contents : files) {
    dialog_test::DataRoot data;
    const Dictionary plain =
        dialog_test::plainLemmaLoad(data.write("lemmatizer/enu/lemma", contents));
    const Dictionary library = load();
    EXPECT_EQ(library, plain) << contents.substr(0, 40);
    // Null and empty strings compare equal; the loaders must agree on which.
    auto l = library.begin();
    for (auto p = plain.begin(); l != library.end() && p != plain.end(); ++l, ++p)
      EXPECT_EQ(l->second.isNull(), p->second.isNull()) << contents.substr(0, 40);
  }
  EXPECT_EQ(dialog_test::plainLemmaLoad(dialog_test::DataRoot().write("x", "a\n\nb\nc\nb")),
            (Dictionary{{q("a"), q("")}, {q("b"), q("")}}));  // the loop itself
}

TEST(LemmaDictionary, FileByCodeInPrefixOrUserDataHomeElseEmpty) {
  {
    dialog_test::DataRoot data;
    data.write("lemmatizer/frf/lemma", "yeux\nœil\n");
    EXPECT_TRUE(load().empty());  // no English file
    data.write("lemmatizer/enu/lemma", "went\ngo\n");
    EXPECT_EQ(load("frf"), (Dictionary{{q("yeux"), q("œil")}}));
    for (const char* code : {"enu", "jpj", "", "FRF"})  // every other code reads English
      EXPECT_EQ(load(code), (Dictionary{{q("went"), q("go")}})) << code;
    const dialog_test::DataRoot user;  // an empty prefix; the file in the user's data home
    user.write("lemmatizer/enu/lemma", "été\nêtre\n", true);
    EXPECT_EQ(load(), (Dictionary{{q("été"), q("être")}}));
  }
  dialog_test::DataRoot data;
  const std::string path = data.write("lemmatizer/enu/lemma/inner", "x");  // a directory
  const std::string lemma = std::filesystem::path(path).parent_path();
  EXPECT_TRUE(load().empty());
  std::filesystem::remove_all(lemma);
  ASSERT_EQ(mkfifo(lemma.c_str(), 0600), 0);  // would block a reader
  EXPECT_TRUE(load().empty());
  std::filesystem::remove(lemma);
  if (dialog_test::missing(dialog_test::Need::kUnprivileged).empty()) {
    ASSERT_EQ(chmod(data.write("lemmatizer/enu/lemma", "went\ngo\n").c_str(), 0), 0);
    EXPECT_TRUE(load().empty());
    std::filesystem::remove(lemma);
  }
  data.write("lemmatizer/enu/lemma", std::string(50u << 20, 'w'));  // one 50 MB line
  const Dictionary map = load();
  ASSERT_EQ(map.size(), 1U);  // one word form, with an empty lemma
  EXPECT_EQ(map.begin()->first.size(), 50 << 20);
  EXPECT_TRUE(map.begin()->second.isEmpty());
}

}  // namespace
