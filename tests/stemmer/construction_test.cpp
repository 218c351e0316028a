#include <dirent.h>

#include <gtest/gtest.h>

#include "stemmer/stemmer.hpp"
#include "stemmer/stemmer_p.hpp"
#include "testing/files.hpp"
#include "testing/log_capture.hpp"

using ZQ::Dialog::Stemmer;
using Stems = std::vector<std::string>;

namespace {

Stems sentence(Stemmer& stemmer, const std::string& text) {
  Stems stems;
  stemmer.stem_sentence(text, stems);
  return stems;
}

std::string word(Stemmer& stemmer, std::string text) {
  std::string result;
  stemmer.stemword(text, result);
  return result;
}

TEST(Construction, EachCodeReadsItsOwnLemmaFile) {
  dialog_test::DataRoot data;
  data.write("lemmatizer/enu/lemma", "went\ngo\n");
  data.write("lemmatizer/frf/lemma", "yeux\nœil\n");
  dialog_test::LogCapture log("LibStemmer", 4);
  Stemmer en("enu"), fr("frf"), ja("jpj");
  EXPECT_EQ(en.language, "enu");
  EXPECT_EQ(word(en, "went"), "go");
  EXPECT_EQ(word(en, "yeux"), "yeux");
  EXPECT_EQ(word(fr, "yeux"), "œil");
  EXPECT_EQ(word(fr, "went"), "went");
  EXPECT_EQ(word(ja, "went"), "went");
  EXPECT_EQ(sentence(ja, "went yeux"), Stems{"went yeux"});
  EXPECT_TRUE(log.records.empty());  // supported codes log nothing
}

TEST(Construction, OtherCodesLogOnceAndKeepTheirInput) {
  dialog_test::DataRoot data;
  data.write("lemmatizer/enu/lemma", "went\ngo\n");
  for (const char* code : {"ENU", "en", "enu ", "", "Frf", "jpj\n"}) {
    dialog_test::LogCapture log("LibStemmer", 2);
    Stemmer stemmer(code);
    EXPECT_EQ(stemmer.language, code);
    EXPECT_EQ(word(stemmer, "went"), "went") << code;
    EXPECT_EQ(sentence(stemmer, "went away"), Stems{"went away"}) << code;
    ASSERT_EQ(log.records.size(), 1u) << code;
    EXPECT_EQ(log.records[0].level, 2);
    EXPECT_EQ(log.records[0].message, "Unsupported language");
  }
  dialog_test::LogCapture log("LibStemmer", 1);  // below the error level: no record
  Stemmer quiet("xx");
  EXPECT_TRUE(log.records.empty());
}

std::size_t openDescriptors() {
  std::size_t count = 0;
  DIR* dir = opendir("/proc/self/fd");
  while (readdir(dir)) ++count;
  closedir(dir);
  return count;
}

TEST(Construction, StemmersGiveTheirLemmaFileBack) {
  dialog_test::DataRoot data;
  data.write("lemmatizer/enu/lemma", "went\ngo\n");
  dialog_test::LogCapture log("LibStemmer", 6);
  const std::size_t before = openDescriptors();
  for (int i = 0; i < 1000; ++i) Stemmer("enu");
  EXPECT_EQ(openDescriptors(), before);
  data.write("lemmatizer/enu/lemma", "");
  Stemmer fresh("enu");
  EXPECT_EQ(word(fresh, "went"), "went");  // each stemmer reads the file afresh
  EXPECT_TRUE(log.records.empty());  // a missing or empty file is not reported
}

TEST(Assignment, IsShallowAndSharesTheImplementation) {
  dialog_test::DataRoot data;
  auto* a = new Stemmer("enu");
  auto* b = new Stemmer("frf");
  ZQ::Dialog::StemmerPrivate* formerA = a->impl;
  *a = *a;
  EXPECT_EQ(a->impl, formerA);
  *a = *b;
  EXPECT_EQ(a->impl, b->impl);
  EXPECT_EQ(a->language, "frf");
  Stemmer copy(*b);
  EXPECT_EQ(copy.impl, b->impl);
  copy.impl = nullptr;
  delete formerA;  // the former implementation was left alone
  a->impl = nullptr;  // only one of the sharing handles may be destroyed
  delete a;
  delete b;
}

}  // namespace
