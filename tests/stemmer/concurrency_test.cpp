#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "stemmer/stemmer.hpp"
#include "support/test_support.hpp"

namespace {

// Many threads share one English stemmer, each with its own strings, and must
// see exactly what a single thread sees.
TEST(Concurrency, SharedEnglishStemmerGivesSingleThreadResults) {
  dialog_test::DataRoot data;
  std::string lemmas;
  for (int i = 0; i < 500; ++i)
    lemmas += "form" + std::to_string(i) + "\nlemma" + std::to_string(i) + "\n";
  data.write("lemmatizer/enu/lemma", lemmas);
  ZQ::Dialog::Stemmer shared("enu");

  std::vector<std::string> words;
  for (int i = 0; i < 1000; i += 3) words.push_back("form" + std::to_string(i));
  const std::string sentence = "form1 form2's  other'form3 x";

  std::vector<std::string> expectedWords;
  for (std::string word : words) {
    std::string result;
    shared.stemword(word, result);
    expectedWords.push_back(result);
  }
  std::vector<std::string> expectedSentence;
  shared.stem_sentence(sentence, expectedSentence);

  constexpr int kThreads = 4;
  std::vector<int> mismatches(kThreads, 0);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      for (int round = 0; round < 20; ++round) {
        for (size_t i = 0; i < words.size(); ++i) {
          std::string word = words[i];
          std::string result;
          shared.stemword(word, result);
          if (result != expectedWords[i]) ++mismatches[t];
        }
        std::vector<std::string> stems;
        shared.stem_sentence(sentence, stems);
        if (stems != expectedSentence) ++mismatches[t];
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(mismatches, std::vector<int>(kThreads, 0));
  EXPECT_EQ(expectedSentence,
            (std::vector<std::string>{"lemma1", "lemma2", "s", "", "other", "lemma3", "x"}));
}

}  // namespace
