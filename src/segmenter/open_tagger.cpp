#include "segmenter/open_tagger.hpp"

#include <utility>
#include <vector>

#include "segmenter/dictionary_header.hpp"
#include "segmenter/resource_file.hpp"
#include "segmenter/trail.hpp"

namespace ZQ::Dialog::segmenter {

namespace {

// An argument vector for MeCab's option parser, which wants mutable C strings.
// One word per option, so that blanks in paths survive.
class Arguments {
 public:
  explicit Arguments(std::vector<std::string> words) : words_(std::move(words)) {
    for (std::string& word : words_) pointers_.push_back(word.data());
    pointers_.push_back(nullptr);
  }
  Arguments(const Arguments&) = delete;
  Arguments& operator=(const Arguments&) = delete;

  int count() const { return static_cast<int>(words_.size()); }
  char** values() { return pointers_.data(); }

 private:
  std::vector<std::string> words_;
  std::vector<char*> pointers_;
};

const char kProgramName[] = "dialog-stemmer";

// A failed tagger creation reports nothing: MeCab overwrites the model's error
// with the tagger's empty one. Opening the model alone keeps the cause. (MeCab
// 0.996 itself loses the object of a system or user dictionary it rejects.)
std::string modelError(Arguments& arguments) {
  MeCab::Model* model = MeCab::createModel(arguments.count(), arguments.values());
  std::string error = MeCab::getLastError();
  MeCab::deleteModel(model);  // null, unless the files changed in between
  return error;
}

// MeCab has no call that clears its process-wide error text. A tagger creation
// that fails on an unknown option stores the tagger's empty error there, and
// reads no file on the way.
void clearLastError() {
  Arguments arguments({kProgramName, "--dialog-clear-error"});
  MeCab::deleteTagger(MeCab::createTagger(arguments.count(), arguments.values()));
}

// MeCab opens its output writer before the analyser; the writer fails only on
// an output format type that has no node format of its own.
bool writerFails(const ResourceSettings& settings) {
  const std::string type = settings.value("output-format-type");
  if (type.empty() || type == "wakati" || type == "none" || type == "dump" || type == "em") {
    return false;
  }
  return settings.value("node-format-" + type).empty();
}

// MeCab keeps at most this many characters of an error text.
constexpr std::size_t kErrorTextLimit = 255;

// MeCab joins the analyser's error and the writer's with a blank; the writer's
// is empty whenever the analyser got to run. A text cut at the limit has lost
// that blank already.
std::string analyserError(const std::string& joined, bool writerFailed) {
  if (writerFailed) return std::string();
  if (!joined.empty() && joined.size() < kErrorTextLimit && joined.back() == ' ') {
    return joined.substr(0, joined.size() - 1);
  }
  return joined;
}

// Writes the trail of a failed open: how far MeCab got, then its error.
void reportFailure(Trail& trail, const ResourcePaths& paths, const std::string& error) {
  ResourceSettings settings;
  if (!settings.load(paths.rcfile)) {
    trail.resourcesFailed(error);
    return;
  }
  trail.resourceFile(paths.dicrc);
  if (!settings.load(paths.dicrc)) {
    trail.resourcesFailed(error);
    return;
  }
  const bool writerFailed = writerFails(settings);
  if (!writerFailed) {
    const std::vector<std::string> users = splitDictionaryList(settings.value("userdic"));
    for (const std::uint32_t version : announcedVersions(paths.dicdir, users)) {
      trail.dictionaryVersion(version);
    }
  }
  trail.analyserFailed(analyserError(error, writerFailed));
}

}  // namespace

MeCab::Tagger* openTagger(const std::string& dir, std::FILE* out) {
  Trail trail(out);
  trail.announce(dir);

  const ResourcePaths paths = resourcePaths(dir);
  Arguments arguments({kProgramName, "--rcfile=" + paths.rcfile, "--dicdir=" + paths.dicdirOption});
  MeCab::Tagger* tagger = MeCab::createTagger(arguments.count(), arguments.values());
  if (tagger != nullptr) {
    trail.resourceFile(paths.dicrc);
    // "unk.dic" opened, so it has the one version MeCab accepts; MeCab lists
    // the system and user dictionaries itself.
    trail.dictionaryVersion(kDictionaryVersion);
    for (const MeCab::DictionaryInfo* info = tagger->dictionary_info(); info != nullptr;
         info = info->next) {
      trail.dictionaryVersion(info->version);
    }
    return tagger;
  }

  const std::string error = modelError(arguments);
  clearLastError();
  reportFailure(trail, paths, error);
  return nullptr;
}

}  // namespace ZQ::Dialog::segmenter
