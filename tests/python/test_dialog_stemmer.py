"""The Python module against the C++ library (through dialog-stem), on a lemma
file of the test's own. Run by CTest with PYTHONPATH at the built module."""

import logging
import os
import pickle
import subprocess
import threading

import pytest

import dialog_stemmer

LEMMAS = {
    "enu": "dogs\ndog\nwent\ngo\ndon\ndo\nt\nnot\nchildren\nchild\n",
    "frf": "chevaux\ncheval\nl\nle\nyeux\n\u0153il\n",
}
SENTENCES = [
    "I don't like dogs", "the children went", "", " ", "''", "  a  b  ",
    "caf\u00e9 dogs", "\U0001F600 dogs", "tab\tdogs", "don\u2019t",
]


@pytest.fixture(autouse=True)
def data(tmp_path, monkeypatch):
    for code, text in LEMMAS.items():
        folder = tmp_path / "share" / "dialog" / "lemmatizer" / code
        folder.mkdir(parents=True)
        (folder / "lemma").write_text(text, encoding="utf-8")
    monkeypatch.setenv("KU_PREFIX_PATH", str(tmp_path))
    monkeypatch.setenv("XDG_DATA_HOME", str(tmp_path / "none"))
    return tmp_path


def tool(*args, text=""):
    """dialog-stem's standard output for `text` on standard input."""
    exe = os.environ.get("DIALOG_STEM")
    if not exe:
        pytest.skip("DIALOG_STEM not set: the tool was not built")
    run = subprocess.run([exe, *args], input=text.encode(), capture_output=True, check=True)
    return run.stdout.decode()


def test_results_equal_the_cpp_calls():
    english = dialog_stemmer.Stemmer("enu")
    words = ["dogs", "went", "Dogs", "", "t", "caf\u00e9"]
    assert [english.stemword(w) for w in words] == \
        tool("--words", text="\n".join(words) + "\n").split("\n")[:-1]
    # One sentence a run: its elements one a line, then an empty line.
    for sentence, stems in zip(SENTENCES, english.stem_sentences(SENTENCES)):
        assert stems == tool(sentence)[:-1].split("\n")[:-1], sentence
    assert english.stem_sentence("I don't like dogs") == ["I", "do", "not", "like", "dog"]
    assert dialog_stemmer.Stemmer("frf").stem_sentence("l'yeux chevaux") == ["le", "\u0153il", "cheval"]


def test_unicode_and_bad_input():
    english = dialog_stemmer.Stemmer("enu")
    assert english.stemword("caf\u00e9") == "caf\u00e9"
    assert english.stemword("dogs\0went") == "dog"  # the text ends at NUL
    assert english.stem_sentence("") == [""]
    for bad in ("\ud800", "dogs\udfff"):  # lone surrogates cannot be UTF-8
        with pytest.raises(UnicodeEncodeError):
            english.stemword(bad)
        with pytest.raises(UnicodeEncodeError):
            english.stem_sentences(["dogs", bad])
    with pytest.raises(TypeError):
        english.stemword(b"dogs")
    with pytest.raises(TypeError):
        dialog_stemmer.Stemmer(None)


def test_unsupported_code_logs_and_returns_input(caplog):
    with caplog.at_level(logging.DEBUG, logger="dialog_stemmer"):
        other = dialog_stemmer.Stemmer("xx")
    assert any("Unsupported language" in r.getMessage() for r in caplog.records)
    assert other.stemword("dogs") == "dogs"
    assert other.stem_sentence(" a b ") == [" a b "]
    assert other.stem_sentence("") == []


def test_japanese_trail_goes_to_stderr(capfd):
    japanese = dialog_stemmer.Stemmer("jpj")
    out, err = capfd.readouterr()
    assert out == ""
    assert "load_dictionary_resource" in err
    assert japanese.stem_sentence("\u732b\u304c\u8d70\u3063\u305f") == ["\u732b\u304c\u8d70\u3063\u305f"]


def test_pickling_builds_a_new_stemmer():
    french = dialog_stemmer.Stemmer("frf")
    copy = pickle.loads(pickle.dumps(french))
    assert copy is not french
    assert copy.language == "frf"
    assert copy.stemword("chevaux") == "cheval"


def test_threads_share_one_stemmer():
    english = dialog_stemmer.Stemmer("enu")
    batch = SENTENCES * 200
    expected = english.stem_sentences(batch)
    results = [None] * 4

    def work(i):
        results[i] = english.stem_sentences(batch)

    threads = [threading.Thread(target=work, args=(i,)) for i in range(4)]
    for t in threads:
        t.start()
    for t in threads:
        t.join()
    assert results == [expected] * 4


def test_snowball_stem():
    assert dialog_stemmer.snowball_stem("english", ["Running", "JUMPS", ""]) == ["run", "jump", ""]
    with pytest.raises(ValueError, match="unknown Snowball algorithm"):
        dialog_stemmer.snowball_stem("klingon", ["x"])


def test_dask_two_workers_equal_one_process():
    bag = pytest.importorskip("dask.bag", reason="python3-dask is not installed")
    distributed = pytest.importorskip("distributed", reason="python3-distributed is not installed")
    sentences = [f"{i} dogs don't went children" for i in range(3000)]
    expected = dialog_stemmer.Stemmer("enu").stem_sentences(sentences)

    def stem(partition):
        return dialog_stemmer.Stemmer("enu").stem_sentences(partition)

    with distributed.LocalCluster(n_workers=2, threads_per_worker=1, processes=True,
                                  dashboard_address=None) as cluster, \
            distributed.Client(cluster):
        got = bag.from_sequence(sentences, npartitions=8).map_partitions(stem).compute()
    assert got == expected
