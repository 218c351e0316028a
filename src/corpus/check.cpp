#include "corpus/check.hpp"

#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "corpus/stdout_to_stderr.hpp"
#include "ku/path.hpp"
#include "stemmer/internals.hpp"
#include "stemmer/stemmer.hpp"

namespace ZQ::Dialog::corpus {

std::string lemmaFileProblem(const std::string& language) {
  const std::string path = ku::path::findData("dialog", lemmaDataPath(language), false);
  if (path.empty()) return "no " + language + " lemma file";
  std::error_code error;
  // The library never opens FIFOs, sockets or devices, which could block it.
  if (!std::filesystem::is_regular_file(path, error))
    return "the " + language + " lemma file " + path + " is not a regular file";
  if (access(path.c_str(), R_OK) != 0)
    return "the " + language + " lemma file " + path + " cannot be read";
  return "";
}

int runCheck(const std::string& language) {
  const bool japanese = language == "jpj";
  const std::string relative = japanese ? "data/ipadic/" : lemmaDataPath(language);
  const std::string found = ku::path::findData("dialog", relative, false);
  std::printf("data \"%s\" of package \"dialog\", looked for in this order:\n", relative.c_str());
  for (const std::string& candidate : ku::path::dataCandidates("dialog", relative, false))
    std::printf("  %s %s\n", candidate == found ? "found  " : "missing", candidate.c_str());
  if (found.empty()) {
    std::printf("%s: not found\n", japanese ? "dictionary directory" : "lemma file");
    return 1;
  }
  if (japanese) {
    bool opens;
    {
      const StdoutToStderr trail;  // the segmenter reports its progress on stdout
      opens = taggerOpened(Stemmer(language));
    }
    std::printf("dictionary directory %s: %s\n", found.c_str(),
                opens ? "opens" : "does not open (see the trail above)");
    return opens ? 0 : 1;
  }
  if (const std::string problem = lemmaFileProblem(language); !problem.empty()) {
    std::printf("%s\n", problem.c_str());
    return 1;
  }
  const Stemmer stemmer(language);
  std::printf("lemma file %s: %zu pairs\n", found.c_str(), lemmaPairs(stemmer));
  return 0;
}

}  // namespace ZQ::Dialog::corpus
