#!/usr/bin/python3
"""The Python module against the same C++ calls, and the Dask example; see bench/README.md.

    PYTHONPATH=BUILD/python bench/python_bench.py BUILD [--repetitions 7]
"""

import argparse
import json
import os
import statistics
import subprocess
import sys
import tempfile
import time
from concurrent.futures import ThreadPoolExecutor

HERE = os.path.dirname(os.path.abspath(__file__))
UD = {"enu": "en_ewt-ud-dev.conllu", "frf": "fr_gsd-ud-dev.conllu"}


def sentences(lang):
    path = os.path.join(HERE, "..", "..", "shared", "ud", UD[lang])
    if not os.path.isfile(path):
        sys.exit(f"python_bench.py: no UD sentences at {path}")
    with open(path, encoding="utf-8") as f:
        return [line[len("# text = "):].rstrip("\n") for line in f if line.startswith("# text = ")]


def cpp_rate(build, lang):
    out = subprocess.run([os.path.join(build, "bench", "dialog_bench"), "--benchmark_format=json",
                          f"--benchmark_filter=^sentence/{lang}/library$", "--benchmark_min_time=0.5"],
                         capture_output=True, check=True, text=True).stdout
    return json.loads(out)["benchmarks"][0]["words_per_second"]


def rate(stemmer, batch, words, threads):
    start = time.perf_counter()
    with ThreadPoolExecutor(threads) as pool:
        list(pool.map(stemmer.stem_sentences, [batch[i::threads] for i in range(threads)]))
    return words / (time.perf_counter() - start)


def dask_rate(lines_file, workers, count):
    example = os.path.join(HERE, "..", "python", "examples", "dask_lemmatize.py")
    with tempfile.NamedTemporaryFile(suffix=".jsonl") as out:
        start = time.perf_counter()
        subprocess.run([sys.executable, example, "--workers", str(workers), "--blocksize", "2MiB",
                        lines_file, out.name], check=True, capture_output=True)
        return count / (time.perf_counter() - start)


def main():
    p = argparse.ArgumentParser(description="Python module benchmark")
    p.add_argument("build")
    p.add_argument("--repetitions", type=int, default=7)
    args = p.parse_args()
    os.environ["KU_PREFIX_PATH"] = os.path.abspath(args.build)
    os.environ["XDG_DATA_HOME"] = "/nonexistent/dialog-bench"
    import dialog_stemmer

    rows = []
    for lang in UD:
        batch = sentences(lang) * 4
        stemmer = dialog_stemmer.Stemmer(lang)
        # Words are the elements stem_sentence gives, as the C++ case counts them.
        words = sum(len(stems) for stems in stemmer.stem_sentences(batch))
        runs = [(rate(stemmer, batch, words, 1), cpp_rate(args.build, lang),
                 rate(stemmer, batch, words, 2)) for _ in range(args.repetitions)]
        py, cpp, two = (statistics.median(x) for x in zip(*runs))
        rows += [(f"stem_sentences/{lang}/python", py, f"words/s  {py / cpp:.2f}x cpp (target >= 0.50)"),
                 (f"stem_sentences/{lang}/cpp", cpp, "words/s  (baseline)"),
                 (f"stem_sentences/{lang}/python_2_threads", two, f"words/s  {two / py:.2f}x one thread")]
    lines, count = sentences("enu"), 200000
    with tempfile.NamedTemporaryFile("w", suffix=".txt", encoding="utf-8") as text:
        text.writelines(lines[i % len(lines)] + "\n" for i in range(count))
        text.flush()
        one, two = (statistics.median(dask_rate(text.name, workers, count)
                                      for _ in range(min(3, args.repetitions))) for workers in (1, 2))
    rows += [("dask_lemmatize/1_worker", one, "lines/s  (baseline, wall time)"),
             ("dask_lemmatize/2_workers", two, f"lines/s  {two / one:.2f}x one worker")]
    print(f"{'case':34} {'median':>12}  unit     vs baseline")
    for case, value, rest in rows:
        print(f"{case:34} {value:12,.0f}  {rest}")


if __name__ == "__main__":
    main()
