"""The Python module against the C++ library (through dialog-stem), on a lemma
file of the test's own. Run by CTest with PYTHONPATH at the built module."""

import contextlib
import copy
import logging
import os
import pickle
import pty
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor

import pytest

import dialog_stemmer
from dialog_stemmer import Stemmer

LEMMAS = {
    "enu": "dogs\ndog\nwent\ngo\ndon\ndo\nt\nnot\nchildren\nchild\n",
    "frf": "chevaux\ncheval\nl\nle\nyeux\n\u0153il\n",
}
SENTENCES = [
    "I don't like dogs", "the children went", "", " ", "''", "  a  b  ",
    "caf\u00e9 dogs", "\U0001F600 dogs", "tab\tdogs", "don\u2019t",
]
# Lines as a corpus holds them: bad UTF-8, NUL, CR before the line end, no final newline.
RAW = "\n".join(SENTENCES).encode() + b"\nbad \xff\xfe dogs\r\nnul\0went\n\\ \"q\"\nlast"
# Japanese as the morpheme mode meets it: blanks, unknown words, ASCII, and the
# corpus's bad bytes, NUL and CR.
JA_SENTENCES = ["猫が走った", "", " \u3000\t", "猫 が  走った", "犬ぽんど", "abc 12 猫"]
JA_RAW = "\n".join(JA_SENTENCES).encode() + b"\nbad \xff\xfe\r\nnul\0\xe7\x8c\xab\n\\\"q\"\nlast"
EXAMPLE = os.path.join(os.path.dirname(__file__), "..", "..", "python", "examples", "dask_lemmatize.py")


@pytest.fixture(autouse=True)
def data(tmp_path, monkeypatch):
    for code, text in LEMMAS.items():
        folder = tmp_path / "share" / "dialog" / "lemmatizer" / code
        folder.mkdir(parents=True)
        (folder / "lemma").write_text(text, encoding="utf-8")
    monkeypatch.setenv("KU_PREFIX_PATH", str(tmp_path))
    monkeypatch.setenv("XDG_DATA_HOME", str(tmp_path / "none"))
    return tmp_path


@pytest.fixture
def dictionaries(compiled_dictionaries, data):
    """data/ipadic and data/unidic in the test's data root: tiny dictionaries of
    each layout. Returns the folder of the links."""
    folder = data / "share" / "dialog" / "data"
    folder.mkdir(parents=True)
    for name in ("ipadic", "unidic"):
        (folder / name).symlink_to(compiled_dictionaries[name])
    return folder


def tool(*args, text=b""):
    """dialog-stem's standard output for `text` on standard input."""
    exe = os.environ.get("DIALOG_STEM")
    if not exe:
        pytest.skip("DIALOG_STEM not set: the tool was not built")
    return subprocess.run([exe, *args], input=text, capture_output=True, check=True).stdout


def test_results_equal_the_cpp_calls():
    english = Stemmer("enu")
    words = ["dogs", "went", "Dogs", "", "t", "caf\u00e9"]
    assert [english.stemword(w) for w in words] == \
        tool("--words", text="\n".join(words).encode() + b"\n").decode().split("\n")[:-1]
    # One sentence a run: its elements one a line, then an empty line.
    for sentence, stems in zip(SENTENCES, english.stem_sentences(iter(SENTENCES))):
        assert stems == english.stem_sentence(sentence) == tool(sentence).decode()[:-1].split("\n")[:-1]
    assert english.stem_sentence("I don't like dogs") == ["I", "do", "not", "like", "dog"]
    assert Stemmer("frf").stem_sentence("l'yeux chevaux") == ["le", "\u0153il", "cheval"]
    for options in (["--format", "jsonl"], ["--format", "tsv"], ["--format", "lines", "--words"]):
        assert english.stem_text(RAW, options[1], "--words" in options) == tool(*options, text=RAW)
    assert english.stem_text(bytearray(b"dogs")) == english.stem_text(memoryview(b"dogs\n")) == b'["dog"]\n'


BAD_CALLS = [  # each raises and leaves the stemmer as it was
    (lambda s: s.stemword(b"dogs"), TypeError),
    (lambda s: s.stemword("\ud800"), UnicodeEncodeError),  # a lone surrogate is not UTF-8
    (lambda s: s.stem_sentences(["dogs", "dogs\udfff"]), UnicodeEncodeError),
    (lambda s: s.stem_sentences(["dogs", 1]), TypeError),
    (lambda s: s.stem_sentences("went"), TypeError),  # would stem each character
    (lambda s: s.stem_sentences(b"went"), TypeError),
    (lambda s: s.stem_sentences(bytearray(b"went")), TypeError),
    (lambda s: dialog_stemmer.snowball_stem("english", "went"), TypeError),
    (lambda s: s.stem_text("went"), TypeError),
    (lambda s: s.stem_text(b"went", "xml"), ValueError),
    (lambda s: s.__init__("frf"), RuntimeError),  # pybind11 alone ignores it
    (lambda s: s.__setstate__(("frf",)), RuntimeError),
    (lambda s: Stemmer(None), TypeError),
    (lambda s: dialog_stemmer.snowball_stem("klingon", ["x"]), ValueError),
]


@pytest.mark.parametrize("call, error", BAD_CALLS)
def test_bad_calls_raise(call, error):
    english = Stemmer("enu")
    with pytest.raises(error):
        call(english)
    assert (english.language, english.stemword("dogs")) == ("enu", "dog")


def test_unbuilt_stemmer_raises_until_built():
    unbuilt = Stemmer.__new__(Stemmer)  # crashed the interpreter on any call
    for call in (lambda: unbuilt.language, lambda: unbuilt.stemword("x"), lambda: pickle.dumps(unbuilt),
                 lambda: unbuilt.stem_sentence("x"), lambda: unbuilt.stem_sentences([]),
                 lambda: unbuilt.stem_text(b"x"), unbuilt.__getstate__, unbuilt.__reduce__):
        with pytest.raises(RuntimeError, match="Stemmer is not initialised"):
            call()
    assert "not initialised" in repr(unbuilt)
    unbuilt.__setstate__(("frf",))  # as unpickling does
    assert unbuilt.stemword("chevaux") == "cheval"


def test_logging_of_missing_data_and_unsupported_codes(data, caplog):
    (data / "share" / "dialog" / "lemmatizer" / "enu" / "lemma").unlink()
    with caplog.at_level(logging.DEBUG, logger="dialog_stemmer"):
        english, other = Stemmer("enu"), Stemmer("xx")
        assert english.stemword("went") == "went" and Stemmer("frf").stemword("chevaux") == "cheval"
    warnings = [r.getMessage() for r in caplog.records if r.levelno == logging.WARNING]
    assert len(warnings) == 1 and str(data / "share/dialog/lemmatizer/enu/lemma") in warnings[0]
    assert any("Unsupported language" in r.getMessage() for r in caplog.records)
    # A directory, a FIFO or a device where the lemma file should be is named too.
    lemma = data / "share" / "dialog" / "lemmatizer" / "enu" / "lemma"
    for make in (os.mkdir, os.mkfifo, lambda path: os.symlink("/dev/null", path)):
        caplog.clear()
        make(lemma)
        assert Stemmer("enu").stemword("went") == "went"
        assert [r.getMessage() for r in caplog.records if r.levelno == logging.WARNING] == \
            [f"the enu lemma file {lemma} is not a regular file: words come back unchanged"]
        os.rmdir(lemma) if lemma.is_dir() else lemma.unlink()
    assert (other.stemword("dogs"), other.stem_sentence(" a b "), other.stem_sentence("")) == \
        ("dogs", [" a b "], [])


def test_japanese_trail_goes_to_stderr(capfd):
    japanese = Stemmer("jpj")
    out, err = capfd.readouterr()
    assert out == "" and "load_dictionary_resource" in err
    assert japanese.stem_sentence("\u732b\u304c\u8d70\u3063\u305f") == ["\u732b\u304c\u8d70\u3063\u305f"]


@pytest.mark.parametrize("arguments, sentence, stems", [
    (("frf",), "chevaux", ["cheval"]),
    (("jpj", True, "unidic"), "し", ["為る"]),  # the morpheme mode; ipadic gives the surface
])
def test_pickling_builds_a_new_stemmer(request, arguments, sentence, stems):
    if len(arguments) > 1:
        request.getfixturevalue("dictionaries")
    original = Stemmer(*arguments)  # protocols 0 and 1 aborted the interpreter
    copies = [pickle.loads(pickle.dumps(original, p)) for p in range(pickle.HIGHEST_PROTOCOL + 1)]
    for other in copies + [copy.copy(original), copy.deepcopy(original)]:
        assert other is not original and other.stem_sentence(sentence) == stems
        assert (other.language, other.morphemes, other.dictionary) == (arguments + (False, None))[:3]
    assert original.__reduce__() == original.__reduce_ex__(0) == (Stemmer, arguments)


def test_threads_share_one_stemmer():
    english, batch = Stemmer("enu"), SENTENCES * 300  # three chunks of 1,024 and a part

    def work(i):  # the calls release the GIL: they overlap
        return english.stem_sentences(batch) if i % 2 else english.stem_text(RAW * 100)

    with ThreadPoolExecutor(4) as pool:
        results = list(pool.map(work, range(4)))
    assert results == [english.stem_text(RAW * 100), [english.stem_sentence(s) for s in batch]] * 2
    assert dialog_stemmer.snowball_stem("english", ["Running", "JUMPS", ""]) == ["run", "jump", ""]


@pytest.mark.parametrize("workers, options", [
    (0, []), (2, []), (2, ["--lang", "jpj", "--morphemes", "--dictionary", "unidic"])])
def test_dask_example_equals_the_tool(tmp_path, request, workers, options):
    for module in ("dask", "distributed"):
        pytest.importorskip(module, reason=f"python3-{module} is not installed")
    if options:
        request.getfixturevalue("dictionaries")
    corpus = b"".join(b"%d dogs don't went\n" % i for i in range(3000)) + RAW + JA_RAW  # blocks of 8 KiB
    (tmp_path / "in.txt").write_bytes(corpus)
    command = [sys.executable, EXAMPLE, "--workers", str(workers), "--blocksize", "8KiB", *options,
               str(tmp_path / "in.txt"), str(tmp_path / "out.jsonl")]
    expected = tool(*options, "--format", "jsonl", text=corpus)
    assert subprocess.run(command, stdout=subprocess.PIPE, check=True).stdout == b""
    assert (tmp_path / "out.jsonl").read_bytes() == expected
    # On a terminal, Dask's own progress bar; the output stays the same.
    far, near = pty.openpty()
    example = subprocess.Popen(command, stdout=near)
    os.close(near)
    shown = b""
    with contextlib.suppress(OSError):  # EIO once the example has ended
        while chunk := os.read(far, 4096):
            shown += chunk
    os.close(far)
    assert example.wait() == 0 and b"100% Completed" in shown, shown
    assert (tmp_path / "out.jsonl").read_bytes() == expected


@pytest.mark.parametrize("options, status", [
    (["--morphemes"], 2), (["--lang", "jpj", "--dictionary", "unidic"], 2),
    (["--lang", "jpj", "--morphemes", "--dictionary", "juman"], 2),
    (["--lang", "jpj", "--morphemes", "--dictionary", "unidic"], 1),  # the data holds none
])
def test_dask_example_refuses_bad_usage(tmp_path, options, status):
    if status == 1:
        pytest.importorskip("dask", reason="python3-dask is not installed")
    (tmp_path / "in.txt").write_bytes("猫\n".encode())
    run = subprocess.run([sys.executable, EXAMPLE, *options, str(tmp_path / "in.txt"), str(tmp_path / "out")],
                         capture_output=True)
    assert (run.returncode, run.stderr.count(b"\n"), (tmp_path / "out").exists()) == (status, 1, False)


@pytest.mark.parametrize("dictionary, sentence, elements", [
    (None, "猫が走った", ["猫", "が", "走る", "た"]),  # ipadic's base form (原形)
    ("unidic", "ウイルス", ["ウイルス"]),  # UniDic's lexeme (語彙素) without its gloss
])
def test_morphemes_equal_the_tool(dictionaries, dictionary, sentence, elements):
    japanese = Stemmer("jpj", morphemes=True, dictionary=dictionary)
    options = ["--lang", "jpj", "--morphemes"] + (["--dictionary", dictionary] if dictionary else [])
    assert japanese.stem_sentence(sentence) == elements
    for text, stems in zip(JA_SENTENCES, japanese.stem_sentences(iter(JA_SENTENCES))):
        assert stems == japanese.stem_sentence(text) == tool(*options, text).decode()[:-1].split("\n")[:-1]
    # Threads share one stemmer, each call with a lattice of its own.
    with ThreadPoolExecutor(3) as pool:
        texts = list(pool.map(lambda f: (f, japanese.stem_text(JA_RAW * 50, f)), ["lines", "tsv", "jsonl"]))
    for format, text in texts:
        assert text == tool(*options, "--format", format, text=JA_RAW * 50)


BAD_MORPHEMES = [  # (link to change: None removes it, call, error, a word of its one-line message)
    ({}, lambda: Stemmer("enu", morphemes=True), ValueError, "jpj"),
    ({}, lambda: Stemmer("jpj", morphemes=True, dictionary="juman"), ValueError, "juman"),
    ({}, lambda: Stemmer("jpj", dictionary="ipadic"), ValueError, "morphemes"),
    ({}, lambda: Stemmer("jpj", morphemes=True).stemword("猫"), ValueError, "stemword"),
    ({}, lambda: Stemmer("jpj", morphemes=True).stem_text(b"x", words=True), ValueError, "words"),
    ({"unidic": None}, lambda: Stemmer("jpj", morphemes=True, dictionary="unidic"), FileNotFoundError, "unidic"),
    ({"ipadic": "third"}, lambda: Stemmer("jpj", morphemes=True), RuntimeError, "ipadic"),  # neither layout
]


@pytest.mark.parametrize("links, call, error, word", BAD_MORPHEMES)
def test_bad_morpheme_modes_raise(dictionaries, compiled_dictionaries, links, call, error, word):
    for name, target in links.items():
        (dictionaries / name).unlink()
        if target:
            (dictionaries / name).symlink_to(compiled_dictionaries[target])
    with pytest.raises(error) as raised:
        call()
    assert word in str(raised.value) and "\n" not in str(raised.value)

