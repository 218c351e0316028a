#include "py_stemmer.hpp"

#include <algorithm>
#include <map>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

#include "corpus/check.hpp"
#include "corpus/line_stemmer.hpp"
#include "corpus/stdout_to_stderr.hpp"
#include "ku/path.hpp"
#include "stemmer/internals.hpp"

namespace py = pybind11;

namespace {

// Sentences stemmed per release of the GIL: other threads run between
// chunks, and the elements waiting to become str objects stay few.
constexpr std::size_t kChunk = 1024;

// The str objects of elements, each distinct element made once: text is
// Zipfian, so most elements reuse an object made before. Emptied when full,
// so that it follows the text at hand. Used with the GIL held.
class StrCache {
 public:
  // A new reference to the str of `text`; throws error_already_set when
  // `text` is not UTF-8 (the library returns UTF-8 for UTF-8 input).
  PyObject* get(const std::string& text) {
    const auto found = made_.find(text);
    if (found != made_.end()) return found->second.inc_ref().ptr();
    PyObject* str =
        PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), nullptr);
    if (!str) throw py::error_already_set();
    if (made_.size() == kMaxEntries) made_.clear();
    made_.emplace(text, py::reinterpret_borrow<py::object>(str));
    return str;
  }

  // A new list of elements[begin, end).
  py::list list(const std::vector<std::string>& elements, std::size_t begin, std::size_t end) {
    py::list stems(end - begin);
    for (std::size_t i = begin; i < end; ++i)
      PyList_SET_ITEM(stems.ptr(), static_cast<Py_ssize_t>(i - begin), get(elements[i]));
    return stems;
  }

 private:
  static constexpr std::size_t kMaxEntries = 1 << 16;
  std::unordered_map<std::string, py::object> made_;
};

// The UTF-8 bytes of the str `text`, kept in the str object itself.
std::string_view utf8View(py::handle text) {
  if (!PyUnicode_Check(text.ptr()))
    throw py::type_error(std::string("expected str, got ") + Py_TYPE(text.ptr())->tp_name);
  Py_ssize_t size = 0;
  const char* data = PyUnicode_AsUTF8AndSize(text.ptr(), &size);
  if (!data) throw py::error_already_set();
  return {data, static_cast<std::size_t>(size)};
}

ZQ::Dialog::corpus::Format parseFormat(const std::string& name) {
  if (name == "lines") return ZQ::Dialog::corpus::Format::Lines;
  if (name == "tsv") return ZQ::Dialog::corpus::Format::Tsv;
  if (name == "jsonl") return ZQ::Dialog::corpus::Format::Jsonl;
  throw py::value_error("unknown format '" + name + "': expected 'lines', 'tsv' or 'jsonl'");
}

// A contiguous buffer of a bytes-like object, held until destroyed (with the
// GIL): a bytearray cannot be resized meanwhile.
class ByteView {
 public:
  explicit ByteView(py::handle data) {
    if (PyUnicode_Check(data.ptr()))
      throw py::type_error("expected bytes, got str: encode it, or read the file in binary mode");
    if (PyObject_GetBuffer(data.ptr(), &view_, PyBUF_SIMPLE) != 0) throw py::error_already_set();
  }
  ~ByteView() { PyBuffer_Release(&view_); }
  ByteView(const ByteView&) = delete;
  ByteView& operator=(const ByteView&) = delete;
  std::string_view text() const {
    return {static_cast<const char*>(view_.buf), static_cast<std::size_t>(view_.len)};
  }

 private:
  Py_buffer view_{};
};

// The tool's warning, through logging, when the lemma file gives no words.
void warnWithoutLemmas(const std::string& language) {
  if (language != "enu" && language != "frf") return;
  std::string problem = ZQ::Dialog::corpus::lemmaFileProblem(language);
  if (problem.empty()) return;
  const std::string relative = ZQ::Dialog::lemmaDataPath(language);
  if (ku::path::findData("dialog", relative, false).empty()) {
    std::string places;
    for (const std::string& candidate : ku::path::dataCandidates("dialog", relative, false))
      places += (places.empty() ? "" : ", ") + candidate;
    problem += " (looked for " + places + ")";
  }
  py::module_::import("logging")
      .attr("getLogger")("dialog_stemmer")
      .attr("warning")("%s: words come back unchanged", problem);
}

using ZQ::Dialog::corpus::MorphemeDictionary;
using ZQ::Dialog::corpus::MorphemeStemmer;

// The dictionary `name`, shared with every stemmer that holds it already:
// one MeCab model per process and directory. Called with the GIL held, which
// guards the table; opens without it.
std::shared_ptr<const MorphemeDictionary> openDictionary(const std::string& name) {
  if (!MorphemeDictionary::knownName(name))
    throw py::value_error("unknown dictionary '" + name + "': expected 'ipadic' or 'unidic'");
  static std::map<std::string, std::weak_ptr<const MorphemeDictionary>> opened;
  const std::string relative = "data/" + name + "/";
  const std::string directory = ku::path::findData("dialog", relative);
  if (auto shared = opened[directory].lock()) return shared;
  std::shared_ptr<const MorphemeDictionary> dictionary;
  std::string error;
  {
    py::gil_scoped_release release;
    dictionary = MorphemeDictionary::open(name, error);
  }
  if (!dictionary) {
    PyErr_SetString(directory.empty() ? PyExc_FileNotFoundError : PyExc_RuntimeError,
                    error.c_str());
    throw py::error_already_set();
  }
  opened[directory] = dictionary;
  return dictionary;
}

}  // namespace

// What one call stems with: a LineStemmer or a MorphemeStemmer (used without
// the GIL) and a StrCache (used with it), keeping their caches from call to call.
struct Workspace {
  explicit Workspace(ZQ::Dialog::Stemmer& stemmer)
      : stemmer(std::in_place_type<ZQ::Dialog::corpus::LineStemmer>, stemmer) {}
  explicit Workspace(std::shared_ptr<const MorphemeDictionary> dictionary)
      : stemmer(std::in_place_type<MorphemeStemmer>, std::move(dictionary)) {}
  // Calls `use(stemmer)` with the stemmer of this workspace.
  template <typename Use>
  void with(Use&& use) {
    std::visit(use, stemmer);
  }
  std::variant<ZQ::Dialog::corpus::LineStemmer, MorphemeStemmer> stemmer;
  StrCache strs;
};

// A workspace for one call: an idle one, else a new one; handed back when the
// lease ends (with the GIL held), unless enough are idle already.
class PyStemmer::Lease {
 public:
  explicit Lease(const PyStemmer& owner) : owner_(owner) {
    if (!owner.idle_.empty()) {
      workspace_ = std::move(owner.idle_.back());
      owner.idle_.pop_back();
    } else if (owner.dictionary_) {
      workspace_ = std::make_unique<Workspace>(owner.dictionary_);
    } else {
      workspace_ = std::make_unique<Workspace>(*owner.stemmer_);
    }
  }
  ~Lease() {
    if (owner_.idle_.size() < kMaxIdle) owner_.idle_.push_back(std::move(workspace_));
  }
  Lease(const Lease&) = delete;
  Lease& operator=(const Lease&) = delete;
  Workspace* operator->() const { return workspace_.get(); }

 private:
  static constexpr std::size_t kMaxIdle = 4;
  const PyStemmer& owner_;
  std::unique_ptr<Workspace> workspace_;
};

PyStemmer::PyStemmer(PyStemmer&&) noexcept = default;
PyStemmer::~PyStemmer() = default;

std::string utf8(py::handle text) { return std::string(utf8View(text)); }

void rejectSingleText(py::handle items, const char* function) {
  PyObject* const p = items.ptr();
  if (PyUnicode_Check(p) || PyBytes_Check(p) || PyByteArray_Check(p) || PyMemoryView_Check(p))
    throw py::type_error(std::string(function) + "() expects a sequence of str, got one " +
                         Py_TYPE(p)->tp_name + ": wrap it in a list");
}

PyStemmer::PyStemmer(const py::str& code, bool morphemes, const py::object& dictionary)
    : language_(utf8(code)) {
  if (!morphemes) {
    if (!dictionary.is_none())
      throw py::value_error("dictionary= needs morphemes=True: the library's stemmers use none");
    if (language_ == "jpj") {
      // The segmenter writes its progress to C's stdout while it opens.
      const ZQ::Dialog::corpus::StdoutToStderr guard;
      stemmer_ = std::make_unique<ZQ::Dialog::Stemmer>(language_);
    } else {
      stemmer_ = std::make_unique<ZQ::Dialog::Stemmer>(language_);
      warnWithoutLemmas(language_);
    }
    return;
  }
  if (language_ != "jpj")
    throw py::value_error("morphemes=True needs the code 'jpj', got '" + language_ + "'");
  // The tool's default dictionary.
  dictionaryName_ = dictionary.is_none() ? "ipadic" : utf8(dictionary);
  dictionary_ = openDictionary(dictionaryName_);
}

std::string PyStemmer::stemword(const py::str& word) const {
  if (morphemes())
    throw py::value_error("stemword has no morpheme mode: use stem_sentence, one word a sentence");
  std::string form = utf8(word), result;
  stemmer_->stemword(form, result);
  return result;
}

py::list PyStemmer::stemSentence(const py::str& sentence) const {
  const std::string text = utf8(sentence);
  std::vector<std::string> elements;
  const Lease workspace(*this);
  {
    py::gil_scoped_release release;
    workspace->with([&](auto& stemmer) { stemmer.stemSentence(text, elements); });
  }
  return workspace->strs.list(elements, 0, elements.size());
}

py::list PyStemmer::stemSentences(const py::handle& sentences) const {
  rejectSingleText(sentences, "stem_sentences");
  // References of our own: the caller's list may change while the GIL is out.
  const auto items = py::reinterpret_steal<py::tuple>(PySequence_Tuple(sentences.ptr()));
  if (!items) throw py::error_already_set();
  const std::size_t count = items.size();
  std::vector<std::string_view> texts(count);
  for (std::size_t i = 0; i < count; ++i) texts[i] = utf8View(items[i]);

  py::list results(count);
  const Lease workspace(*this);
  std::vector<std::string> elements;
  std::vector<std::size_t> ends;
  std::string text;
  for (std::size_t first = 0; first < count; first += kChunk) {
    const std::size_t last = std::min(count, first + kChunk);
    elements.clear();
    ends.clear();
    {
      py::gil_scoped_release release;
      workspace->with([&](auto& stemmer) {
        for (std::size_t i = first; i < last; ++i) {
          text.assign(texts[i]);
          stemmer.stemSentence(text, elements);
          ends.push_back(elements.size());
        }
      });
    }
    for (std::size_t i = first, begin = 0; i < last; begin = ends[i - first], ++i)
      PyList_SET_ITEM(results.ptr(), static_cast<Py_ssize_t>(i),
                      workspace->strs.list(elements, begin, ends[i - first]).release().ptr());
  }
  return results;
}

py::bytes PyStemmer::stemText(const py::handle& data, const std::string& format, bool words) const {
  const ZQ::Dialog::corpus::Format parsed = parseFormat(format);
  if (words && morphemes())
    throw py::value_error("words=True has no morpheme mode: stem the lines");
  const ByteView input(data);
  std::string out;
  const Lease workspace(*this);
  {
    py::gil_scoped_release release;
    // jsonl writes about 1.4 bytes per byte of text: no regrowth on the way.
    out.reserve(input.text().size() / 2 * 3 + 64);
    if (auto* morphemes = std::get_if<MorphemeStemmer>(&workspace->stemmer))
      morphemes->stemText(input.text(), parsed, out);
    else
      std::get<ZQ::Dialog::corpus::LineStemmer>(workspace->stemmer)
          .stemText(input.text(), parsed, words, out);
  }
  return py::bytes(out);
}
