#include <gtest/gtest.h>

#include <vector>

#include "stemmer/stemmer.hpp"
#include "stemmer/stemmer_p.hpp"
#include "testing/files.hpp"
#include "testing/log_capture.hpp"

using ZQ::Dialog::Stemmer;

namespace {

using Log = dialog_test::LogCapture;

TEST(Construction, LanguageTable) {
  dialog_test::DataRoot data;
  data.write("lemmatizer/enu/lemma", "went\ngo\n");
  data.write("lemmatizer/frf/lemma", "chevaux\ncheval\nyeux\nœil\n");
  Log log("LibStemmer", 4);

  Stemmer en("enu");
  EXPECT_EQ(en.language, "enu");
  EXPECT_EQ(en.impl->lang, 1);
  EXPECT_NE(en.impl->stemmer, nullptr);
  EXPECT_EQ(en.impl->tagger, nullptr);
  EXPECT_EQ(en.impl->lemDic.size(), 1u);

  Stemmer fr("frf");
  EXPECT_EQ(fr.impl->lang, 2);
  EXPECT_NE(fr.impl->stemmer, nullptr);
  EXPECT_EQ(fr.impl->lemDic.size(), 2u);  // the French file, not the English one

  Stemmer ja("jpj");
  EXPECT_EQ(ja.impl->lang, 0);
  EXPECT_EQ(ja.impl->stemmer, nullptr);
  EXPECT_TRUE(ja.impl->lemDic.empty());
  EXPECT_TRUE(log.records.empty());  // supported codes log nothing
}

TEST(Construction, CodesMatchOnlyExactly) {
  dialog_test::DataRoot data;
  data.write("lemmatizer/enu/lemma", "went\ngo\n");
  for (const char* code : {"ENU", "en", "enu ", " enu", "", "Frf", "jpj\n", "english"}) {
    Log log("LibStemmer", 4);
    Stemmer stemmer(code);
    EXPECT_EQ(stemmer.language, code);
    EXPECT_EQ(stemmer.impl->lang, 0) << '"' << code << '"';
    EXPECT_EQ(stemmer.impl->stemmer, nullptr);
    EXPECT_EQ(stemmer.impl->tagger, nullptr);
    EXPECT_TRUE(stemmer.impl->lemDic.empty());
    ASSERT_EQ(log.records.size(), 1u) << '"' << code << '"';
    const ku::log::Record& r = log.records[0];
    EXPECT_EQ(r.level, 2);
    EXPECT_EQ(r.message, "Unsupported language");  // the code is not appended
    EXPECT_EQ(r.function, "StemmerPrivate");
    EXPECT_EQ(r.file, "");
    EXPECT_EQ(r.line, 0);
  }
}

TEST(Construction, UnsupportedRecordFollowsCategoryLevel) {
  for (int level : {0, 1, 2, 6}) {
    Log log("LibStemmer", level);
    Stemmer stemmer("xx");
    EXPECT_EQ(log.records.size(), level >= 2 ? 1u : 0u) << level;  // only from error level up
  }
}

TEST(Construction, MissingLemmaFileGivesEmptyDictionaryAndWorkingStemmer) {
  dialog_test::DataRoot data;  // no files at all
  Log log("LibStemmer", 6);
  Stemmer en("enu");
  EXPECT_EQ(en.impl->lang, 1);
  EXPECT_NE(en.impl->stemmer, nullptr);
  EXPECT_TRUE(en.impl->lemDic.empty());
  EXPECT_TRUE(log.records.empty());  // a missing file is not reported
}

TEST(Assignment, IsShallowAndSharesTheImplementation) {
  dialog_test::DataRoot data;
  Log quiet("LibStemmer", 0);
  auto* a = new Stemmer("enu");
  auto* b = new Stemmer("frf");
  ZQ::Dialog::StemmerPrivate* formerA = a->impl;
  *a = *b;
  EXPECT_EQ(a->impl, b->impl);
  EXPECT_EQ(a->language, "frf");
  // The former implementation is still alive and usable.
  EXPECT_EQ(formerA->lang, 1);
  delete formerA;
  // Only one of the sharing handles may be destroyed.
  a->impl = nullptr;
  delete a;
  EXPECT_EQ(b->impl->lang, 2);
  delete b;
}

TEST(Assignment, SelfAssignmentAndCopiesChangeNothing) {
  dialog_test::DataRoot data;
  Log quiet("LibStemmer", 0);
  Stemmer a("enu");
  ZQ::Dialog::StemmerPrivate* impl = a.impl;
  Stemmer& alias = a;
  a = alias;
  EXPECT_EQ(a.impl, impl);
  EXPECT_EQ(a.language, "enu");
  Stemmer* copy = new Stemmer(a);  // a copy shares like assignment
  EXPECT_EQ(copy->impl, impl);
  copy->impl = nullptr;
  delete copy;
}

}  // namespace
