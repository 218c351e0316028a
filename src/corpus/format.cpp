#include "corpus/format.hpp"

#include <cstdio>

namespace dialog_corpus {
namespace {

// Length of the valid UTF-8 sequence at `s[i]`, or 0 when it is not one
// (overlong forms, surrogates and code points above U+10FFFF included).
std::size_t utf8Length(const std::string& s, std::size_t i) {
  const auto byte = [&](std::size_t k) { return static_cast<unsigned char>(s[k]); };
  const unsigned char b = byte(i);
  std::size_t n;
  unsigned min, cp;
  if (b < 0x80) return 1;
  if (b >= 0xC2 && b <= 0xDF) {
    n = 2, min = 0x80, cp = b & 0x1F;
  } else if (b >= 0xE0 && b <= 0xEF) {
    n = 3, min = 0x800, cp = b & 0x0F;
  } else if (b >= 0xF0 && b <= 0xF4) {
    n = 4, min = 0x10000, cp = b & 0x07;
  } else {
    return 0;
  }
  if (i + n > s.size()) return 0;
  for (std::size_t k = 1; k < n; ++k) {
    if ((byte(i + k) & 0xC0) != 0x80) return 0;
    cp = (cp << 6) | (byte(i + k) & 0x3F);
  }
  if (cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return 0;
  return n;
}

void appendTsvField(const std::string& text, std::string& out) {
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

}  // namespace

void appendJsonString(const std::string& text, std::string& out) {
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
    } else if (const std::size_t n = utf8Length(text, i)) {
      out.append(text, i, n);
      i += n;
    } else {
      out += "\xEF\xBF\xBD";  // U+FFFD for one byte that starts no valid sequence
      ++i;
    }
  }
  out += '"';
}

void formatRecord(Format format, bool words, const std::vector<std::string>& elements,
                  std::string& out) {
  switch (format) {
    case Format::Lines:
      for (const std::string& element : elements) (out += element) += '\n';
      if (!words) out += '\n';
      return;
    case Format::Tsv:
      for (std::size_t i = 0; i < elements.size(); ++i) {
        if (i) out += '\t';
        appendTsvField(elements[i], out);
      }
      out += '\n';
      return;
    case Format::Jsonl:
      out += '[';
      for (std::size_t i = 0; i < elements.size(); ++i) {
        if (i) out += ',';
        appendJsonString(elements[i], out);
      }
      out += "]\n";
      return;
  }
}

}  // namespace dialog_corpus
