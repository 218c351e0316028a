#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "stemmer/stemmer.hpp"
#include "stemmer/stemmer_p.hpp"
#include "testing/files.hpp"

namespace {

using Stems = std::vector<std::string>;

// Threads released together share one stemmer per path, each with its own
// strings, and must see what one thread sees: the regex split, the space
// tokens (no Snowball handle) and the whole sentence. Run under ThreadSanitizer.
TEST(Concurrency, SharedStemmersGiveSingleThreadResults) {
  dialog_test::DataRoot data;
  std::string lemmas;
  for (int i = 0; i < 500; ++i)
    lemmas += "form" + std::to_string(i) + "\nlemma" + std::to_string(i) + "\n";
  data.write("lemmatizer/enu/lemma", lemmas);
  ZQ::Dialog::Stemmer english("enu"), spaced("enu"), japanese("jpj");
  sb_stemmer* const handle = spaced.impl->stemmer;
  spaced.impl->stemmer = nullptr;
  const std::string sentence = "form1 form2's  other'form3\tx ";
  const std::vector<std::pair<ZQ::Dialog::Stemmer*, Stems>> paths = {
      {&english, {"lemma1", "lemma2", "s", "", "other", "form3\tx", ""}},
      {&spaced, {"form1", "form2's", "other'form3\tx"}},
      {&japanese, {sentence}},
  };
  constexpr int kThreads = 4;
  std::atomic<int> waiting{kThreads};
  std::vector<int> mismatches(kThreads, 0);
  std::vector<std::thread> pool;
  for (int t = 0; t < kThreads; ++t) {
    pool.emplace_back([&, t] {
      waiting.fetch_sub(1);
      while (waiting.load() > 0) std::this_thread::yield();
      for (int round = 0; round < 20; ++round) {
        for (const auto& [stemmer, expected] : paths) {
          Stems stems;
          stemmer->stem_sentence(sentence, stems);
          mismatches[t] += stems != expected;
        }
        for (int i = 0; i < 1000; i += 3) {
          std::string word = "form" + std::to_string(i), result;
          english.stemword(word, result);
          mismatches[t] += result != (i < 500 ? "lemma" + std::to_string(i) : word);
        }
      }
    });
  }
  for (auto& thread : pool) thread.join();
  EXPECT_EQ(mismatches, std::vector<int>(kThreads, 0));
  spaced.impl->stemmer = handle;
}

}  // namespace
