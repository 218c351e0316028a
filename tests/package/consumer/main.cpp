// A tiny program built against the installed package: stems a word and a
// sentence with the lemma file that KU_PREFIX_PATH points at.
#include <iostream>
#include <string>
#include <vector>

#include <ku/log.hpp>
#include <ku/path.hpp>
#include <stemmer/stemmer.hpp>

int main() {
  if (ku::path::findData("dialog", "lemmatizer/enu/lemma").empty()) {
    std::cerr << "consumer: no lemma file found\n";
    return 1;
  }
  ZQ::Dialog::Stemmer english("enu");
  std::string word = "went";
  std::string result;
  english.stemword(word, result);
  std::vector<std::string> stems;
  english.stem_sentence("the children went", stems);
  for (const std::string& stem : stems) result += " " + stem;
  std::cout << result << "\n";
  return result == "go the child go" ? 0 : 1;
}
