#ifndef DIALOG_CORPUS_FORMAT_HPP
#define DIALOG_CORPUS_FORMAT_HPP

#include <string>
#include <string_view>
#include <vector>

namespace ZQ::Dialog::corpus {

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

// True when `text` is written unchanged in every format: valid UTF-8 without
// control bytes (below 0x20), '"' or '\\'.
bool isPlainText(std::string_view text);

// Writes one record element by element into `out`, exactly as formatRecord
// writes it whole, so that a long line's elements need not be collected first.
// Keeps a reference to `out`, which the caller may empty between elements.
// Not thread-safe; one record at a time.
class RecordWriter {
 public:
  // Opens the record (the '[' of jsonl).
  RecordWriter(Format format, bool words, std::string& out);
  // Appends the next element, escaped as its format requires.
  void add(std::string_view element);
  // Appends an element for which isPlainText holds, without examining it.
  void addPlain(std::string_view element);
  // Closes the record and ends its line; call once, after the last element.
  void finish();

 private:
  void separate();
  Format format_;
  bool words_;
  bool first_ = true;
  std::string& out_;
};

}  // namespace ZQ::Dialog::corpus

#endif  // DIALOG_CORPUS_FORMAT_HPP
