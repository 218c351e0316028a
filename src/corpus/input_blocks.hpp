#ifndef DIALOG_CORPUS_INPUT_BLOCKS_HPP
#define DIALOG_CORPUS_INPUT_BLOCKS_HPP

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace ZQ::Dialog::corpus {

// Reads a file descriptor in blocks of whole lines: large blocks while input
// keeps coming, and at once whatever complete lines have arrived when no more
// is ready, so that a person or a coprocess gets each answer without waiting.
// Not thread-safe; one reader per descriptor.
class InputBlocks {
 public:
  // A block grows to about this size while more input is ready at once.
  static constexpr std::size_t kBlockBytes = std::size_t{1} << 18;

  // Reads `fd` (left open) and stops at a line longer than `maxLineBytes`.
  InputBlocks(int fd, std::size_t maxLineBytes);

  // Replaces `block` with the next lines, each with its '\n' (the input's last
  // line may lack it), never splitting a line. False when no line is left or
  // the next one is too long (tooLong() then says which). A failed read throws
  // std::system_error ("cannot read standard input").
  bool next(std::string& block);

  // After each block next() hands out, calls `observer` with the bytes and
  // lines handed out so far (e.g. to report progress); replaces any before.
  void observe(std::function<void(std::uint64_t bytes, std::uint64_t lines)> observer) {
    observer_ = std::move(observer);
  }

  // The number of the line over the limit that ended the input, else 0.
  std::size_t tooLong() const { return tooLong_; }

 private:
  // Appends what one read(2) gives; sets end_ at the end of the input.
  void readMore(std::string& block);
  // True when a read would not wait (more input, its end, or an error).
  bool ready() const;

  int fd_;
  std::size_t maxLineBytes_;
  std::string pending_;      // read after the last line end handed out
  std::size_t lines_ = 0;    // lines handed out
  std::uint64_t bytes_ = 0;  // bytes handed out
  std::function<void(std::uint64_t, std::uint64_t)> observer_;
  std::size_t tooLong_ = 0;  // see tooLong()
  bool end_ = false;
};

// Calls `use(line)` for every line of `text` as dialog-stem reads its input:
// a line ends at '\n' or at the end of `text` (empty text: no line), and one
// '\r' before that end is dropped.
template <typename Use>
void forEachLine(std::string_view text, Use&& use) {
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    use(line);
  }
}

}  // namespace ZQ::Dialog::corpus

#endif  // DIALOG_CORPUS_INPUT_BLOCKS_HPP
