#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <libstemmer.h>

#include "stemmer/stemmer.hpp"
#include "stemmer/stemmer_p.hpp"
#include "testing/files.hpp"

namespace {

using Stems = std::vector<std::string>;

// Runs `work(thread)` on `threads` threads released together, so that their
// first calls overlap; returns each thread's count of mismatches.
std::vector<int> runTogether(int threads, const std::function<int(int)>& work) {
  std::atomic<int> waiting{threads};
  std::vector<int> mismatches(threads, 0);
  std::vector<std::thread> pool;
  for (int t = 0; t < threads; ++t) {
    pool.emplace_back([&, t] {
      waiting.fetch_sub(1);
      while (waiting.load() > 0) std::this_thread::yield();
      mismatches[t] = work(t);
    });
  }
  for (auto& thread : pool) thread.join();
  return mismatches;
}

// Threads released together share one stemmer per path, each thread with its
// own strings, so that even their first calls overlap, and must see exactly
// what a single thread sees: the regex split, the space tokens (an English
// stemmer without its Snowball handle) and the whole sentence (Japanese and
// unsupported codes).
TEST(Concurrency, SharedStemmersGiveSingleThreadResults) {
  dialog_test::DataRoot data;
  std::string lemmas;
  for (int i = 0; i < 500; ++i)
    lemmas += "form" + std::to_string(i) + "\nlemma" + std::to_string(i) + "\n";
  data.write("lemmatizer/enu/lemma", lemmas);
  ZQ::Dialog::Stemmer english("enu"), spaced("enu"), japanese("jpj"), unsupported("xx");
  sb_stemmer* const handle = spaced.impl->stemmer;
  spaced.impl->stemmer = nullptr;
  const std::string sentence = "form1 form2's  other'form3\tx ";
  const std::vector<std::pair<ZQ::Dialog::Stemmer*, Stems>> paths = {
      {&english, {"lemma1", "lemma2", "s", "", "other", "form3\tx", ""}},
      {&spaced, {"form1", "form2's", "other'form3\tx"}},
      {&japanese, {sentence}},
      {&unsupported, {sentence}},
  };

  const auto mismatches = runTogether(4, [&](int) {
    int wrong = 0;
    for (int round = 0; round < 20; ++round) {
      for (const auto& [stemmer, expected] : paths) {
        Stems stems;
        stemmer->stem_sentence(sentence, stems);
        wrong += stems != expected;
      }
      for (int i = 0; i < 1000; i += 3) {
        std::string word = "form" + std::to_string(i), result;
        english.stemword(word, result);
        wrong += result != (i < 500 ? "lemma" + std::to_string(i) : word);
        japanese.stemword(word, result);
        wrong += result != word;
      }
    }
    return wrong;
  });
  EXPECT_EQ(mismatches, std::vector<int>(4, 0));
  spaced.impl->stemmer = handle;
}

// stem_stream on several threads at once, one Snowball handle each.
TEST(Concurrency, StemStreamWithOneHandlePerThread) {
  std::string lines = "Running\nJUMPS\nconnections\n";
  const auto mismatches = runTogether(4, [&](int) {
    sb_stemmer* handle = sb_stemmer_new("english", "UTF_8");
    int wrong = 0;
    for (int round = 0; round < 50; ++round) {
      std::string bytes = lines;
      FILE* in = fmemopen(bytes.data(), bytes.size(), "r");
      QString out;
      ZQ::Dialog::stem_stream(handle, in, out);
      std::fclose(in);
      wrong += out != QStringLiteral("runjumpconnect");
    }
    sb_stemmer_delete(handle);
    return wrong;
  });
  EXPECT_EQ(mismatches, std::vector<int>(4, 0));
}

}  // namespace
