#include "corpus/format.hpp"

#include <cstdio>

#include "corpus/utf8.hpp"

namespace ZQ::Dialog::corpus {
namespace {

void appendTsvField(std::string_view text, std::string& out) {
  for (const char c : text) {
    if (c == '\t')
      out += "\\t";
    else if (c == '\n')
      out += "\\n";
    else if (c == '\\')
      out += "\\\\";
    else
      out += c;
  }
}

void appendJson(std::string_view text, std::string& out) {
  out += '"';
  for (std::size_t i = 0; i < text.size();) {
    const unsigned char c = static_cast<unsigned char>(text[i]);
    if (c == '"' || c == '\\') {
      out += '\\';
      out += static_cast<char>(c);
      ++i;
    } else if (c < 0x20) {
      char escaped[8];
      std::snprintf(escaped, sizeof escaped, "\\u%04x", c);
      out += escaped;
      ++i;
    } else if (const std::size_t n = utf8SequenceLength(text, i)) {
      out.append(text, i, n);
      i += n;
    } else {
      out += "\xEF\xBF\xBD";  // U+FFFD for one byte that starts no valid sequence
      ++i;
    }
  }
  out += '"';
}

}  // namespace

void appendJsonString(const std::string& text, std::string& out) { appendJson(text, out); }

bool isPlainText(std::string_view text) {
  for (const char c : text)
    if (static_cast<unsigned char>(c) < 0x20 || c == '"' || c == '\\') return false;
  return isValidUtf8(text);
}

RecordWriter::RecordWriter(Format format, bool words, std::string& out)
    : format_(format), words_(words), out_(out) {
  if (format_ == Format::Jsonl) out_ += '[';
}

void RecordWriter::separate() {
  if (first_) {
    first_ = false;
  } else if (format_ == Format::Tsv) {
    out_ += '\t';
  } else if (format_ == Format::Jsonl) {
    out_ += ',';
  }
}

void RecordWriter::add(std::string_view element) {
  separate();
  switch (format_) {
    case Format::Lines:
      (out_ += element) += '\n';
      return;
    case Format::Tsv:
      appendTsvField(element, out_);
      return;
    case Format::Jsonl:
      appendJson(element, out_);
      return;
  }
}

void RecordWriter::addPlain(std::string_view element) {
  separate();
  if (format_ == Format::Jsonl) {
    ((out_ += '"') += element) += '"';
  } else {
    out_ += element;
    if (format_ == Format::Lines) out_ += '\n';
  }
}

void RecordWriter::finish() {
  if (format_ == Format::Jsonl)
    out_ += "]\n";
  else if (format_ == Format::Tsv || !words_)
    out_ += '\n';
}

void formatRecord(Format format, bool words, const std::vector<std::string>& elements,
                  std::string& out) {
  RecordWriter record(format, words, out);
  for (const std::string& element : elements) record.add(element);
  record.finish();
}

}  // namespace ZQ::Dialog::corpus
