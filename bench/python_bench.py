#!/usr/bin/python3
"""The Python module against the same C++ calls, and the Dask example.

    PYTHONPATH=BUILD/python bench/python_bench.py BUILD [--repetitions 7]

1. stem_sentences() over the UD development sentences, words per second,
   against dialog_bench_sentence's library case (the same stem_sentence calls
   from C++), repetitions of the two interleaved; medians and their ratio
   (target: at least 0.5).
2. stem_sentences() from one and from two Python threads sharing one Stemmer:
   the GIL is released, so two threads should approach twice the rate.
3. python/examples/dask_lemmatize.py over 200,000 sentence lines with one and
   two worker processes: lines per second, wall time.
Uses the staged default data of BUILD (share/dialog/).
"""

import argparse
import json
import os
import statistics
import subprocess
import sys
import tempfile
import threading
import time

HERE = os.path.dirname(os.path.abspath(__file__))
UD = os.environ.get("DIALOG_BENCH_UD", os.path.join(HERE, "..", "..", "shared", "ud"))
SETS = {"enu": "en_ewt-ud-dev.conllu", "frf": "fr_gsd-ud-dev.conllu"}


def sentences(lang):
    path = os.path.join(UD, SETS[lang])
    if not os.path.isfile(path):
        sys.exit(f"python_bench.py: no UD sentences at {path} (set DIALOG_BENCH_UD)")
    with open(path, encoding="utf-8") as f:
        return [line[len("# text = "):].rstrip("\n") for line in f if line.startswith("# text = ")]


def python_rate(stemmer, batch, words):
    start = time.perf_counter()
    stemmer.stem_sentences(batch)
    return words / (time.perf_counter() - start)


def cpp_rate(build, lang):
    out = subprocess.run(
        [os.path.join(build, "bench", "dialog_bench_sentence"),
         f"--benchmark_filter=sentence/{lang}/library", "--benchmark_min_time=0.5",
         "--benchmark_format=json"], capture_output=True, check=True, text=True).stdout
    return json.loads(out)["benchmarks"][0]["words_per_second"]


def threaded_rate(stemmer, batch, words, threads):
    parts = [batch[i::threads] for i in range(threads)]
    workers = [threading.Thread(target=stemmer.stem_sentences, args=(p,)) for p in parts]
    start = time.perf_counter()
    for w in workers:
        w.start()
    for w in workers:
        w.join()
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

    print(f"{'case':34} {'median':>12}  unit     vs baseline")
    for lang in SETS:
        batch = sentences(lang) * 4
        stemmer = dialog_stemmer.Stemmer(lang)
        # Words are the elements stem_sentence gives, as the C++ case counts them.
        words = sum(len(stems) for stems in stemmer.stem_sentences(batch))
        py, cpp, two = [], [], []
        for _ in range(args.repetitions):
            py.append(python_rate(stemmer, batch, words))
            cpp.append(cpp_rate(args.build, lang))
            two.append(threaded_rate(stemmer, batch, words, 2))
        py_m, cpp_m, two_m = (statistics.median(x) for x in (py, cpp, two))
        print(f"{'stem_sentences/' + lang + '/python':34} {py_m:12,.0f}  words/s  "
              f"{py_m / cpp_m:.2f}x cpp (target >= 0.50)")
        print(f"{'stem_sentences/' + lang + '/cpp':34} {cpp_m:12,.0f}  words/s  (baseline)")
        print(f"{'stem_sentences/' + lang + '/python_2_threads':34} {two_m:12,.0f}  words/s  "
              f"{two_m / py_m:.2f}x one thread")

    lines = sentences("enu")
    count = 200000
    with tempfile.NamedTemporaryFile("w", suffix=".txt", encoding="utf-8") as text:
        for i in range(count):
            text.write(lines[i % len(lines)] + "\n")
        text.flush()
        one = statistics.median(dask_rate(text.name, 1, count) for _ in range(3))
        two = statistics.median(dask_rate(text.name, 2, count) for _ in range(3))
    print(f"{'dask_lemmatize/1_worker':34} {one:12,.0f}  lines/s  (baseline, wall time)")
    print(f"{'dask_lemmatize/2_workers':34} {two:12,.0f}  lines/s  {two / one:.2f}x one worker")
    return 0


if __name__ == "__main__":
    sys.exit(main())
