// The Python module dialog_stemmer: a Stemmer per language code, batches that
// run without the GIL, pickling by code, and Snowball stems of lines.
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

#include <libstemmer.h>
#include <QString>

#include "ku/log.hpp"
#include "py_stemmer.hpp"
#include "stemmer/stemmer.hpp"

namespace py = pybind11;

namespace {

// `self` of the Stemmer methods, as the Python object: see live().
struct StemmerSelf {
  py::handle object;
};

}  // namespace

namespace pybind11::detail {
// Any Stemmer converts, built or not; the methods ask live() for the object.
template <>
struct type_caster<StemmerSelf> {
  PYBIND11_TYPE_CASTER(StemmerSelf, const_name("Stemmer"));
  bool load(handle source, bool) {
    value.object = source;
    return isinstance<PyStemmer>(source);
  }
};
}  // namespace pybind11::detail

namespace {

std::vector<std::string> snowballStem(const py::str& algorithmName, const py::iterable& input) {
  rejectSingleText(input, "snowball_stem");
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

// Whether the C++ object behind `self` was built: Stemmer.__new__ alone
// makes none. Asked of pybind11's instance record, since casting such an
// object to PyStemmer would hand out unbuilt memory.
bool isBuilt(const StemmerSelf& self) {
  auto* const instance = reinterpret_cast<py::detail::instance*>(self.object.ptr());
  return instance->get_value_and_holder().holder_constructed();
}

// The object behind `self`; RuntimeError when it was never built.
const PyStemmer& live(const StemmerSelf& self) {
  if (!isBuilt(self))
    throw std::runtime_error("Stemmer is not initialised: build it with Stemmer(code)");
  return self.object.cast<const PyStemmer&>();
}

// pybind11 ignores a second __init__ or __setstate__ on a live object, which
// would leave it unchanged without a word: wraps `name` to raise instead.
// (A function named __init__ or __setstate__ would be ignored the same way,
// hence the qualified name.)
void refuseOnLiveObject(py::class_<PyStemmer>& cls, const char* name, const char* internalName,
                        const char* doc) {
  const py::object original = cls.attr(name);
  py::options options;
  options.disable_function_signatures();
  py::setattr(cls, name,
              py::cpp_function(
                  [original, name](const StemmerSelf& self, const py::args& args,
                                   const py::kwargs& kwargs) {
                    if (isBuilt(self))
                      throw std::runtime_error(std::string("Stemmer.") + name +
                                               " on a Stemmer already built: make a new one");
                    original(self.object, *args, **kwargs);
                  },
                  py::name(internalName), py::is_method(cls), doc));
}

// The arguments that build a stemmer like `stemmer`: (code,), or in the
// morpheme mode (code, True, dictionary).
py::tuple arguments(const PyStemmer& stemmer) {
  if (!stemmer.morphemes()) return py::make_tuple(stemmer.language());
  return py::make_tuple(stemmer.language(), true, stemmer.dictionaryName());
}

// (type(self), arguments): a new stemmer of the same settings, for every
// pickle protocol and for copy.copy/deepcopy.
py::tuple reduce(const StemmerSelf& self) {
  return py::make_tuple(py::type::handle_of(self.object), arguments(live(self)));
}

}  // namespace

PYBIND11_MODULE(dialog_stemmer, m) {
  m.doc() =
      "Normal forms of words and sentences: English ('enu') and French ('frf') lemmas\n"
      "from the dialog package's lemma files, Japanese ('jpj') sentences whole.";
  forwardLogToPython();

  py::class_<PyStemmer> cls(m, "Stemmer", R"doc(
Stemmer(code) -> the stemmer of one language: "enu", "frf" or "jpj".
Stemmer("jpj", morphemes=True, dictionary="ipadic") -> Japanese base forms,
one per morpheme, as `dialog-stem --lang jpj --morphemes --dictionary NAME`.

Never fails on a code: an unsupported one logs "Unsupported language" (logger
"dialog_stemmer") and gives a stemmer that returns words unchanged and
sentences whole. A missing lemma file gives words unchanged and logs a
WARNING naming it. Building a "jpj" stemmer sends the segmenter's progress
text to standard error. An object from Stemmer.__new__ alone raises
RuntimeError on every call; __init__ or __setstate__ on a built one too.

The morpheme mode opens the MeCab dictionary found as data "data/NAME/"
(dictionary None: "ipadic"; "unidic" is Debian's unidic-mecab), once per
process. ValueError for morphemes=True with another code, for a dictionary
without morphemes=True and for a name other than "ipadic" or "unidic";
FileNotFoundError when the dictionary is missing, RuntimeError when it does
not open or is of neither layout, each naming it on one line.

Thread safety: any number of threads may share one "enu" or "frf" stemmer,
or one in the morpheme mode; the calls release the GIL while they work. A
plain "jpj" stemmer serves one thread at a time. Pickling keeps the code and
the morpheme settings: each unpickled copy builds its own.)doc");
  cls.def(py::init<const py::str&, bool, const py::object&>(), py::arg("code"),
          py::arg("morphemes") = false, py::arg("dictionary") = py::none())
      .def_property_readonly(
          "language", [](const StemmerSelf& self) { return live(self).language(); },
          "The code given at construction.")
      .def_property_readonly(
          "morphemes", [](const StemmerSelf& self) { return live(self).morphemes(); },
          "Whether this is the morpheme mode (morphemes=True).")
      .def_property_readonly(
          "dictionary",
          [](const StemmerSelf& self) -> py::object {
            const PyStemmer& stemmer = live(self);
            if (!stemmer.morphemes()) return py::none();
            return py::str(stemmer.dictionaryName());
          },
          "The morpheme mode's dictionary name ('ipadic', 'unidic'), else None.")
      .def(
          "stemword",
          [](const StemmerSelf& self, const py::str& word) { return live(self).stemword(word); },
          py::arg("word"),
          "The lemma of `word`, or `word` unchanged when the lemma file does not list it.\n"
          "Text after a NUL character is ignored. Raises UnicodeEncodeError on a str\n"
          "that is not valid Unicode (lone surrogates), ValueError in the morpheme mode.")
      .def(
          "stem_sentence",
          [](const StemmerSelf& self, const py::str& sentence) {
            return live(self).stemSentence(sentence);
          },
          py::arg("sentence"),
          "The normal forms of `sentence`: for 'enu' and 'frf' one element per piece\n"
          "between spaces and apostrophes (empty pieces included); for 'jpj' and\n"
          "unsupported codes the sentence whole ([] for ''); in the morpheme mode the\n"
          "base form of each morpheme, or its surface where the dictionary has none\n"
          "(spaces give none). Raises as stemword().")
      .def(
          "stem_sentences",
          [](const StemmerSelf& self, const py::object& sentences) {
            return live(self).stemSentences(sentences);
          },
          py::arg("sentences"),
          "[stem_sentence(s) for s in sentences] for any iterable of str, stemmed\n"
          "without the GIL. Raises TypeError for a str, bytes or bytearray given whole,\n"
          "and as stemword() for an element, before any sentence is stemmed.")
      .def(
          "stem_text",
          [](const StemmerSelf& self, const py::object& data, const std::string& format,
             bool words) { return live(self).stemText(data, format, words); },
          py::arg("data"), py::arg("format") = "jsonl", py::arg("words") = false,
          "The bytes that `dialog-stem --format FORMAT` (with `words`: --words) writes\n"
          "for the lines of `data`, a bytes-like object: a line ends at b'\\n' or at the\n"
          "end, one b'\\r' before that is dropped, and bytes that are not UTF-8 give the\n"
          "tool's result (jsonl writes each as U+FFFD). Runs without the GIL. Raises\n"
          "TypeError for a str, ValueError for a format other than 'lines', 'tsv', 'jsonl'\n"
          "and for words=True in the morpheme mode.")
      .def(py::pickle([](const StemmerSelf& self) { return arguments(live(self)); },
                      [](const py::tuple& state) {
                        if (state.size() == 1)
                          return PyStemmer(state[0].cast<py::str>(), false, py::none());
                        if (state.size() == 3)
                          return PyStemmer(state[0].cast<py::str>(), state[1].cast<bool>(),
                                           state[2]);
                        throw py::value_error("bad Stemmer pickle");
                      }))
      .def("__reduce__", &reduce)
      .def(
          "__reduce_ex__", [](const StemmerSelf& self, int) { return reduce(self); },
          py::arg("protocol"))
      .def("__repr__", [](const StemmerSelf& self) {
        if (!isBuilt(self)) return std::string("<dialog_stemmer.Stemmer, not initialised>");
        const PyStemmer& stemmer = live(self);
        std::string text =
            "dialog_stemmer.Stemmer(" + py::repr(py::str(stemmer.language())).cast<std::string>();
        if (stemmer.morphemes())
          text += ", morphemes=True, dictionary=" +
                  py::repr(py::str(stemmer.dictionaryName())).cast<std::string>();
        return text + ")";
      });
  refuseOnLiveObject(cls, "__init__", "Stemmer.__init__",
                     "__init__(self, code: str, morphemes: bool = False,\n"
                     "         dictionary: Optional[str] = None) -> None\n\n"
                     "Builds the stemmer of `code`; RuntimeError on a Stemmer already built.");
  refuseOnLiveObject(cls, "__setstate__", "Stemmer.__setstate__",
                     "__setstate__(self, state: tuple) -> None\n\n"
                     "Builds the stemmer of the settings in `state` (a pickle's state);\n"
                     "RuntimeError on a Stemmer already built.");

  m.def("snowball_stem", &snowballStem, py::arg("algorithm"), py::arg("lines"),
        "The Snowball stem of each line, one per line: each line is lowered byte by\n"
        "byte and stemmed as the one line of a stream (stem_stream), so an empty\n"
        "line gives '' and a line holding '\\n' gives the stems of its parts joined.\n"
        "Raises ValueError for an algorithm Snowball does not know ('english',\n"
        "'french', ... are known). Runs without the GIL.");
}
