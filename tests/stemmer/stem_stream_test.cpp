#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <libstemmer.h>

#include "stemmer/stemmer.hpp"
#include "stemmer/stream_buffer.hpp"

namespace {

// Runs stem_stream over `input` with a fresh Snowball stemmer, appending to `out`.
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
  struct Case {
    std::string input;
    const char* expected;
  };
  const Case cases[] = {
      {"running\njumps\n", "runjump"},
      {"Running\nJUMPS", "runjump"},  // no final newline
      {"", ""},
      {"\n\n", ""},  // empty lines append nothing
      {"cats\n\ndogs\n", "catdog"},
      {"cats\r\n", "cats\r"},  // the CR stays in the word
      {"internationalization\nnationalities\nab\n", "internationnationab"},
      {"\xC3\x89T\xC3\x89S\n", "\xC3\x89t\xC3\x89s"},  // bytes above 127 are not lowered
  };
  for (const Case& c : cases) EXPECT_EQ(stemStream(c.input), c.expected) << c.input;
  EXPECT_EQ(stemStream(std::string(1 << 20, 'a') + "\nwalks").size(), (1u << 20) + 4);
  EXPECT_EQ(stemStream("jumps\n", "x"), "xjump");  // appended to what was there
  EXPECT_EQ(stemStream("", "kept"), "kept");
  // Stems are always decoded as UTF-8: Latin-1 bytes become U+FFFD.
  EXPECT_NE(stemStream("\xE9t\xE9s\n", "", "french", "ISO_8859_1").find("\xEF\xBF\xBD"),
            std::string::npos);
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
