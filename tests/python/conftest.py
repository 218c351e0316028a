"""Tiny MeCab dictionaries of each layout for the morpheme mode's tests: the C++
support library's, written by its program dialog-test-dictionary
(DIALOG_TEST_DICTIONARY, set by CTest when mecab-dict-index is there)."""

import os
import subprocess

import pytest

LAYOUTS = ("ipadic", "unidic", "third")  # "third": of neither layout


@pytest.fixture(scope="session")
def compiled_dictionaries(tmp_path_factory):
    """{name: directory} of the compiled dictionaries; skips without the program."""
    program = os.environ.get("DIALOG_TEST_DICTIONARY", "")
    if not os.access(program, os.X_OK):
        pytest.skip("DIALOG_TEST_DICTIONARY not set: mecab-dict-index was not found (install mecab-utils)")
    root = tmp_path_factory.mktemp("dictionaries")
    for name in LAYOUTS:
        subprocess.run([program, str(root / name), name], check=True, capture_output=True)
    return {name: root / name for name in LAYOUTS}
