#ifndef DIALOG_CORPUS_FORMAT_HPP
#define DIALOG_CORPUS_FORMAT_HPP

#include <string>
#include <vector>

namespace dialog_corpus {

// How one input line's result is written: the formats of dialog-stem --format.
enum class Format { Lines, Tsv, Jsonl };

// Appends one input line's result to `out` in `format`. `elements` are what
// stem_sentence appended, or (with `words`) the one stemword result.
// lines: one element a line, then an empty line unless `words`;
// tsv: the elements on one line, tab-separated, tab/newline/backslash escaped;
// jsonl: one JSON array of strings; bytes that are not UTF-8 become U+FFFD.
void formatRecord(Format format, bool words, const std::vector<std::string>& elements,
                  std::string& out);

// Appends `text` as a JSON string literal, always valid JSON.
void appendJsonString(const std::string& text, std::string& out);

}  // namespace dialog_corpus

#endif  // DIALOG_CORPUS_FORMAT_HPP
