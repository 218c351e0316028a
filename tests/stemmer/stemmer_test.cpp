#include <gtest/gtest.h>
#include <sys/stat.h>
#include <atomic>
#include <climits>
#include <cstdio>
#include <filesystem>
#include <sstream>
#include <thread>
#include "ku/log.hpp"
#include "stemmer/stemmer_p.hpp"
#include "stemmer/stream_buffer.hpp"
#include "testing/files.hpp"
#include "testing/mecab.hpp"

using ZQ::Dialog::Stemmer;
using Dictionary = std::map<QString, QString>;
using Stems = std::vector<std::string>;

namespace {

std::string word(Stemmer& stemmer, std::string text) {
  std::string result;
  stemmer.stemword(text, result);
  return result;
}

TEST(Construction, EachCodeReadsItsOwnLemmaFileAndGivesItBack) {
  ZQ::Dialog::testing::DataRoot data;
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
  ZQ::Dialog::testing::DataRoot data;
  auto* a = new Stemmer("enu");
  Stemmer b("frf"), copy(b);  // a copy shares too
  ZQ::Dialog::StemmerPrivate* const formerA = a->impl;
  *a = *a;
  EXPECT_EQ(a->impl, formerA);
  *a = b;
  EXPECT_EQ(a->language + (a->impl == b.impl && copy.impl == b.impl ? " shared" : ""),
            "frf shared");
  delete formerA;                 // the former implementation was left alone
  a->impl = copy.impl = nullptr;  // only one of the sharing handles may be destroyed
  delete a;
}

Dictionary load(const std::string& code = "enu") {
  return ZQ::Dialog::StemmerPrivate("jpj").getLemDic(code);
}

QString q(const char* utf8) { return QString::fromUtf8(utf8); }

// The map of the plain readLine loop: pairs of lines, the last pair for a form
// winning, an odd last line or a blank line making an empty lemma; CRs, marks,
// NULs, bad or cut sequences and the 16 KiB decoding steps as QTextStream has
// them. Streamed, and read in up to 2 or 5 parts side by side.
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
                step.substr(1) + "\xC3\xA9\n\xC3\xA9\n", step.substr(2) + "\n\r\nx\n",
                step.substr(3) + "\nb\n\r",  // a last part that decodes to nothing
                "a\nb\n\xEF\xBB\xBF\n\xEF\xBB\xBF"
                "c\nd\n"});  // marks past the start
  for (const std::string& contents : files) {
    ZQ::Dialog::testing::DataRoot data;
    const Dictionary plain =
        ZQ::Dialog::testing::plainLemmaLoad(data.write("lemmatizer/enu/lemma", contents));
    for (const unsigned threads : {1, 2, 5}) {
      ZQ::Dialog::setLemmaLoadThreads(threads, 1);
      const Dictionary library = load();
      EXPECT_EQ(library, plain) << threads << " " << contents.substr(0, 40);
      // Null and empty strings compare equal; the loaders must agree on which.
      auto l = library.begin();
      for (auto p = plain.begin(); l != library.end() && p != plain.end(); ++l, ++p)
        EXPECT_EQ(l->second.isNull(), p->second.isNull()) << contents.substr(0, 40);
    }
  }
  ZQ::Dialog::setLemmaLoadThreads(1);
  EXPECT_EQ(ZQ::Dialog::testing::plainLemmaLoad(
                ZQ::Dialog::testing::DataRoot().write("x", "a\n\nb\nc\nb")),
            (Dictionary{{q("a"), q("")}, {q("b"), q("")}}));  // the loop itself
}

TEST(LemmaDictionary, FileByCodeInPrefixOrUserDataHomeElseEmpty) {
  {
    ZQ::Dialog::testing::DataRoot data;
    data.write("lemmatizer/frf/lemma", "yeux\nœil\n");
    EXPECT_TRUE(load().empty());  // no English file
    data.write("lemmatizer/enu/lemma", "went\ngo\n");
    EXPECT_EQ(load("frf"), (Dictionary{{q("yeux"), q("œil")}}));
    for (const char* code : {"enu", "jpj", "", "FRF"})  // every other code reads English
      EXPECT_EQ(load(code), (Dictionary{{q("went"), q("go")}})) << code;
    const ZQ::Dialog::testing::DataRoot user;  // an empty prefix; the file in the user's data home
    user.write("lemmatizer/enu/lemma", "été\nêtre\n", true);
    EXPECT_EQ(load(), (Dictionary{{q("été"), q("être")}}));
  }
  ZQ::Dialog::testing::DataRoot data;
  const std::string path = data.write("lemmatizer/enu/lemma/inner", "x");  // a directory
  const std::string lemma = std::filesystem::path(path).parent_path();
  EXPECT_TRUE(load().empty());
  std::filesystem::remove_all(lemma);
  ASSERT_EQ(mkfifo(lemma.c_str(), 0600), 0);  // would block a reader
  EXPECT_TRUE(load().empty());
  std::filesystem::remove(lemma);
  if (ZQ::Dialog::testing::missing(ZQ::Dialog::testing::Need::kUnprivileged).empty()) {
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
// English and French stemmers over small dictionaries of their own.
class Stemming : public testing::Test {
 protected:
  // stemword on a copy of `word`, checking that the caller's word stays as it was.
  std::string stem(std::string word, std::string result = "") {
    const std::string mine = word;
    en_.stemword(word, result);
    EXPECT_EQ(mine, word);
    return result;
  }
  static Stems run(Stemmer& stemmer, const std::string& sentence, Stems stems = {}) {
    stemmer.stem_sentence(sentence, stems);
    return stems;
  }
  ZQ::Dialog::testing::DataRoot data_;
  std::string files_ = data_.write("lemmatizer/enu/lemma",
                                   "went\ngo\ndogs\ndog\ndon\nDO\nt\nNOT\n\nEMPTY\nété\nêtre\n"
                                   "\357\273\277cats\nunreachable\n") +
                       data_.write("lemmatizer/frf/lemma", "l\nle\nhommes\nhomme\n");
  Stemmer en_{"enu"}, fr_{"frf"};
};

TEST_F(Stemming, WordLookupIsExact) {
  EXPECT_EQ(stem("dogs"), "dog");
  EXPECT_EQ(stem("été"), "être");
  EXPECT_EQ(stem("Went"), "Went");                 // case-sensitive
  EXPECT_EQ(stem("went "), "went ");               // nothing trimmed
  EXPECT_EQ(stem(""), "EMPTY");                    // the empty word is looked up too
  EXPECT_EQ(stem("went", "previous text"), "go");  // the result is replaced, not appended
}

TEST_F(Stemming, BadBytes) {
  EXPECT_EQ(stem("caf\xC3"), "caf\xEF\xBF\xBD");  // each bad sequence becomes U+FFFD
  EXPECT_EQ(stem("\xFF\xFE"), "\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_EQ(stem(std::string("went\0xyz", 8)), "go");  // a zero byte ends the word
  EXPECT_EQ(stem(std::string("\0went", 5)), "EMPTY");
  // The key's UTF-8 round trip drops a leading byte-order mark, as any decoding would.
  EXPECT_EQ(stem("\xEF\xBB\xBF\xEF\xBB\xBFwent"), "go");
  EXPECT_EQ(stem("\357\273\277cats"),
            "cats");  // the form listed with its mark is never found
  QString word = QStringLiteral("went") + QChar(0) + QStringLiteral("tail"), result;
  en_.impl->stemmword(word, result);  // replaces its word in place
  EXPECT_EQ(word + result, QStringLiteral("gogo"));
  word = QChar(0xFEFF) + QStringLiteral("cats");  // unlisted: the word stays, mark and all
  en_.impl->stemmword(word, result);
  EXPECT_EQ(result, QChar(0xFEFF) + QStringLiteral("cats"));
  for (const ushort unit : {0xD800, 0xDFFF}) {  // a lone surrogate never survives in the key
    en_.impl->lemDic[word = QStringLiteral("x") + QChar(unit)] = QStringLiteral("unreachable");
    en_.impl->stemmword(word, result);
    EXPECT_EQ(result, QStringLiteral("x") + QChar(unit));
  }
}

TEST_F(Stemming, RegexSplitCutsAtSpacesAndApostrophes) {
  EXPECT_EQ(run(en_, "I don't like dogs"), (Stems{"I", "DO", "NOT", "like", "dog"}));
  EXPECT_EQ(run(en_, " a  b"), (Stems{"EMPTY", "a", "EMPTY", "b"}));  // empty parts are kept
  EXPECT_EQ(run(en_, "'"), (Stems{"EMPTY", "EMPTY"}));
  EXPECT_EQ(run(en_, "dogs\tdogs,dogs"), (Stems{"dogs\tdogs,dogs"}));    // tab and comma stay
  EXPECT_EQ(run(en_, "don\xE2\x80\x99t"), (Stems{"don\xE2\x80\x99t"}));  // so does U+2019
  EXPECT_EQ(run(en_, "dogs", {"kept"}), (Stems{"kept", "dog"}));         // appended
  EXPECT_EQ(run(fr_, "l'homme hommes"), (Stems{"le", "homme", "homme"}));
  EXPECT_EQ(run(en_, std::string("dogs don\0t dogs", 15)), (Stems{"dog", "DO"}));  // ends at NUL
  EXPECT_EQ(run(en_, "caf\xC3 dogs"), (Stems{"caf\xEF\xBF\xBD", "dog"}));  // replaced, not dropped
  EXPECT_EQ(run(en_, "dogs \xEF\xBB\xBFwent"), (Stems{"dog", "go"}));  // a later word's mark goes
  std::string text;  // a 10 MB sentence: pieces of 999 bytes and a space
  while (text.size() + 1000 <= 10u << 20) text += std::string(999, 'x') + ' ';
  const Stems stems = run(en_, text + "went");
  ASSERT_EQ(stems.size(), text.size() / 1000 + 1);
  EXPECT_EQ(stems.front() + stems.back(), std::string(999, 'x') + "go");
}
// A caller's own `rx` is honoured; the load-time one is split without it.
TEST_F(Stemming, CallersPatternIsHonoured) {
  const QRegExp saved = ZQ::Dialog::rx;
  ZQ::Dialog::rx.setPattern(QStringLiteral("o"));
  EXPECT_FALSE(ZQ::Dialog::splitsAtSpaceAndApostrophe(en_));  // the front ends' fast path is off
  EXPECT_EQ(run(en_, "don't dogs"), (Stems{"d", "n't d", "gs"}));
  // Each empty part (first, between two matches, last) is an element too.
  EXPECT_EQ(run(en_, "oo dogo"), (Stems{"EMPTY", "EMPTY", " d", "g", "EMPTY"}));
  ZQ::Dialog::rx = saved;
  EXPECT_EQ(run(en_, "don't"), (Stems{"DO", "NOT"}));
  EXPECT_TRUE(ZQ::Dialog::splitsAtSpaceAndApostrophe(en_));
}

TEST_F(Stemming, WholeSentenceAndSpaceTokenPaths) {
  for (const char* code : {"jpj", "xx"}) {
    Stemmer stemmer(code);
    stemmer.impl->lemDic[QStringLiteral("went")] = QStringLiteral("go");  // never looked up
    EXPECT_EQ(run(stemmer, " a  went \t"), (Stems{" a  went \t"})) << code;
    EXPECT_EQ(run(stemmer, std::string("a\0b", 3)), (Stems{std::string("a\0b", 3)})) << code;
    EXPECT_EQ(run(stemmer, "\xFF\xFE"), (Stems{"\xFF\xFE"})) << code;  // bytes, never decoded
    EXPECT_EQ(run(stemmer, "", {"kept"}), Stems{"kept"}) << code;
    std::string word = "went", result;
    stemmer.stemword(word, result);
    EXPECT_EQ(result, "went") << code;
    EXPECT_EQ(ZQ::Dialog::sentenceSplit(stemmer), ZQ::Dialog::SentenceSplit::kWhole) << code;
  }
  en_.impl->stemmer = nullptr;  // as when the Snowball stemmer could not be created
  EXPECT_EQ(ZQ::Dialog::sentenceSplit(en_), ZQ::Dialog::SentenceSplit::kSpaces);
  EXPECT_FALSE(ZQ::Dialog::splitsAtSpaceAndApostrophe(en_));
  EXPECT_EQ(run(en_, "  dogs   don't\tx  "), (Stems{"dogs", "don't\tx"}));  // no lookup
  EXPECT_EQ(run(en_, "   "), Stems{});
  EXPECT_EQ(run(en_, std::string("a\0b c", 5)), (Stems{std::string("a\0b", 3), "c"}));
  EXPECT_EQ(run(en_, "\xC0\xAF went"), (Stems{"\xC0\xAF", "went"}));  // bytes, never decoded
}
// The morpheme path: a Snowball stemmer with selector 0 and a real tagger.
TEST_F(Stemming, MorphemePathYieldsBaseForms) {
  DIALOG_REQUIRE(ZQ::Dialog::testing::Need::kIpaDictionary);
  const ZQ::Dialog::testing::TaggerPtr tagger =
      ZQ::Dialog::testing::openMecab(ZQ::Dialog::testing::ipadicDir());
  ASSERT_NE(tagger, nullptr) << MeCab::getTaggerError();
  en_.impl->lang = 0, en_.impl->tagger = tagger.get();
  EXPECT_EQ(ZQ::Dialog::sentenceSplit(en_), ZQ::Dialog::SentenceSplit::kMorphemes);
  EXPECT_EQ(run(en_, "猫が走った"), (Stems{"猫", "が", "走る", "た"}));
  EXPECT_EQ(run(en_, "", {"kept"}), (Stems{"kept"}));            // only begin and end nodes
  EXPECT_EQ(run(en_, "Zyxwvq"), (Stems{"*"}));                   // unknown words keep "*"
  EXPECT_EQ(run(en_, std::string("猫\0が", 7)), (Stems{"猫"}));  // ends at NUL
}
// stem_stream over `input` with a fresh Snowball stemmer, appending to `out`.
std::string stemStream(const std::string& input, const char* out = "",
                       const char* algorithm = "english", const char* encoding = "UTF_8") {
  sb_stemmer* stemmer = sb_stemmer_new(algorithm, encoding);
  FILE* in = std::tmpfile();
  std::fwrite(input.data(), 1, input.size(), in);
  std::rewind(in);
  QString text = QString::fromUtf8(out);
  ZQ::Dialog::stem_stream(stemmer, in, text);
  EXPECT_EQ(std::fgetc(in), EOF);  // read to its end
  std::fclose(in);
  sb_stemmer_delete(stemmer);
  return text.toStdString();
}

TEST(StemStream, LinesAreLoweredStemmedAndJoined) {
  const std::pair<std::string, const char*> cases[] = {
      {"running\njumps\n", "runjump"},
      {"Running\nJUMPS", "runjump"},  // no final newline
      {"cats\n\ndogs\n", "catdog"},   // empty lines append nothing
      {"cats\r\n", "cats\r"},         // the CR stays in the word
      {"internationalization\nnationalities\nab\n", "internationnationab"},
      {"\xC3\x89T\xC3\x89S\n", "\xC3\x89t\xC3\x89s"},  // bytes above 127 are not lowered
  };
  for (const auto& [input, expected] : cases) EXPECT_EQ(stemStream(input), expected) << input;
  EXPECT_EQ(stemStream(std::string(1 << 20, 'a') + "\nwalks").size(), (1u << 20) + 4);
  EXPECT_EQ(stemStream("jumps\n", "x"), "xjump");  // appended to what was there
  EXPECT_EQ(stemStream("", "kept"), "kept");
  // Stems are always decoded as UTF-8: Latin-1 bytes become U+FFFD.
  EXPECT_NE(stemStream("\xE9t\xE9s\n", "", "french", "ISO_8859_1").find("\xEF\xBF\xBD"),
            std::string::npos);
}

TEST(StemStream, GrowthStopsBeforeTheCapacityWraps) {
  using ZQ::Dialog::growStreamBuffer;
  int capacity = 10;
  auto* buffer = static_cast<sb_symbol*>(std::malloc(capacity));
  EXPECT_TRUE(growStreamBuffer(buffer, capacity, 30));
  EXPECT_TRUE(growStreamBuffer(buffer, capacity, 30));
  EXPECT_FALSE(growStreamBuffer(buffer, capacity, 30));  // 40 would pass the limit
  EXPECT_EQ(capacity, 30);                               // and nothing changed
  capacity = INT_MAX - 7;                                // where 2147483640 + 10 used to wrap
  EXPECT_FALSE(growStreamBuffer(buffer, capacity));
  std::free(buffer);
}

class Concurrency : public Stemming {};

// Threads released together share one stemmer per path, each with its own
// strings, and must see what one thread sees: the regex split, the space
// tokens (no Snowball handle) and the whole sentence. Run under ThreadSanitizer.
TEST_F(Concurrency, SharedStemmersGiveSingleThreadResults) {
  Stemmer spaced("enu"), japanese("jpj");
  sb_stemmer* const handle = std::exchange(spaced.impl->stemmer, nullptr);
  const std::string sentence = "dogs don't  went'x\ty ";
  const std::pair<Stemmer*, Stems> paths[] = {
      {&en_, {"dog", "DO", "NOT", "EMPTY", "go", "x\ty", "EMPTY"}},
      {&spaced, {"dogs", "don't", "went'x\ty"}},
      {&japanese, {sentence}}};
  std::atomic<int> waiting{4}, mismatches{0};
  std::vector<std::thread> pool;
  for (int t = 0; t < 4; ++t)
    pool.emplace_back([&] {
      for (--waiting; waiting > 0;) std::this_thread::yield();
      for (int round = 0; round < 200; ++round) {
        for (const auto& [stemmer, expected] : paths)
          mismatches += run(*stemmer, sentence) != expected;
        std::string word = round % 2 ? "went" : "walks", result;
        en_.stemword(word, result);
        mismatches += result != (round % 2 ? "go" : "walks");
      }
    });
  for (auto& thread : pool) thread.join();
  EXPECT_EQ(mismatches, 0);
  spaced.impl->stemmer = handle;
}

// A lemma file read in parts by several threads gives the streamed map, later
// parts replacing earlier lemmas. Run under ThreadSanitizer.
TEST_F(Concurrency, LemmaFileInPartsGivesTheStreamedMap) {
  std::string file;
  for (int i = 0; i < 20000; ++i)
    file += "w" + std::to_string(i % 15000) + "\nl" + std::to_string(i) + "\n";
  data_.write("lemmatizer/frf/lemma", file);
  ZQ::Dialog::setLemmaLoadThreads(4, 1024);
  const Dictionary parted = load("frf");
  ZQ::Dialog::setLemmaLoadThreads(1);
  EXPECT_EQ(parted, load("frf"));
  EXPECT_EQ(parted.at(q("w0")), q("l15000"));
}

}  // namespace
