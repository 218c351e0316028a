#include "stemmer/stemmer.hpp"

#include "stemmer/stemmer_p.hpp"

namespace ZQ::Dialog {

Stemmer::Stemmer(const std::string& code) : language(), impl(nullptr) {
  language = code;
  // The implementation gets a copy of the member, not of the argument.
  impl = new StemmerPrivate(language);
}

Stemmer::~Stemmer() { delete impl; }

// Copying a string and a pointer is already safe when `other` is this handle.
Stemmer& Stemmer::operator=(const Stemmer& other) {  // NOLINT(bugprone-unhandled-self-assignment)
  // Shallow on purpose: the handles share one implementation from now on, and
  // the one this handle held is left alone.
  language = other.language;
  impl = other.impl;
  return *this;
}

void Stemmer::stem_sentence(const std::string& sentence, std::vector<std::string>& stems) {
  impl->stem_sentence(sentence, stems);
}

std::size_t lemmaPairs(const Stemmer& stemmer) { return stemmer.impl->lemDic.size(); }

bool taggerOpened(const Stemmer& stemmer) { return stemmer.impl->tagger != nullptr; }

}  // namespace ZQ::Dialog
