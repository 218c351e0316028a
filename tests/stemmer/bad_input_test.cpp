// Rows of the README's "Bad input" table that no unit's own tests hold: the
// library returns what it documents, does not crash, uses memory in proportion
// to the input, and writes nothing to the caller's outputs that was not asked
// for. The lemma file rows are LemmaDictionary tests.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <libstemmer.h>

#include "stemmer/stemmer.hpp"
#include "stemmer/stemmer_p.hpp"
#include "support/test_support.hpp"

using ZQ::Dialog::Stemmer;
using Stems = std::vector<std::string>;
namespace fs = std::filesystem;

namespace {

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define DIALOG_TEST_SANITIZED 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define DIALOG_TEST_SANITIZED 1
#endif

constexpr char kIpadic[] = "/var/lib/mecab/dic/ipadic-utf8";
constexpr char kLemmas[] = "went\ngo\ndogs\ndog\n";
constexpr std::size_t kMiB = 1024 * 1024;

// The process's peak resident size so far.
std::size_t peakRss() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<std::size_t>(usage.ru_maxrss) * 1024;
}

// Fails when the peak resident size grew by more than `factor` times `inputSize`
// (plus slack for the allocator) since `before`. Sanitizers' shadow memory and
// quarantine make the figure meaningless there, so they skip the check.
void expectMemoryProportional(std::size_t before, std::size_t inputSize, std::size_t factor) {
#ifndef DIALOG_TEST_SANITIZED
  EXPECT_LE(peakRss() - before, factor * inputSize + 32 * kMiB);
#else
  (void)before;
  (void)inputSize;
  (void)factor;
#endif
}

std::string stem(Stemmer& stemmer, std::string word) {
  std::string result = "stale";
  const std::string original = word;
  stemmer.stemword(word, result);
  EXPECT_EQ(word, original);  // the caller's word is never written
  return result;
}

// stem_sentence on a list that already holds one element, which must survive
// in front; returns only what was appended.
Stems sentence(Stemmer& stemmer, const std::string& text) {
  Stems stems{"kept"};
  stemmer.stem_sentence(text, stems);
  EXPECT_FALSE(stems.empty());
  if (stems.empty()) return {};
  EXPECT_EQ(stems.front(), "kept");
  return Stems(stems.begin() + 1, stems.end());
}

class BadInput : public testing::Test {
 protected:
  BadInput() { data_.write("lemmatizer/enu/lemma", kLemmas); }
  dialog_test::DataRoot data_;
};

TEST_F(BadInput, InvalidUtf8) {
  Stemmer en("enu");
  // Decoded with replacement: each bad sequence becomes U+FFFD.
  EXPECT_EQ(stem(en, "caf\xC3"), "caf\xEF\xBF\xBD");
  EXPECT_EQ(stem(en, "\xFF\xFE"), "\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_EQ(sentence(en, "\xC0\xAF went"), (Stems{"\xEF\xBF\xBD\xEF\xBF\xBD", "go"}));
  // The token paths copy bytes and never decode.
  Stemmer xx("xx");
  EXPECT_EQ(sentence(xx, "\xC0\xAF went"), (Stems{"\xC0\xAF went"}));
  en.impl->stemmer = nullptr;
  EXPECT_EQ(sentence(en, "\xC0\xAF went"), (Stems{"\xC0\xAF", "went"}));
}

TEST_F(BadInput, EmbeddedZeroBytes) {
  Stemmer en("enu");
  EXPECT_EQ(stem(en, std::string("went\0dogs", 9)), "go");  // ends at the zero byte
  EXPECT_EQ(stem(en, std::string("\0went", 5)), "");
  EXPECT_EQ(sentence(en, std::string("dogs went\0 dogs", 15)), (Stems{"dog", "go"}));
  Stemmer xx("xx");
  EXPECT_EQ(sentence(xx, std::string("a\0b", 3)), (Stems{std::string("a\0b", 3)}));
}

// A byte-order mark that starts a word (one inside a sentence, or a second one
// at its start) is dropped by the lookup key's UTF-8 round trip like any other
// decoding would drop it; the word itself keeps it when nothing is found.
TEST_F(BadInput, ByteOrderMarkStartingAWord) {
  data_.write("lemmatizer/enu/lemma",
              "went\ngo\n\xEF\xBB\xBF"
              "dogs\nunreachable\n");
  Stemmer en("enu");
  EXPECT_EQ(sentence(en, "dogs \xEF\xBB\xBFwent"), (Stems{"dogs", "go"}));
  EXPECT_EQ(stem(en, "\xEF\xBB\xBF\xEF\xBB\xBFwent"), "go");
  // A form starting with U+FEFF is listed but can never be looked up.
  EXPECT_EQ(sentence(en,
                     "x \xEF\xBB\xBF"
                     "dogs"),
            (Stems{"x",
                   "\xEF\xBB\xBF"
                   "dogs"}));
  QString word = QChar(0xFEFF) + QStringLiteral("dogs");
  QString result;
  en.impl->stemmword(word, result);
  EXPECT_EQ(result, QChar(0xFEFF) + QStringLiteral("dogs"));
}

TEST_F(BadInput, TenMegabyteSentence) {
  // Pieces of 999 bytes and one space: 10 MiB, about ten thousand pieces.
  std::string piece(999, 'x');
  std::string text;
  text.reserve(10 * kMiB);
  while (text.size() + 1000 <= 10 * kMiB) text += piece + ' ';
  text += "went";
  const std::size_t pieces = text.size() / 1000 + 1;

  const std::size_t before = peakRss();
  Stemmer en("enu");
  Stems stems = sentence(en, text);
  ASSERT_EQ(stems.size(), pieces);
  EXPECT_EQ(stems.front(), piece);
  EXPECT_EQ(stems.back(), "go");
  stems.clear();
  // UTF-16 text, the list of parts and the output: a few times the input.
  expectMemoryProportional(before, text.size(), 8);

  Stemmer xx("xx");
  EXPECT_EQ(sentence(xx, text), Stems{text});
  EXPECT_EQ(stem(en, std::string(10 * kMiB, 'y')), std::string(10 * kMiB, 'y'));

  // A long line through stem_stream. Its buffer grows 10 bytes at a time, and
  // the sanitizers' realloc always copies, so they get a shorter line.
#ifndef DIALOG_TEST_SANITIZED
  const std::size_t lineSize = 10 * kMiB;
#else
  const std::size_t lineSize = 64 * 1024;
#endif
  std::string line(lineSize, 'a');
  FILE* in = fmemopen(line.data(), line.size(), "r");
  ASSERT_NE(in, nullptr);
  sb_stemmer* snowball = sb_stemmer_new("english", "UTF_8");
  QString out = QStringLiteral("x");
  ZQ::Dialog::stem_stream(snowball, in, out);
  EXPECT_EQ(out.size(), static_cast<int>(lineSize) + 1);  // the word is its own stem
  std::fclose(in);
  sb_stemmer_delete(snowball);
}

TEST_F(BadInput, LemmaFileOfOneFiftyMegabyteLine) {
  const std::string path =
      data_.write("lemmatizer/enu/lemma", std::string(50 * kMiB, 'w'));  // no line end
  const std::size_t before = peakRss();
  Stemmer en("enu");
  ASSERT_EQ(en.impl->lemDic.size(), 1U);  // one word form, with an empty lemma
  EXPECT_EQ(en.impl->lemDic.begin()->first.size(), static_cast<int>(50 * kMiB));
  EXPECT_TRUE(en.impl->lemDic.begin()->second.isEmpty());
  EXPECT_EQ(stem(en, "went"), "went");
  // The line is held once as UTF-16 (twice its size) plus reading buffers.
  expectMemoryProportional(before, 50 * kMiB, 6);
  fs::remove(path);
}

TEST_F(BadInput, UnreadableLemmaFile) {
  if (geteuid() == 0) GTEST_SKIP() << "running as root: file permissions do not stop reading";
  const std::string path = data_.path() + "/share/dialog/lemmatizer/enu/lemma";
  ASSERT_EQ(chmod(path.c_str(), 0), 0);
  Stemmer en("enu");
  EXPECT_TRUE(en.impl->lemDic.empty());
  EXPECT_EQ(stem(en, "went"), "went");
}

TEST_F(BadInput, BrokenSegmenterDictionary) {
  // Copies of the IPA dictionary made of links to its files, one of them with
  // sys.dic cut short. The intact copy shows that only the cut breaks it.
  if (!fs::exists(std::string(kIpadic) + "/sys.dic")) GTEST_SKIP() << "no IPA dictionary";
  const auto copyDictionary = [](const fs::path& dir, bool cut) {
    fs::create_directories(dir);
    for (const char* name : {"dicrc", "char.bin", "matrix.bin", "unk.dic", "sys.dic"})
      if (!cut || std::string(name) != "sys.dic")
        fs::create_symlink(fs::path(kIpadic) / name, dir / name);
    if (!cut) return;
    std::ifstream full(std::string(kIpadic) + "/sys.dic", std::ios::binary);
    std::string head(4096, '\0');
    full.read(head.data(), static_cast<std::streamsize>(head.size()));
    std::ofstream(dir / "sys.dic", std::ios::binary).write(head.data(), full.gcount());
  };
  const fs::path dir = fs::path(data_.path()) / "share/dialog/data/ipadic";

  copyDictionary(dir, false);
  {
    Stemmer intact("jpj");
    EXPECT_NE(intact.impl->tagger, nullptr);
    EXPECT_EQ(sentence(intact, "猫が走った"), (Stems{"猫が走った"}));
  }

  fs::remove_all(dir);
  copyDictionary(dir, true);
  Stemmer ja("jpj");
  EXPECT_EQ(ja.impl->tagger, nullptr);
  EXPECT_EQ(sentence(ja, "猫が走った"), (Stems{"猫が走った"}));  // returned whole
  EXPECT_EQ(stem(ja, "猫"), "猫");
}

}  // namespace
