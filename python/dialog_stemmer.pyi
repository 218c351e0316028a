"""Normal forms of words and sentences for English, French and Japanese."""

from typing import Any, Iterable, List, Literal, Tuple, Union

class Stemmer:
    """The stemmer of one language code: "enu", "frf" or "jpj".

    A missing lemma file logs a WARNING (logger "dialog_stemmer") naming it.
    An object from Stemmer.__new__ alone raises RuntimeError on every call,
    and so do __init__ and __setstate__ on a Stemmer already built.
    """

    def __init__(self, code: str) -> None: ...
    @property
    def language(self) -> str: ...
    def stemword(self, word: str) -> str: ...
    def stem_sentence(self, sentence: str) -> List[str]: ...
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
        the lines of `data`, bad bytes included, without the GIL."""
    def __getstate__(self) -> Tuple[str]: ...
    def __setstate__(self, state: Tuple[str]) -> None: ...
    def __reduce__(self) -> Tuple[Any, Tuple[str]]: ...
    def __reduce_ex__(self, protocol: int) -> Tuple[Any, Tuple[str]]: ...

def snowball_stem(algorithm: str, lines: Iterable[str]) -> List[str]: ...
