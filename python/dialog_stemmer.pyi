"""Normal forms of words and sentences for English, French and Japanese."""

from typing import Any, Iterable, List, Literal, Optional, Tuple, Union

class Stemmer:
    """The stemmer of one language code: "enu", "frf" or "jpj".

    A missing lemma file logs a WARNING (logger "dialog_stemmer") naming it.
    An object from Stemmer.__new__ alone raises RuntimeError on every call,
    and so do __init__ and __setstate__ on a Stemmer already built.

    Stemmer("jpj", morphemes=True, dictionary="ipadic" or "unidic") is the
    Japanese morpheme mode: the base form of every morpheme, exactly as
    `dialog-stem --lang jpj --morphemes --dictionary NAME` gives it, with the
    MeCab dictionary found as data "data/NAME/" (None: "ipadic"), opened once
    per process. Any number of threads may share such a stemmer.
    Raises ValueError for morphemes=True with another code, for a dictionary
    without morphemes=True and for another name; FileNotFoundError when the
    dictionary is missing; RuntimeError when it does not open or is of neither
    layout (ipadic's or UniDic's); each message is one line naming it.
    """

    def __init__(self, code: str, morphemes: bool = False, dictionary: Optional[str] = None) -> None: ...
    @property
    def language(self) -> str: ...
    @property
    def morphemes(self) -> bool: ...
    @property
    def dictionary(self) -> Optional[str]:
        """The morpheme mode's dictionary name, else None."""
    def stemword(self, word: str) -> str:
        """The lemma of `word`, or `word`; ValueError in the morpheme mode."""
    def stem_sentence(self, sentence: str) -> List[str]:
        """The normal forms of `sentence`; in the morpheme mode one element per
        morpheme (its base form, or its surface where the dictionary has none)."""
    def stem_sentences(self, sentences: Iterable[str]) -> List[List[str]]:
        """[stem_sentence(s) for s in sentences], without the GIL.

        TypeError for a str, bytes or bytearray given whole."""
    def stem_text(
        self,
        data: Union[bytes, bytearray, memoryview],
        format: Literal["lines", "tsv", "jsonl"] = "jsonl",
        words: bool = False,
    ) -> bytes:
        """What `dialog-stem --format FORMAT` (--words with `words`) writes for
        the lines of `data`, bad bytes included, without the GIL. In the
        morpheme mode what `--lang jpj --morphemes` writes; words=True raises
        ValueError there."""
    # The state and the arguments of a copy: (code,), or (code, True, dictionary).
    def __getstate__(self) -> Tuple[Any, ...]: ...
    def __setstate__(self, state: Tuple[Any, ...]) -> None: ...
    def __reduce__(self) -> Tuple[Any, Tuple[Any, ...]]: ...
    def __reduce_ex__(self, protocol: int) -> Tuple[Any, Tuple[Any, ...]]: ...

def snowball_stem(algorithm: str, lines: Iterable[str]) -> List[str]: ...
