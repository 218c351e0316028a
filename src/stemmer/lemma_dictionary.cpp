#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QSet>
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

// The whole file, or nothing when `path` names no regular file we can read.
// FIFOs, sockets and devices are never opened, so that no read can block.
bool readRegularFile(const std::string& path, QByteArray& bytes) {
  // The name is encoded as QFile encodes it, so the same file is found.
  const QByteArray name = QFile::encodeName(QString::fromUtf8(path.c_str()));
  struct stat info {};
  if (name.isEmpty() || ::stat(name.constData(), &info) != 0 || !S_ISREG(info.st_mode))
    return false;
  const int fd = ::open(name.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (fd < 0) return false;
  // Checked again on the opened file, in case the name changed in between.
  bool ok = ::fstat(fd, &info) == 0 && S_ISREG(info.st_mode);
  if (ok) bytes.reserve(static_cast<int>(info.st_size) + 1);
  char chunk[65536];
  while (ok) {
    const ssize_t n = ::read(fd, chunk, sizeof chunk);
    if (n == 0) break;
    if (n < 0) {
      ok = false;
      break;
    }
    bytes.append(chunk, static_cast<int>(n));
  }
  ::close(fd);
  return ok;
}

// Fills a map from pairs of lines: the last pair for a form wins, and equal
// lemmas share one string. Forms mostly arrive in ascending order, so each
// is first tried at the end of the map.
class PairBuilder {
 public:
  explicit PairBuilder(std::map<QString, QString>& map) : map_(map) {}

  void line(QString text) {
    if (!haveForm_) {
      form_ = std::move(text);
      haveForm_ = true;
      return;
    }
    add(std::move(form_), std::move(text));
    haveForm_ = false;
  }

  // An odd last line gets a null lemma, as a read past the end gives.
  void finish() {
    if (haveForm_) add(std::move(form_), QString());
    haveForm_ = false;
  }

 private:
  void add(QString form, QString lemma) {
    // Empty lemmas keep their own (null or not), as the plain loop gives them.
    if (!lemma.isEmpty()) {
      const auto shared = lemmas_.constFind(lemma);
      if (shared != lemmas_.constEnd())
        lemma = *shared;
      else
        lemmas_.insert(lemma);
    }
    if (map_.empty() || map_.rbegin()->first < form)
      map_.emplace_hint(map_.end(), std::move(form), std::move(lemma));
    else
      map_[form] = std::move(lemma);
  }

  std::map<QString, QString>& map_;
  QSet<QString> lemmas_;
  QString form_;
  bool haveForm_ = false;
};

void buildDictionary(const QByteArray& bytes, std::map<QString, QString>& map) {
  if (bytes.isEmpty()) return;
  PairBuilder pairs(map);
  const QByteArray head = QByteArray::fromRawData(
      bytes.constData(), static_cast<int>(std::min<qint64>(bytes.size(), kStreamStep)));
  QTextCodec* codec = QTextCodec::codecForUtfText(head, QTextCodec::codecForLocale());
  QTextCodec::ConverterState state;
  QString pending;  // decoded text not yet cut into lines
  int lines = 0;
  qint64 lastTextStep = -1;  // the last 16 KiB step that decoded to any text
  const qint64 steps = (bytes.size() + kStreamStep - 1) / kStreamStep;
  for (qint64 step = 0; step < steps; ++step) {
    const qint64 offset = step * kStreamStep;
    const int size = static_cast<int>(std::min<qint64>(kStreamStep, bytes.size() - offset));
    QString text = codec->toUnicode(bytes.constData() + offset, size, &state);
    text.remove(QLatin1Char('\r'));
    if (text.isEmpty()) continue;
    lastTextStep = step;
    pending += text;
    int start = 0;
    for (int end; (end = pending.indexOf(QLatin1Char('\n'), start)) >= 0; start = end + 1) {
      pairs.line(QString(pending.constData() + start, end - start));
      ++lines;
    }
    pending.remove(0, start);
  }
  const bool endsWithLineEnd = lastTextStep < 0 || pending.isEmpty();
  if (!pending.isEmpty()) {
    pairs.line(QString(pending.constData(), pending.size()));
    ++lines;
  }
  // The stream's last look for the end came after an even line whose line end
  // was decoded from an earlier step than the file's last one.
  if (lines % 2 == 0 && endsWithLineEnd && lastTextStep + 1 < steps) {
    pairs.line(QString());
    pairs.line(QString());
  }
  pairs.finish();
}

}  // namespace

std::map<QString, QString> StemmerPrivate::getLemDic(std::string language) {
  std::map<QString, QString> dictionary;
  const char* const relativePath =
      language == "frf" ? "lemmatizer/frf/lemma" : "lemmatizer/enu/lemma";
  QByteArray bytes;
  if (readRegularFile(ku::path::findData("dialog", relativePath, false), bytes))
    buildDictionary(bytes, dictionary);
  return dictionary;
}

}  // namespace ZQ::Dialog
