"""Tiny MeCab dictionaries of each layout for the morpheme mode's tests,
compiled once per run with mecab-dict-index (DIALOG_MECAB_DICT_INDEX, set by
CTest)."""

import os
import subprocess

import pytest

# One context id, three character classes, as the C++ tests' dictionary.
MATRIX = "1 1\n0 0 0\n"
CHARS = ("DEFAULT 0 1 0\nSPACE 0 1 0\nKANJI 0 0 2\nHIRAGANA 1 1 0\n0x0020 SPACE\n"
         "0x4E00..0x9FFF KANJI\n0x3041..0x309F HIRAGANA\n")


def _unidic(surface, pos, lemma, base, extra=""):
    """A UniDic entry (29 features): lemma (語彙素) is f[7], orthBase f[10]."""
    features = [*pos.split(","), "*", "*", lemma, surface, "*", base] + ["*"] * 17 + ["1"]
    return ",".join([surface, "0", "0", "100", *features]) + "\n"


LAYOUTS = {  # name -> (bos-feature, unknown-word features, known words)
    "ipadic": ("BOS/EOS" + ",*" * 8, "名詞,一般,*,*,*,*,*",
               "猫,0,0,100,名詞,一般,*,*,*,*,猫,ネコ,ネコ\n"
               "が,0,0,100,助詞,格助詞,一般,*,*,*,が,ガ,ガ\n"
               "走っ,0,0,100,動詞,自立,*,*,五段・ラ行,連用タ接続,走る,ハシッ,ハシッ\n"
               "た,0,0,100,助動詞,*,*,*,特殊・タ,基本形,た,タ,タ\n"),
    "unidic": ("BOS/EOS" + ",*" * 16, "名詞,普通名詞,一般,*,*,*",
               _unidic("猫", "名詞,普通名詞,一般,*,*", "猫", "猫")
               + _unidic("が", "助詞,格助詞,*,*,*", "が", "が")
               + _unidic("走っ", "動詞,一般,*,*,五段-ラ行", "走る", "走る")
               + _unidic("た", "助動詞,*,*,*,助動詞-タ", "た", "た")
               + _unidic("ぽんど", "名詞,普通名詞,助数詞可能,*,*", "ポンド-pound", "ぽんど")),
    "third": ("BOS/EOS,*,*", "名詞,一般,*", "猫,0,0,100,名詞,一般,猫\n"),  # neither layout
}


@pytest.fixture(scope="session")
def compiled_dictionaries(tmp_path_factory):
    """{name: directory} of the compiled dictionaries; skips without the compiler."""
    indexer = os.environ.get("DIALOG_MECAB_DICT_INDEX", "")
    if not os.access(indexer, os.X_OK):
        pytest.skip("DIALOG_MECAB_DICT_INDEX not set: mecab-dict-index was not found (install mecab-utils)")
    root, found = tmp_path_factory.mktemp("dictionaries"), {}
    for name, (bos, unknown, words) in LAYOUTS.items():
        source, target = root / "source" / name, root / name
        source.mkdir(parents=True)
        target.mkdir()
        dicrc = f"cost-factor = 800\nbos-feature = {bos}\nconfig-charset = UTF-8\n"
        unk = "".join(f"{c},0,0,1000,{unknown}\n" for c in ("DEFAULT", "KANJI", "HIRAGANA"))
        unk += "SPACE,0,0,1000,記号,空白" + ",*" * (unknown.count(",") - 1) + "\n"
        for file, text in (("matrix.def", MATRIX), ("char.def", CHARS), ("unk.def", unk),
                           ("words.csv", words), ("dicrc", dicrc)):
            (source / file).write_text(text, encoding="utf-8")
        subprocess.run([indexer, "-d", ".", "-o", str(target), "-f", "UTF-8", "-t", "UTF-8"],
                       cwd=source, check=True, capture_output=True)
        (target / "dicrc").write_text(dicrc, encoding="utf-8")
        found[name] = target
    return found

