#ifndef DIALOG_STEMMER_SEGMENTER_TRAIL_HPP
#define DIALOG_STEMMER_SEGMENTER_TRAIL_HPP

#include <cstdint>
#include <cstdio>
#include <string>

namespace ZQ::Dialog::segmenter {

// The progress text written while a tagger opens. Callers and tools read it
// byte for byte, so every piece is written exactly as given, with no flushing.
class Trail {
 public:
  explicit Trail(std::FILE* out) : out_(out) {}

  // "[" dir "]", then "load_dictionary_resource\n".
  void announce(const std::string& dir);
  // "dicdir : " dicrc, no line end.
  void resourceFile(const std::string& dicrc);
  // "\n version_ " version, for one dictionary file that passed its header checks.
  void dictionaryVersion(std::uint32_t version);
  // The resource files could not be loaded: "ModelImpl::open " error "\n".
  void resourcesFailed(const std::string& error);
  // The writer or the analyser failed: "ModelImpl::open  " error, no line end.
  void analyserFailed(const std::string& error);

 private:
  void write(const std::string& text);

  std::FILE* out_;
};

}  // namespace ZQ::Dialog::segmenter

#endif  // DIALOG_STEMMER_SEGMENTER_TRAIL_HPP
