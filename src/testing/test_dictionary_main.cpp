// dialog-test-dictionary DIR ipadic|unidic|third: writes the support library's
// tiny compiled MeCab dictionary of that layout ("third": of neither) into DIR,
// so that the Python tests use the same dictionaries as the C++ ones.
#include <cstdio>
#include <exception>
#include <map>
#include <string>

#include "testing/mecab.hpp"

int main(int argc, char** argv) {
  using ZQ::Dialog::testing::Layout;
  const std::map<std::string, Layout> layouts = {
      {"ipadic", Layout::kIpadic}, {"unidic", Layout::kUnidic}, {"third", Layout::kOther}};
  if (argc != 3 || layouts.count(argv[2]) == 0) {
    std::fputs("usage: dialog-test-dictionary DIR ipadic|unidic|third\n", stderr);
    return 2;
  }
  try {
    ZQ::Dialog::testing::installDictionary(argv[1], layouts.at(argv[2]));
  } catch (const std::exception& error) {
    std::fprintf(stderr, "dialog-test-dictionary: %s\n", error.what());
    return 1;
  }
  return 0;
}
