#include "corpus/input_blocks.hpp"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace ZQ::Dialog::corpus {

InputBlocks::InputBlocks(int fd, std::size_t maxLineBytes) : fd_(fd), maxLineBytes_(maxLineBytes) {}

bool InputBlocks::ready() const {
  pollfd watch{fd_, POLLIN, 0};
  return ::poll(&watch, 1, 0) != 0;
}

void InputBlocks::readMore(std::string& block) {
  const std::size_t old = block.size();
  block.resize(old + kBlockBytes);
  ssize_t n;
  do {
    n = ::read(fd_, &block[old], kBlockBytes);
  } while (n < 0 && errno == EINTR);
  const int error = errno;
  block.resize(old + static_cast<std::size_t>(n < 0 ? 0 : n));
  if (n < 0) throw std::system_error(error, std::generic_category(), "cannot read standard input");
  end_ = n == 0;
}

bool InputBlocks::next(std::string& block) {
  block.swap(pending_);
  // A buffer that held one very long line is not kept for the short ones after it.
  if (pending_.capacity() > 4 * kBlockBytes) std::string().swap(pending_);
  pending_.clear();
  std::size_t start = 0;    // where the line being read starts
  std::size_t scanned = 0;  // bytes of `block` searched for line ends
  // Whether the line from `start` to `end` is too long; the '\r' of a "\r\n"
  // is no part of it.
  const auto tooLongAt = [&](std::size_t end) {
    std::size_t length = end - start;
    if (length && block[end - 1] == '\r') --length;
    return length > maxLineBytes_;
  };
  while (!tooLong_) {
    for (std::size_t end; (end = block.find('\n', scanned)) != std::string::npos;) {
      if (tooLongAt(end)) {
        tooLong_ = lines_ + 1;
        break;
      }
      ++lines_;
      start = scanned = end + 1;
    }
    scanned = block.size();
    // Even a '\r' at its end would leave this line too long.
    if (!tooLong_ && block.size() - start > maxLineBytes_ + 1) tooLong_ = lines_ + 1;
    if (tooLong_) break;
    if (end_) {
      if (start == block.size()) break;
      if (tooLongAt(block.size())) {
        tooLong_ = lines_ + 1;
      } else {
        ++lines_;
        start = block.size();
      }
      break;
    }
    if (start > 0 && (block.size() >= kBlockBytes || !ready())) break;
    readMore(block);
  }
  if (!tooLong_) pending_.assign(block, start, std::string::npos);
  block.resize(start);
  bytes_ += start;
  if (observer_ && start > 0) observer_(bytes_, lines_);
  return start > 0;
}

}  // namespace ZQ::Dialog::corpus
