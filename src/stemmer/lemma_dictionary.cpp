#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <exception>
#include <memory>
#include <string_view>
#include <system_error>
#include <thread>
#include <vector>

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

// A file read in parts side by side is held in memory whole, so only up to
// this size (larger ones are streamed); and in at most this many parts.
constexpr std::size_t kMaxPartedFileBytes = std::size_t{256} << 20;
constexpr unsigned kMaxParts = 16;

std::atomic<unsigned> loadThreads{1};
std::atomic<std::size_t> minPartBytes{std::size_t{256} << 10};

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

// The codec the stream picks from the file's first step: a byte-order mark's,
// else the locale's.
QTextCodec* codecFor(const char* firstBytes, std::size_t size) {
  const int first = static_cast<int>(std::min<std::size_t>(size, kStreamStep));
  return QTextCodec::codecForUtfText(QByteArray::fromRawData(firstBytes, first),
                                     QTextCodec::codecForLocale());
}

using Dictionary = std::map<QString, QString>;

// Adds `node` to `map`, replacing the lemma of an equal form: the last pair for
// a form wins. Forms mostly arrive in ascending order, so each is first tried
// at the end of the map.
void addLast(Dictionary& map, Dictionary::node_type node) {
  if (map.empty() || map.rbegin()->first < node.key()) {
    map.insert(map.end(), std::move(node));
  } else if (const auto at = map.find(node.key()); at != map.end()) {
    at->second = std::move(node.mapped());
  } else {
    map.insert(std::move(node));
  }
}

// Makes pairs of lines into map nodes, and equal lemmas of nearby forms share
// one string. The nodes go to a map, or in file order to a list that a map
// takes later.
class PairBuilder {
 public:
  explicit PairBuilder(Dictionary& map) : map_(&map) {}
  explicit PairBuilder(std::vector<Dictionary::node_type>& nodes) : nodes_(&nodes) {}

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
    if (!map_) {
      // A map of one entry makes the node without any search.
      maker_.emplace(std::move(form_), std::move(lemma));
      nodes_->push_back(maker_.extract(maker_.begin()));
    } else if (map_->empty() || map_->rbegin()->first < form_) {
      // addLast's rule, without the node handle that a lone part never needs.
      map_->emplace_hint(map_->end(), std::move(form_), std::move(lemma));
    } else {
      (*map_)[form_] = std::move(lemma);
    }
  }

  Dictionary* map_ = nullptr;
  std::vector<Dictionary::node_type>* nodes_ = nullptr;
  Dictionary maker_;
  QString recent_[kRecent];
  std::size_t next_ = 0;
  QString form_;
  bool haveForm_ = false;
};

// Decodes a run of the file's bytes that starts at a line start, in the
// stream's 16 KiB steps counted from the file's start, and hands its lines to
// `pairs`; only the new text is searched for line ends, so a long line is
// scanned once.
class LineCutter {
 public:
  LineCutter(PairBuilder& pairs, QTextCodec* codec) : pairs_(pairs), codec_(codec) {}

  // Decodes the `size` bytes found at `offset` in the file.
  void feed(const char* bytes, std::size_t size, std::uint64_t offset) {
    for (std::size_t done = 0; done < size;) {
      const std::uint64_t step = (offset + done) / kStreamStep;
      const std::size_t n =
          std::min<std::uint64_t>(size - done, (step + 1) * kStreamStep - (offset + done));
      decode(bytes + done, static_cast<int>(n), static_cast<qint64>(step));
      done += n;
    }
  }

  // Ends the file after `steps` steps: its last line, and the stream's last
  // look for the end, which came after an even line whose line end was
  // decoded in an earlier step than the file's last one.
  void finishFile(qint64 steps, qint64 lastTextStep) {
    lastTextStep = std::max(lastTextStep, lastTextStep_);
    const bool endsWithLineEnd = pending_.isEmpty();
    if (!pending_.isEmpty()) {
      pairs_.line(pending_.constData(), pending_.size());
      ++lines_;
    }
    if (lines_ % 2 == 0 && endsWithLineEnd && lastTextStep + 1 < steps) pairs_.emptyPair();
    pairs_.finish();
  }

  qint64 lastTextStep() const { return lastTextStep_; }

 private:
  void decode(const char* bytes, int size, qint64 step) {
    QString text = codec_->toUnicode(bytes, size, &state_);
    text.remove(QLatin1Char('\r'));
    if (text.isEmpty()) return;
    lastTextStep_ = step;
    int from = pending_.size();
    pending_ += text;
    int start = 0;
    for (int end; (end = pending_.indexOf(QLatin1Char('\n'), from)) >= 0; start = from = end + 1) {
      pairs_.line(pending_.constData() + start, end - start);
      ++lines_;
    }
    pending_.remove(0, start);
  }

  PairBuilder& pairs_;
  QTextCodec* codec_;
  QTextCodec::ConverterState state_;
  QString pending_;  // decoded text not yet cut into lines
  qint64 lines_ = 0;
  qint64 lastTextStep_ = -1;  // the last step that decoded to any text
};

qint64 stepsIn(std::uint64_t bytes) {
  return static_cast<qint64>((bytes + kStreamStep - 1) / kStreamStep);
}

// Reads the lemma file on `fd` into `map` 64 KiB at a time, so that only the
// map and a few steps of text are held at once.
void streamDictionary(int fd, Dictionary& map) {
  PairBuilder pairs(map);
  std::unique_ptr<LineCutter> lines;
  std::uint64_t offset = 0;
  char buffer[4 * kStreamStep];
  for (std::size_t filled = sizeof buffer; filled == sizeof buffer; offset += filled) {
    filled = readFull(fd, buffer, sizeof buffer);
    if (!lines && filled == 0) break;
    if (!lines) lines = std::make_unique<LineCutter>(pairs, codecFor(buffer, filled));
    lines->feed(buffer, filled, offset);
  }
  if (lines) lines->finishFile(stepsIn(offset), -1);
}

// Where parts of `file` may start: after a line end that closes a pair (an
// even number of line ends before it), near equal shares of the file. The
// first part starts at 0; a part is never empty.
std::vector<std::size_t> partStarts(std::string_view file, unsigned parts) {
  std::vector<std::size_t> starts{0};
  std::size_t counted = 0;  // line ends before it are counted
  bool oddLines = false;
  for (unsigned i = 1; i < parts; ++i) {
    const std::size_t share = std::max(file.size() / parts * i, counted);
    oddLines ^= std::count(file.begin() + counted, file.begin() + share, '\n') % 2 != 0;
    counted = share;
    do {
      const std::size_t end = file.find('\n', counted);
      if (end == std::string_view::npos) return starts;
      counted = end + 1;
      oddLines = !oddLines;
    } while (oddLines);
    if (counted == file.size()) break;
    starts.push_back(counted);
  }
  return starts;
}

// Reads the whole `file`, held in memory, into `map`: each part from `starts`
// on a thread of its own (the first on the calling thread), then the parts'
// maps joined in file order. Threads that cannot be started leave their parts
// to the calling thread.
void buildFromBytes(std::string_view file, QTextCodec* codec,
                    const std::vector<std::size_t>& starts, Dictionary& map) {
  const std::size_t parts = starts.size();
  // Later parts make nodes only: the map takes them in file order at the end.
  std::vector<std::vector<Dictionary::node_type>> nodes(parts - 1);
  std::vector<std::unique_ptr<PairBuilder>> pairs;
  std::vector<std::unique_ptr<LineCutter>> lines;
  for (std::size_t i = 0; i < parts; ++i) {
    pairs.push_back(i == 0 ? std::make_unique<PairBuilder>(map)
                           : std::make_unique<PairBuilder>(nodes[i - 1]));
    lines.push_back(std::make_unique<LineCutter>(*pairs[i], codec));
  }
  std::vector<std::exception_ptr> errors(parts);
  const auto read = [&](std::size_t i) {
    try {
      const std::size_t end = i + 1 < parts ? starts[i + 1] : file.size();
      lines[i]->feed(file.data() + starts[i], end - starts[i], starts[i]);
    } catch (...) {
      errors[i] = std::current_exception();
    }
  };
  std::vector<std::thread> threads;
  threads.reserve(parts - 1);
  try {
    for (std::size_t i = 1; i < parts; ++i) threads.emplace_back(read, i);
  } catch (const std::system_error&) {
    // No thread to be had: the calling thread reads the rest itself.
  }
  read(0);
  for (std::size_t i = threads.size() + 1; i < parts; ++i) read(i);
  for (std::thread& thread : threads) thread.join();
  for (const std::exception_ptr& error : errors)
    if (error) std::rethrow_exception(error);
  qint64 lastTextStep = -1;
  for (std::size_t i = 0; i + 1 < parts; ++i)
    lastTextStep = std::max(lastTextStep, lines[i]->lastTextStep());
  lines.back()->finishFile(stepsIn(file.size()), lastTextStep);
  for (std::vector<Dictionary::node_type>& part : nodes)
    for (Dictionary::node_type& node : part) addLast(map, std::move(node));
}

// Reads the lemma file on `fd` into `map`: streamed, or with several threads
// where they are allowed and the file is large enough to share among them.
void buildDictionary(int fd, Dictionary& map) {
  const unsigned threads = std::min(loadThreads.load(), kMaxParts);
  const std::size_t minPart = std::max<std::size_t>(minPartBytes.load(), 1);
  struct stat info {};
  if (threads < 2 || ::fstat(fd, &info) != 0 ||
      static_cast<std::uint64_t>(info.st_size) < 2 * minPart ||
      static_cast<std::uint64_t>(info.st_size) > kMaxPartedFileBytes)
    return streamDictionary(fd, map);
  // One byte more than the file's size tells whether it grew since.
  const std::size_t size = static_cast<std::size_t>(info.st_size);
  const std::unique_ptr<char[]> bytes(new char[size + 1]);
  const std::size_t filled = readFull(fd, bytes.get(), size + 1);
  if (filled > size) {
    if (::lseek(fd, 0, SEEK_SET) == 0) streamDictionary(fd, map);
    return;
  }
  const std::string_view file(bytes.get(), filled);
  if (file.empty()) return;
  QTextCodec* const codec = codecFor(file.data(), file.size());
  // A part decodes from a fresh state. After a line end, UTF-8's running state
  // differs from a fresh one only in whether it still drops a U+FEFF, so a
  // file with one past its start is read as one part.
  const bool parted = codec->mibEnum() == 106 && file.find("\xEF\xBB\xBF", 1) == file.npos;
  buildFromBytes(file, codec,
                 parted ? partStarts(file, std::min<std::size_t>(threads, size / minPart))
                        : std::vector<std::size_t>{0},
                 map);
}

}  // namespace

void setLemmaLoadThreads(unsigned threads, std::size_t partBytes) {
  loadThreads = std::max(threads, 1u);
  minPartBytes = partBytes;
}

std::string lemmaDataPath(const std::string& language) {
  return language == "frf" ? "lemmatizer/frf/lemma" : "lemmatizer/enu/lemma";
}

std::map<QString, QString> StemmerPrivate::getLemDic(std::string language) {
  std::map<QString, QString> dictionary;
  const int fd = openRegularFile(ku::path::findData("dialog", lemmaDataPath(language), false));
  if (fd >= 0) {
    buildDictionary(fd, dictionary);
    ::close(fd);
  }
  return dictionary;
}

}  // namespace ZQ::Dialog
