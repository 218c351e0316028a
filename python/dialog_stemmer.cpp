// The Python module dialog_stemmer: a Stemmer per language code, batches that
// run without the GIL, pickling by code, and Snowball stems of lines.
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include <libstemmer.h>
#include <QString>

#include "ku/log.hpp"
#include "stdout_to_stderr.hpp"
#include "stemmer/stemmer.hpp"

namespace py = pybind11;

namespace {

// The UTF-8 bytes of a str. A str that UTF-8 cannot encode (a lone
// surrogate) raises UnicodeEncodeError; anything else raises TypeError.
std::string utf8(py::handle text) {
  if (!PyUnicode_Check(text.ptr()))
    throw py::type_error(std::string("expected str, got ") + Py_TYPE(text.ptr())->tp_name);
  Py_ssize_t size = 0;
  const char* data = PyUnicode_AsUTF8AndSize(text.ptr(), &size);
  if (!data) throw py::error_already_set();
  return std::string(data, static_cast<std::size_t>(size));
}

class PyStemmer {
 public:
  explicit PyStemmer(const py::str& code) : language_(utf8(code)) {
    if (language_ == "jpj") {
      // The segmenter writes its progress to C's stdout while it opens.
      const StdoutToStderr guard;
      stemmer_ = std::make_unique<ZQ::Dialog::Stemmer>(language_);
    } else {
      stemmer_ = std::make_unique<ZQ::Dialog::Stemmer>(language_);
    }
  }

  const std::string& language() const { return language_; }

  std::string stemword(const py::str& word) const {
    std::string form = utf8(word), result;
    stemmer_->stemword(form, result);
    return result;
  }

  std::vector<std::string> stem_sentence(const py::str& sentence) const {
    const std::string text = utf8(sentence);
    std::vector<std::string> stems;
    py::gil_scoped_release release;
    stemmer_->stem_sentence(text, stems);
    return stems;
  }

  std::vector<std::vector<std::string>> stem_sentences(const py::iterable& sentences) const {
    std::vector<std::string> texts;
    for (py::handle sentence : sentences) texts.push_back(utf8(sentence));
    std::vector<std::vector<std::string>> results(texts.size());
    {
      py::gil_scoped_release release;
      for (std::size_t i = 0; i < texts.size(); ++i) stemmer_->stem_sentence(texts[i], results[i]);
    }
    return results;
  }

 private:
  std::string language_;
  // Owned here and never copied: copies of a Stemmer share one implementation.
  std::unique_ptr<ZQ::Dialog::Stemmer> stemmer_;
};

std::vector<std::string> snowballStem(const py::str& algorithmName, const py::iterable& input) {
  const std::string algorithm = utf8(algorithmName);
  std::vector<std::string> lines;
  for (py::handle line : input) lines.push_back(utf8(line));
  sb_stemmer* const stemmer = sb_stemmer_new(algorithm.c_str(), "UTF_8");
  if (!stemmer) throw py::value_error("unknown Snowball algorithm: " + algorithm);
  std::vector<std::string> stems;
  stems.reserve(lines.size());
  {
    py::gil_scoped_release release;
    for (std::string& line : lines) {
      // One line a stream, so that each line's stem stays apart.
      QString stem;
      FILE* in = line.empty() ? nullptr : fmemopen(line.data(), line.size(), "r");
      if (in) {
        ZQ::Dialog::stem_stream(stemmer, in, stem);
        std::fclose(in);
      }
      stems.emplace_back(stem.toUtf8().constData());
    }
  }
  sb_stemmer_delete(stemmer);
  return stems;
}

// Hands the library's log records to logging.getLogger("dialog_stemmer").
void forwardLogToPython() {
  static const unsigned id = ku::log::addHandler([](const ku::log::Record& record) {
    if (!Py_IsInitialized()) return;
    py::gil_scoped_acquire gil;
    try {
      // ku levels 1 fatal .. 6 debug; logging's 50 critical .. 10 debug.
      static const int kLevels[] = {0, 50, 40, 30, 20, 10, 10};
      const int level = record.level >= 0 && record.level <= 6 ? kLevels[record.level] : 10;
      py::module_::import("logging")
          .attr("getLogger")("dialog_stemmer")
          .attr("log")(level, "%s: %s", record.category, record.message);
    } catch (py::error_already_set& error) {
      error.discard_as_unraisable("dialog_stemmer log handler");
    }
  });
  (void)id;
}

}  // namespace

PYBIND11_MODULE(dialog_stemmer, m) {
  m.doc() =
      "Normal forms of words and sentences: English ('enu') and French ('frf') lemmas\n"
      "from the dialog package's lemma files, Japanese ('jpj') sentences whole.";
  forwardLogToPython();

  py::class_<PyStemmer>(m, "Stemmer", R"doc(
Stemmer(code) -> the stemmer of one language: "enu", "frf" or "jpj".

Never fails on a code: an unsupported one logs "Unsupported language" (logger
"dialog_stemmer") and gives a stemmer that returns words unchanged and
sentences whole; a missing lemma file gives words unchanged. Building a "jpj"
stemmer sends the segmenter's progress text to standard error.

Thread safety: any number of threads may share one "enu" or "frf" stemmer;
the calls release the GIL while they work. A "jpj" stemmer serves one thread
at a time. Pickling keeps only the code: each unpickled copy builds its own.)doc")
      .def(py::init<const py::str&>(), py::arg("code"))
      .def_property_readonly("language", &PyStemmer::language, "The code given at construction.")
      .def("stemword", &PyStemmer::stemword, py::arg("word"),
           "The lemma of `word`, or `word` unchanged when the lemma file does not list it.\n"
           "Text after a NUL character is ignored. Raises UnicodeEncodeError on a str\n"
           "that is not valid Unicode (lone surrogates).")
      .def("stem_sentence", &PyStemmer::stem_sentence, py::arg("sentence"),
           "The normal forms of `sentence`: for 'enu' and 'frf' one element per piece\n"
           "between spaces and apostrophes (empty pieces included); for 'jpj' and\n"
           "unsupported codes the sentence whole ([] for ''). Raises as stemword().")
      .def("stem_sentences", &PyStemmer::stem_sentences, py::arg("sentences"),
           "[stem_sentence(s) for s in sentences], converted first and then stemmed\n"
           "without the GIL, so that other threads run meanwhile. Raises as\n"
           "stemword() before any sentence is stemmed.")
      .def(py::pickle([](const PyStemmer& s) { return py::make_tuple(s.language()); },
                      [](const py::tuple& state) {
                        if (state.size() != 1) throw py::value_error("bad Stemmer pickle");
                        return PyStemmer(state[0].cast<py::str>());
                      }))
      .def("__repr__", [](const PyStemmer& s) {
        return "dialog_stemmer.Stemmer(" + py::repr(py::str(s.language())).cast<std::string>() +
               ")";
      });

  m.def("snowball_stem", &snowballStem, py::arg("algorithm"), py::arg("lines"),
        "The Snowball stem of each line, one per line: each line is lowered byte by\n"
        "byte and stemmed as the one line of a stream (stem_stream), so an empty\n"
        "line gives '' and a line holding '\\n' gives the stems of its parts joined.\n"
        "Raises ValueError for an algorithm Snowball does not know ('english',\n"
        "'french', ... are known). Runs without the GIL.");
}
