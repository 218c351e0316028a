#include "segmenter/trail.hpp"

namespace ZQ::Dialog::segmenter {

void Trail::announce(const std::string& dir) {
  write("[" + dir + "]");
  write("load_dictionary_resource\n");
}

void Trail::resourceFile(const std::string& dicrc) { write("dicdir : " + dicrc); }

void Trail::dictionaryVersion(std::uint32_t version) {
  write("\n version_ " + std::to_string(version));
}

void Trail::resourcesFailed(const std::string& error) { write("ModelImpl::open " + error + "\n"); }

void Trail::analyserFailed(const std::string& error) { write("ModelImpl::open  " + error); }

// fwrite rather than fputs: a directory name may hold any byte, even a zero.
void Trail::write(const std::string& text) { std::fwrite(text.data(), 1, text.size(), out_); }

}  // namespace ZQ::Dialog::segmenter
