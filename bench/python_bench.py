#!/usr/bin/python3
"""The Python module against the same C++ calls, and the Dask example; see bench/README.md.

    PYTHONPATH=BUILD/python bench/python_bench.py BUILD [--repetitions 7] [--before DIR]
        [--dask-mb 200] [--tool DIALOG_STEM]

--before DIR measures stem_sentences of another build of the module too (the
folder holding its dialog_stemmer*.so), interleaved with this one's runs.
"""

import argparse
import glob
import json
import os
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
from concurrent.futures import ThreadPoolExecutor

HERE = os.path.dirname(os.path.abspath(__file__))
UD_DIR = os.path.join(HERE, "..", "..", "shared", "ud")
UD = {"enu": "en_ewt-ud-dev.conllu", "frf": "fr_gsd-ud-dev.conllu"}
EXAMPLE = os.path.join(HERE, "..", "python", "examples", "dask_lemmatize.py")


def text_lines(path):
    """The sentences of a CoNLL-U file, as UTF-8 lines."""
    with open(path, "rb") as f:
        return [line[len(b"# text = "):] for line in f if line.startswith(b"# text = ")]


def sentences(lang):
    path = os.path.join(UD_DIR, UD[lang])
    if not os.path.isfile(path):
        sys.exit(f"python_bench.py: no UD sentences at {path}")
    return [line.decode().rstrip("\n") for line in text_lines(path)] * 4


def cpp_rate(build, lang):
    out = subprocess.run([os.path.join(build, "bench", "dialog_bench"), "--benchmark_format=json",
                          f"--benchmark_filter=^sentence/{lang}/library$", "--benchmark_min_time=0.5"],
                         capture_output=True, check=True, text=True).stdout
    return json.loads(out)["benchmarks"][0]["words_per_second"]


def module_rate(folder, lang):
    """stem_sentences' words/s with the module in `folder`, in a fresh process:
    the median of 5 calls after a first one (words: the elements returned)."""
    code = ("import statistics, sys, time, dialog_stemmer\n"
            "batch = [l.rstrip('\\n') for l in sys.stdin]\n"
            f"s = dialog_stemmer.Stemmer({lang!r})\n"
            "words = sum(map(len, s.stem_sentences(batch)))\n"
            "times = []\n"
            "for _ in range(5):\n"
            "    t = time.perf_counter(); s.stem_sentences(batch); times.append(time.perf_counter() - t)\n"
            "print(words / statistics.median(times))\n")
    run = subprocess.run([sys.executable, "-c", code], input="\n".join(sentences(lang)) + "\n",
                         env=dict(os.environ, PYTHONPATH=folder), capture_output=True, check=True, text=True)
    return float(run.stdout)


def threads_rate(lang, threads):
    import dialog_stemmer

    stemmer, batch = dialog_stemmer.Stemmer(lang), sentences(lang)
    words = sum(len(stems) for stems in stemmer.stem_sentences(batch))
    parts = [batch[i::threads] for i in range(threads)]
    with ThreadPoolExecutor(threads) as pool:
        list(pool.map(stemmer.stem_sentences, parts))  # each thread's caches warm, as in module_rate
        start = time.perf_counter()
        list(pool.map(stemmer.stem_sentences, parts))
        return words / (time.perf_counter() - start)


def dask_seconds(corpus, workers, expected):
    """Wall time of the example (cluster start included); its output must be the tool's."""
    with tempfile.NamedTemporaryFile(suffix=".jsonl") as out:
        start = time.perf_counter()
        subprocess.run([sys.executable, EXAMPLE, "--workers", str(workers), corpus, out.name],
                       check=True, capture_output=True)
        seconds = time.perf_counter() - start
        if subprocess.run(["cmp", "-s", out.name, expected]).returncode != 0:
            sys.exit(f"python_bench.py: dask_lemmatize.py --workers {workers} differs from dialog-stem")
    return seconds


def dask_rows(tool, megabytes, repetitions):
    """0, 1 and 2 workers on the UD sentences repeated to `megabytes`, one bad
    byte inside; each output is compared with `tool --format jsonl`."""
    text = b"".join(line for path in sorted(glob.glob(os.path.join(UD_DIR, "*.conllu")))
                    for line in text_lines(path))
    copies = max(1, megabytes * 1_000_000 // len(text))
    with tempfile.TemporaryDirectory() as folder:
        corpus, expected = os.path.join(folder, "corpus.txt"), os.path.join(folder, "tool.jsonl")
        with open(corpus, "wb") as f:
            for i in range(copies):
                f.write(text if i != copies // 2 else text + b"one bad \xff byte\n")
        with open(corpus, "rb") as f, open(expected, "wb") as out:
            if tool:
                subprocess.run([tool, "--format", "jsonl"], stdin=f, stdout=out, check=True)
            else:  # what the tests prove equal to the tool's output
                import dialog_stemmer

                out.write(dialog_stemmer.Stemmer("enu").stem_text(f.read()))
        runs = [[dask_seconds(corpus, workers, expected) for workers in (0, 1, 2)]
                for _ in range(repetitions)]
        size = f"{os.path.getsize(corpus) / 1e6:.0f}MB"
    none, one, two = (statistics.median(x) for x in zip(*runs))
    return [(f"dask_lemmatize/{size}/0_workers", none, "s        (baseline, one process)"),
            (f"dask_lemmatize/{size}/1_worker", one, f"s        {one / none:.2f}x 0 workers"),
            (f"dask_lemmatize/{size}/2_workers", two, f"s        {two / none:.2f}x 0 workers (target <= 0.75)")]


def main():
    p = argparse.ArgumentParser(description="Python module benchmark")
    p.add_argument("build")
    p.add_argument("--repetitions", type=int, default=7)
    p.add_argument("--before", metavar="DIR", help="folder of another build of the module, to compare")
    p.add_argument("--dask-mb", type=int, default=200, help="size of the Dask example's corpus")
    p.add_argument("--tool", help="dialog-stem, whose output the example's must equal "
                   "(default: BUILD's, else the one on PATH, else Stemmer.stem_text)")
    args = p.parse_args()
    built = os.path.join(args.build, "tools", "dialog-stem", "dialog-stem")
    tool = args.tool or (built if os.path.isfile(built) else shutil.which("dialog-stem"))
    os.environ["KU_PREFIX_PATH"] = os.path.abspath(args.build)
    os.environ["XDG_DATA_HOME"] = "/nonexistent/dialog-bench"
    here = os.path.join(os.path.abspath(args.build), "python")

    rows = []
    for lang in UD:
        runs = [(module_rate(here, lang), cpp_rate(args.build, lang), threads_rate(lang, 2),
                 module_rate(args.before, lang) if args.before else 0) for _ in range(args.repetitions)]
        py, cpp, two, before = (statistics.median(x) for x in zip(*runs))
        rows += [(f"stem_sentences/{lang}/python", py, f"words/s  {py / cpp:.2f}x cpp"
                  + (f", {py / before:.2f}x before (target >= 3)" if before else "")),
                 (f"stem_sentences/{lang}/cpp", cpp, "words/s  (baseline: stem_sentence per line)"),
                 (f"stem_sentences/{lang}/python_2_threads", two, f"words/s  {two / py:.2f}x one thread")]
        if before:
            rows.append((f"stem_sentences/{lang}/before", before, "words/s  (baseline: --before)"))
    try:
        import dask, distributed  # noqa: F401  (the example's own imports)

        rows += dask_rows(tool, args.dask_mb, min(3, args.repetitions))
    except ImportError as missing:
        rows.append(("dask_lemmatize", 0, f"skipped: {missing.name} is not installed"))
    print(f"{'case':34} {'median':>12}  unit     vs baseline")
    for case, value, rest in rows:
        print(f"{case:34} {value:12,.{0 if value > 100 else 2}f}  {rest}")


if __name__ == "__main__":
    main()
