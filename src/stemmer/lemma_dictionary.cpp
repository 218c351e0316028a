#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QTextCodec>

#include "ku/path.hpp"
#include "stemmer/stemmer_p.hpp"

namespace ZQ::Dialog {
namespace {

// The lemma file used to be read with QTextStream::readLine over a QFile in
// text mode. The reader below gives the same map from one read and one decode;
// every rule of that stream that can change the result is mirrored here:
// - it decodes 16 KiB of the file at a time with the locale's codec (or the
//   codec of a leading byte-order mark) and drops every U+000D it decodes;
// - a line ends at U+000A; text after the last one is a last line;
// - the loop takes two lines per pair and stops only where the decoded text
//   is used up *and* the file is, so bytes left after a 16 KiB step that
//   decode to nothing (U+000D only, a cut sequence) give one more pair of
//   null lines, that is an empty form with an empty lemma.
constexpr qint64 kStreamStep = 16384;

// Opens `path` for reading when it names a regular file; -1 otherwise. FIFOs,
// sockets and devices are never opened, so that no read can block.
int openRegularFile(const std::string& path) {
  // The name is encoded as QFile encodes it, so the same file is found.
  const QByteArray name = QFile::encodeName(QString::fromUtf8(path.c_str()));
  struct stat info {};
  if (name.isEmpty() || ::stat(name.constData(), &info) != 0 || !S_ISREG(info.st_mode)) return -1;
  const int fd = ::open(name.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  // Checked again on the opened file, in case the name changed in between.
  if (fd >= 0 && (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode))) {
    ::close(fd);
    return -1;
  }
  return fd;
}

// Fills `buffer` from `fd` up to `size` bytes; fewer only at the end of the
// file. A read error ends the file there, as it ends a stream.
std::size_t readFull(int fd, char* buffer, std::size_t size) {
  std::size_t filled = 0;
  while (filled < size) {
    const ssize_t n = ::read(fd, buffer + filled, size - filled);
    if (n <= 0) break;
    filled += static_cast<std::size_t>(n);
  }
  return filled;
}

// Fills a map from pairs of lines: the last pair for a form wins, and equal
// lemmas of nearby forms share one string. Forms mostly arrive in ascending
// order, so each is first tried at the end of the map.
class PairBuilder {
 public:
  explicit PairBuilder(std::map<QString, QString>& map) : map_(map) {}

  // One line, its text still owned by the caller.
  void line(const QChar* text, int size) {
    if (!haveForm_) {
      form_ = QString(text, size);
      haveForm_ = true;
      return;
    }
    add(lemma(text, size));
  }

  // An odd last line gets a null lemma, as a read past the end gives.
  void finish() {
    if (haveForm_) add(QString());
  }

  // The pair of null lines that a last look past the end reads.
  void emptyPair() {
    form_ = QString();
    add(QString());
  }

 private:
  // The shared copy of a recent equal lemma, else a new one.
  QString lemma(const QChar* text, int size) {
    // Empty lemmas keep their own (non-null) string, as the plain loop's.
    if (size == 0) return QString(text, 0);
    // Sorted forms come in families (a verb's forms sit together), so the
    // last few lemmas catch nine repeats in ten of the French file. A hash
    // set of all lemmas caught the rest but cost a quarter of the load time
    // and more peak memory than the copies it saved.
    const QString view = QString::fromRawData(text, size);
    for (const QString& recent : recent_)
      if (recent == view) return recent;
    QString lemma(text, size);
    recent_[next_++ % kRecent] = lemma;
    return lemma;
  }

  static constexpr std::size_t kRecent = 8;

  void add(QString lemma) {
    haveForm_ = false;
    if (map_.empty() || map_.rbegin()->first < form_)
      map_.emplace_hint(map_.end(), std::move(form_), std::move(lemma));
    else
      map_[form_] = std::move(lemma);
  }

  std::map<QString, QString>& map_;
  QString recent_[kRecent];
  std::size_t next_ = 0;
  QString form_;
  bool haveForm_ = false;
};

// Reads the lemma file on `fd` into `map`, 16 KiB steps at a time, so that
// only the map and a few steps of text are held at once.
void buildDictionary(int fd, std::map<QString, QString>& map) {
  PairBuilder pairs(map);
  QTextCodec* codec = nullptr;
  QTextCodec::ConverterState state;
  QString pending;  // decoded text not yet cut into lines
  qint64 lines = 0;
  qint64 steps = 0;
  qint64 lastTextStep = -1;  // the last step that decoded to any text
  char buffer[4 * kStreamStep];
  for (std::size_t filled = sizeof buffer; filled == sizeof buffer;) {
    filled = readFull(fd, buffer, sizeof buffer);
    for (std::size_t offset = 0; offset < filled; offset += kStreamStep, ++steps) {
      const int size = static_cast<int>(std::min<std::size_t>(kStreamStep, filled - offset));
      // The first step decides the codec: a byte-order mark's, else the locale's.
      if (!codec)
        codec = QTextCodec::codecForUtfText(QByteArray::fromRawData(buffer, size),
                                            QTextCodec::codecForLocale());
      QString text = codec->toUnicode(buffer + offset, size, &state);
      text.remove(QLatin1Char('\r'));
      if (text.isEmpty()) continue;
      lastTextStep = steps;
      // Only the new text can hold a line end: a long line is scanned once.
      int from = pending.size();
      pending += text;
      int start = 0;
      for (int end; (end = pending.indexOf(QLatin1Char('\n'), from)) >= 0; start = from = end + 1) {
        pairs.line(pending.constData() + start, end - start);
        ++lines;
      }
      pending.remove(0, start);
    }
  }
  const bool endsWithLineEnd = pending.isEmpty();
  if (!pending.isEmpty()) {
    pairs.line(pending.constData(), pending.size());
    ++lines;
  }
  // The stream's last look for the end came after an even line whose line end
  // was decoded in an earlier step than the file's last one.
  if (lines % 2 == 0 && endsWithLineEnd && lastTextStep + 1 < steps) pairs.emptyPair();
  pairs.finish();
}

}  // namespace

std::map<QString, QString> StemmerPrivate::getLemDic(std::string language) {
  std::map<QString, QString> dictionary;
  const char* const relativePath =
      language == "frf" ? "lemmatizer/frf/lemma" : "lemmatizer/enu/lemma";
  const int fd = openRegularFile(ku::path::findData("dialog", relativePath, false));
  if (fd >= 0) {
    buildDictionary(fd, dictionary);
    ::close(fd);
  }
  return dictionary;
}

}  // namespace ZQ::Dialog
