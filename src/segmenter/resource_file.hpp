#ifndef DIALOG_STEMMER_SEGMENTER_RESOURCE_FILE_HPP
#define DIALOG_STEMMER_SEGMENTER_RESOURCE_FILE_HPP

#include <map>
#include <string>
#include <vector>

namespace ZQ::Dialog::segmenter {

// Settings read from MeCab resource files ("key = value" lines, as in "dicrc"),
// by MeCab's own rules, so that the trail can tell where MeCab stopped.
class ResourceSettings {
 public:
  // Reads `path`; a key that is already set keeps its value. False exactly
  // when MeCab rejects the file: it cannot be opened, or a line that is
  // neither empty nor a comment (";" or "#") has no "=".
  bool load(const std::string& path);
  // The value of `key`, or "" when no file set it.
  std::string value(const std::string& key) const;

 private:
  std::map<std::string, std::string> values_;
};

// Where MeCab reads the resources when one directory is both its resource file
// and its dictionary directory (an empty one meaning "MECAB_DEFAULT_RC" and ".").
struct ResourcePaths {
  std::string rcfile;        // read first
  std::string dicdirOption;  // the dictionary directory as handed to MeCab
  std::string dicdir;        // the same once MeCab has expanded "$(rcpath)"
  std::string dicrc;         // dicdir's "dicrc", read second
};
ResourcePaths resourcePaths(const std::string& dir);

// `name` inside `dir`, with a "/" between them unless `dir` is empty or ends in one.
std::string fileInDirectory(const std::string& dir, const std::string& name);

// The files of a `userdic` setting: comma-separated, blanks before a name
// skipped, a name in double quotes may hold commas ("" for a quote).
std::vector<std::string> splitDictionaryList(const std::string& list);

}  // namespace ZQ::Dialog::segmenter

#endif  // DIALOG_STEMMER_SEGMENTER_RESOURCE_FILE_HPP
