#include "stream_mode.hpp"

#include <cstdio>
#include <string>

#include <libstemmer.h>

#include "run.hpp"
#include "stemmer/stemmer.hpp"

namespace ZQ::Dialog::tool {

namespace {

// Bytes of whole lines handed to the library at a time, so that memory stays
// bounded whatever the input's size. Stems carry no separator, so stemming
// the input in blocks of whole lines prints exactly what one call would.
constexpr size_t kBlockBytes = 1 << 16;

void stemBlock(sb_stemmer* stemmer, std::string& block) {
  if (block.empty()) return;
  FILE* in = fmemopen(block.data(), block.size(), "r");
  if (!in) return;
  QString out;
  ZQ::Dialog::stem_stream(stemmer, in, out);
  std::fclose(in);
  const QByteArray bytes = out.toUtf8();
  writeOut(bytes.constData(), static_cast<size_t>(bytes.size()));
  block.clear();
}

}  // namespace

int runStreamMode(const std::string& algorithm) {
  sb_stemmer* stemmer = sb_stemmer_new(algorithm.c_str(), "UTF_8");
  if (!stemmer) {
    std::fprintf(stderr, "dialog-stem: unknown Snowball algorithm '%s' (see --help)\n",
                 algorithm.c_str());
    return 2;
  }
  std::string block;
  std::size_t number = 1, length = 0;  // the current line's number and length so far
  int c;
  while ((c = std::getchar()) != EOF) {
    if (++length > kMaxLineBytes + 1) {
      stemBlock(stemmer, block.erase(block.size() - (length - 1)));
      return lineTooLong(number);
    }
    block.push_back(static_cast<char>(c));
    if (c != '\n') continue;
    ++number, length = 0;
    if (block.size() >= kBlockBytes) stemBlock(stemmer, block);
  }
  if (std::ferror(stdin)) {
    std::perror("dialog-stem: cannot read standard input");
    return 1;
  }
  stemBlock(stemmer, block);
  writeOut("\n", 1);
  sb_stemmer_delete(stemmer);
  if (std::fflush(stdout) != 0) {
    std::perror("dialog-stem: cannot write standard output");
    return 1;
  }
  return 0;
}

}  // namespace ZQ::Dialog::tool
