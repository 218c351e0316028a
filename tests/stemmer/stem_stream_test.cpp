#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <libstemmer.h>

#include "stemmer/stemmer.hpp"
#include "stemmer/stream_buffer.hpp"
#include "testing/memory.hpp"

namespace {

// Runs stem_stream over `input` with a fresh Snowball stemmer, appending to `out`.
QString stemStream(const std::string& input, QString out = QString(),
                   const char* algorithm = "english", const char* encoding = "UTF_8") {
  sb_stemmer* stemmer = sb_stemmer_new(algorithm, encoding);
  FILE* in = std::tmpfile();
  std::fwrite(input.data(), 1, input.size(), in);
  std::rewind(in);
  ZQ::Dialog::stem_stream(stemmer, in, out);
  EXPECT_EQ(std::fgetc(in), EOF);  // read to its end
  std::fclose(in);
  sb_stemmer_delete(stemmer);
  return out;
}

TEST(StemStream, LinesAreLoweredStemmedAndJoined) {
  struct Case {
    const char* name;
    std::string input;
    const char* expected;
  };
  const Case cases[] = {
      {"two lines", "running\njumps\n", "runjump"},
      {"mixed case, no final newline", "Running\nJUMPS", "runjump"},
      {"empty stream", "", ""},
      {"empty lines append nothing", "\n\n", ""},
      {"empty line between", "cats\n\ndogs\n", "catdog"},
      {"carriage return stays in the word", "cats\r\n", "cats\r"},
      {"longer than the buffer", "internationalization\nnationalities\nab\n",
       "internationnationab"},
      {"bytes above 127 are not lowered", "\xC3\x89T\xC3\x89S\n", "\xC3\x89t\xC3\x89s"},
  };
  for (const Case& c : cases)
    EXPECT_EQ(stemStream(c.input).toUtf8().toStdString(), c.expected) << c.name;
}

TEST(StemStream, AppendsToExistingOutput) {
  EXPECT_EQ(stemStream("jumps\n", QStringLiteral("x")), QStringLiteral("xjump"));
  EXPECT_EQ(stemStream("", QStringLiteral("kept")), QStringLiteral("kept"));
}

TEST(StemStream, VeryLongLineAndOtherEncodings) {
  // The buffer grows 10 bytes at a time and the sanitizers' realloc always
  // copies, so they get a shorter line.
  const int size = dialog_test::kSanitized ? 100000 : 10 << 20;
  EXPECT_EQ(stemStream(std::string(size, 'a') + "\nwalks").size(), size + 4);
  // Stems are always decoded as UTF-8: Latin-1 bytes become U+FFFD.
  const QString latin = stemStream("\xE9t\xE9s\n", QString(), "french", "ISO_8859_1");
  EXPECT_TRUE(latin.contains(QChar(0xFFFD)));
}

TEST(StemStream, GrowthStopsBeforeTheCapacityWraps) {
  using ZQ::Dialog::detail::growStreamBuffer;
  int capacity = 10;
  auto* buffer = static_cast<sb_symbol*>(std::malloc(capacity));
  EXPECT_TRUE(growStreamBuffer(buffer, capacity, 30));
  EXPECT_TRUE(growStreamBuffer(buffer, capacity, 30));
  EXPECT_EQ(capacity, 30);
  EXPECT_FALSE(growStreamBuffer(buffer, capacity, 30));  // 40 would pass the limit
  EXPECT_EQ(capacity, 30);                               // and nothing changed
  capacity = INT_MAX - 7;                                // where 2147483640 + 10 used to wrap
  EXPECT_FALSE(growStreamBuffer(buffer, capacity));
  std::free(buffer);
}

}  // namespace
