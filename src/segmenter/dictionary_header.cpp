#include "segmenter/dictionary_header.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>

#include "segmenter/resource_file.hpp"

namespace ZQ::Dialog::segmenter {

namespace {

constexpr std::uint32_t kDictionaryMagic = 0xef718f77u;
constexpr std::size_t kHeaderBytes = 10 * 4 + 32;
// MeCab rejects a dictionary file shorter than this before reading anything.
constexpr std::uint64_t kMinimumDictionaryBytes = 100;
constexpr std::uint32_t kSystemDictionary = 0;
constexpr std::uint32_t kUserDictionary = 1;

// A regular, non-empty file opened for reading; MeCab maps its files, which
// fails for empty files and directories.
class InputFile {
 public:
  explicit InputFile(const std::string& path) : fd_(::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
    struct stat info {};
    if (fd_ >= 0 && ::fstat(fd_, &info) == 0 && S_ISREG(info.st_mode) && info.st_size > 0) {
      size_ = static_cast<std::uint64_t>(info.st_size);
    }
  }
  ~InputFile() {
    if (fd_ >= 0) ::close(fd_);
  }
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  bool usable() const { return size_ > 0; }
  std::uint64_t size() const { return size_; }
  // Reads `count` bytes from the start; false when the file is shorter.
  bool readStart(unsigned char* buffer, std::size_t count) const {
    std::size_t done = 0;
    while (done < count) {
      const ssize_t got = ::pread(fd_, buffer + done, count - done, static_cast<off_t>(done));
      if (got <= 0) return false;
      done += static_cast<std::size_t>(got);
    }
    return true;
  }

 private:
  int fd_;
  std::uint64_t size_ = 0;
};

std::uint32_t littleEndian32(const unsigned char* bytes) {
  return static_cast<std::uint32_t>(bytes[0]) | static_cast<std::uint32_t>(bytes[1]) << 8 |
         static_cast<std::uint32_t>(bytes[2]) << 16 | static_cast<std::uint32_t>(bytes[3]) << 24;
}

// MeCab compares charsets by the encoding they name, whatever the spelling;
// names it does not know count as UTF-8.
std::string encodingOf(const std::string& charset) {
  std::string name;
  for (const char c : charset) {
    if (c != '-' && c != '_')
      name += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  }
  if (name == "sjis" || name == "shiftjis" || name == "cp932") return "cp932";
  if (name == "euc" || name == "eucjp") return "eucjp";
  if (name == "utf16" || name == "utf16be" || name == "utf16le" || name == "ascii") return name;
  return "utf8";
}

bool compatible(const DictionaryHeader& system, const DictionaryHeader& user) {
  return system.version == user.version && system.leftSize == user.leftSize &&
         system.rightSize == user.rightSize &&
         encodingOf(system.charset) == encodingOf(user.charset);
}

}  // namespace

DictionaryCheck checkDictionary(const std::string& path) {
  DictionaryCheck check;
  const InputFile file(path);
  if (!file.usable() || file.size() < kMinimumDictionaryBytes) return check;
  std::array<unsigned char, kHeaderBytes> bytes{};
  if (!file.readStart(bytes.data(), bytes.size())) return check;

  DictionaryHeader& header = check.header;
  std::uint32_t* const fields[] = {&header.magic,       &header.version,   &header.type,
                                   &header.lexiconSize, &header.leftSize,  &header.rightSize,
                                   &header.arraySize,   &header.tokenSize, &header.featureSize,
                                   &header.reserved};
  for (std::size_t i = 0; i < std::size(fields); ++i) *fields[i] = littleEndian32(&bytes[i * 4]);
  const auto* name = reinterpret_cast<const char*>(&bytes[40]);
  header.charset.assign(name, std::find(name, name + 32, '\0'));

  // The magic number is the file's length scrambled with a constant.
  if ((header.magic ^ kDictionaryMagic) != file.size()) return check;
  check.headerRead = true;
  const std::uint64_t expected =
      std::uint64_t{kHeaderBytes} + header.arraySize + header.tokenSize + header.featureSize;
  check.intact = header.version == kDictionaryVersion && expected == file.size();
  return check;
}

bool checkCharProperty(const std::string& path) {
  const InputFile file(path);
  unsigned char count[4];
  if (!file.usable() || !file.readStart(count, sizeof count)) return false;
  // A category count, 32 bytes per category name, then one 32-bit entry per UCS-2 code point.
  return file.size() == 4 + 32 * std::uint64_t{littleEndian32(count)} + 4 * std::uint64_t{0xffff};
}

std::vector<std::uint32_t> announcedVersions(const std::string& dicdir,
                                             const std::vector<std::string>& userDictionaries) {
  std::vector<std::uint32_t> versions;
  const DictionaryCheck unknown = checkDictionary(fileInDirectory(dicdir, "unk.dic"));
  if (unknown.headerRead) versions.push_back(unknown.header.version);
  if (!unknown.intact || !checkCharProperty(fileInDirectory(dicdir, "char.bin"))) return versions;

  const DictionaryCheck system = checkDictionary(fileInDirectory(dicdir, "sys.dic"));
  if (system.headerRead) versions.push_back(system.header.version);
  if (!system.intact || system.header.type != kSystemDictionary) return versions;

  // User dictionaries are named as they are, not inside dicdir.
  for (const std::string& path : userDictionaries) {
    const DictionaryCheck user = checkDictionary(path);
    if (user.headerRead) versions.push_back(user.header.version);
    if (!user.intact || user.header.type != kUserDictionary ||
        !compatible(system.header, user.header)) {
      break;
    }
  }
  return versions;
}

}  // namespace ZQ::Dialog::segmenter
