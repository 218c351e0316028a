#ifndef DIALOG_CORPUS_UTF8_HPP
#define DIALOG_CORPUS_UTF8_HPP

#include <cstddef>
#include <string_view>

namespace ZQ::Dialog::corpus {

// Length of the valid UTF-8 sequence at `text[i]` (i < size), or 0 when none
// starts there: overlong forms, surrogates and code points above U+10FFFF are
// invalid, as for Qt's decoder.
std::size_t utf8SequenceLength(std::string_view text, std::size_t i);

// True when all of `text` is valid UTF-8 (see utf8SequenceLength).
bool isValidUtf8(std::string_view text);

}  // namespace ZQ::Dialog::corpus

#endif  // DIALOG_CORPUS_UTF8_HPP
