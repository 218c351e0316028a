#include "segmenter/resource_file.hpp"

#include <cctype>
#include <fstream>

namespace ZQ::Dialog::segmenter {

namespace {

bool isBlank(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }

// MeCab's resource-file name when none is given; looked up in the working directory.
const char kDefaultResourceFile[] = "MECAB_DEFAULT_RC";

// The directory part of a resource file's path: everything before its last "/".
std::string resourceDirectory(const std::string& rcfile) {
  const std::string::size_type slash = rcfile.rfind('/');
  return slash == std::string::npos ? std::string(".") : rcfile.substr(0, slash);
}

}  // namespace

bool ResourceSettings::load(const std::string& path) {
  std::ifstream in(path);
  if (!in) return false;
  std::string line;
  while (std::getline(in, line)) {
    if (line.empty() || line[0] == ';' || line[0] == '#') continue;
    const std::string::size_type equals = line.find('=');
    if (equals == std::string::npos) return false;
    // Blanks around "=" are dropped; the key's leading and the value's
    // trailing blanks are kept, as MeCab keeps them.
    std::string::size_type valueStart = equals + 1;
    while (valueStart < line.size() && isBlank(line[valueStart])) ++valueStart;
    std::string::size_type keyEnd = equals;
    while (keyEnd > 0 && isBlank(line[keyEnd - 1])) --keyEnd;
    values_.emplace(line.substr(0, keyEnd), line.substr(valueStart));
  }
  return true;
}

std::string ResourceSettings::value(const std::string& key) const {
  const auto found = values_.find(key);
  return found == values_.end() ? std::string() : found->second;
}

ResourcePaths resourcePaths(const std::string& dir) {
  ResourcePaths paths;
  paths.rcfile = dir.empty() ? std::string(kDefaultResourceFile) : dir;
  // The dictionary directory follows the resource file's setting, not the
  // file actually read; "$(rcpath)" stands for the resource file's directory.
  paths.dicdirOption = dir.empty() ? std::string(".") : dir;
  paths.dicdir = paths.dicdirOption;
  const std::string::size_type placeholder = paths.dicdir.find("$(rcpath)");
  if (placeholder != std::string::npos) {
    paths.dicdir.replace(placeholder, 9, resourceDirectory(paths.rcfile));
  }
  paths.dicrc = fileInDirectory(paths.dicdir, "dicrc");
  return paths;
}

std::string fileInDirectory(const std::string& dir, const std::string& name) {
  if (dir.empty() || dir.back() == '/') return dir + name;
  return dir + "/" + name;
}

std::vector<std::string> splitDictionaryList(const std::string& list) {
  std::vector<std::string> names;
  std::string::size_type pos = 0;
  while (pos < list.size()) {
    while (pos < list.size() && (list[pos] == ' ' || list[pos] == '\t')) ++pos;
    std::string name;
    if (pos < list.size() && list[pos] == '"') {
      for (++pos; pos < list.size(); ++pos) {
        if (list[pos] == '"') {
          if (pos + 1 < list.size() && list[pos + 1] == '"') {
            ++pos;
          } else {
            ++pos;
            break;
          }
        }
        name += list[pos];
      }
      // Anything between the closing quote and the next comma is ignored.
      pos = list.find(',', pos);
    } else {
      const std::string::size_type comma = list.find(',', pos);
      name = list.substr(pos, comma == std::string::npos ? std::string::npos : comma - pos);
      pos = comma;
    }
    names.push_back(name);
    if (pos == std::string::npos) break;
    ++pos;  // past the comma; a comma at the very end starts no further name
  }
  return names;
}

}  // namespace ZQ::Dialog::segmenter
