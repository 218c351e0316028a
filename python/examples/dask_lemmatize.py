#!/usr/bin/python3
"""Lemmatise a large text file with Dask: one sentence a line in, one JSON
array of normal forms a line out, in input order, byte for byte what
`dialog-stem --format jsonl` writes for the same lines (bytes that are not
UTF-8 included).

    python3 python/examples/dask_lemmatize.py [--lang enu] [--workers 2] [--processes]
        [--blocksize 8MiB] [--dashboard ADDRESS] [--scheduler ADDRESS] IN OUT
    python3 python/examples/dask_lemmatize.py --lang jpj --morphemes [--dictionary ipadic] ... IN OUT

With --lang jpj --morphemes each line gives the base form of every morpheme,
as `dialog-stem --lang jpj --morphemes --dictionary NAME --format jsonl`
(dictionary ipadic by default, or unidic).

Each task reads its own block of IN (a byte range cut at line ends, by
dask.bytes.read_bytes), stems it with Stemmer.stem_text and returns one bytes
object. The blocks start in input order and the client writes each result to
OUT as its turn comes, then drops it: only blocks finished ahead of the oldest
running one wait (Dask spills them to disk if memory runs short), never the
corpus. With a '*' in OUT (e.g. out/part-*.jsonl) the workers write one part
file per block instead, numbered in input order (zero-padded, so that sorted
names concatenate to the whole result).

--workers 0 runs the blocks in this process (Dask's synchronous scheduler).
--workers N starts a local cluster of N single-threaded workers: threads of
this process (stem_text releases the GIL, and results need no copying between
processes), or with --processes worker processes that listen on 127.0.0.1
only. --dashboard ADDRESS (e.g. 127.0.0.1:8787) serves the scheduler's
dashboard there; without it none is served, on no interface.

Progress: on a terminal (standard output) Dask's own progress bar counts the
blocks done: dask.diagnostics.ProgressBar for --workers 0, distributed's
progress bar otherwise. For more, run with --dashboard 127.0.0.1:8787 and open
http://127.0.0.1:8787/status in a browser (from another machine first
`ssh -L 8787:127.0.0.1:8787 HOST`): the task stream, each worker's memory and
the blocks done. With --scheduler it is that scheduler's dashboard (port 8787
unless `dask scheduler --dashboard-address` said otherwise).

On a cluster of several machines, start `dask scheduler` on one and
`dask worker tcp://SCHEDULER:8786` on each, with dialog_stemmer and its data
installed everywhere, then pass --scheduler tcp://SCHEDULER:8786. IN must be
readable at the same path by every worker: a shared file system, or an object
store URL such as s3://bucket/corpus.txt (with s3fs installed). OUT is written
by this client, or with a '*' by the workers, on a path they all share.
"""

import argparse
import contextlib
import functools
import sys
import threading
import time

_LOCAL_STEMMERS = {}  # this process's Stemmers when it runs the blocks itself


class _Parser(argparse.ArgumentParser):
    def error(self, message):  # one line, as dialog-stem writes it
        self.exit(2, f"{self.prog}: {message}\n")


def parse_args(argv):
    p = _Parser(prog="dask_lemmatize.py", description=__doc__.splitlines()[0])
    p.add_argument("input", help="text file or URL, one sentence a line, any bytes")
    p.add_argument("output", help="JSON lines file or URL to write; with '*': one part file per block")
    p.add_argument("--lang", default="enu", choices=["enu", "frf", "jpj"])
    p.add_argument("--morphemes", action="store_true", help="jpj: the base form of every morpheme")
    p.add_argument("--dictionary", choices=["ipadic", "unidic"],
                   help="the morpheme mode's MeCab dictionary (default: ipadic)")
    p.add_argument("--workers", type=int, default=2, help="local workers (0: none)")
    p.add_argument("--processes", action="store_true",
                   help="local workers in processes of their own (default: threads of this one)")
    p.add_argument("--blocksize", default="8MiB",
                   help="bytes of input per task (small blocks leave little idle time at the end)")
    p.add_argument("--dashboard", metavar="ADDRESS", help="serve the dashboard there (default: none)")
    p.add_argument("--scheduler", metavar="ADDRESS", help="use this running scheduler, not a local one")
    args = p.parse_args(argv)
    if args.workers < 0:
        p.error("--workers must be 0 or more")
    if args.morphemes and args.lang != "jpj":
        p.error(f"--morphemes needs --lang jpj, not --lang {args.lang}")
    if args.dictionary and not args.morphemes:
        p.error("--dictionary needs --morphemes")
    # What builds the stemmer: dialog_stemmer.Stemmer(*settings).
    args.settings = (args.lang, True, args.dictionary) if args.morphemes else (args.lang,)
    return args


def stemmer_for(settings):
    """One Stemmer per process and settings (building one reads its lemma file
    or opens its dictionary), kept on the Dask worker; a plain "jpj" stemmer
    serves one thread, so one per thread."""
    import dialog_stemmer

    try:
        from distributed import get_worker

        holder = get_worker().__dict__.setdefault("dialog_stemmers", {})
    except (ImportError, ValueError):  # not on a worker: this process runs the blocks
        holder = _LOCAL_STEMMERS
    key = (settings, threading.get_ident() if settings == ("jpj",) else None)
    if key not in holder:
        holder[key] = dialog_stemmer.Stemmer(*settings)
    return holder[key]


def stem_block(block, settings):
    return stemmer_for(settings).stem_text(block, "jsonl")


def write_part(block, settings, path):
    import fsspec

    with fsspec.open(path, "wb") as out:
        out.write(stem_block(block, settings))
    return path


def append(out, written, data):
    out.write(data)
    return written + len(data)


def compute_here(tasks, out):
    """Runs the blocks in this process (Dask's synchronous scheduler) as one
    graph, so that one progress bar covers them: each result is appended to
    `out` after the one before it, then dropped. Returns the bytes written
    (part files, `out` None: how many)."""
    import dask

    if out is None:
        return len(dask.compute(*tasks, scheduler="synchronous"))
    written = 0
    for task in tasks:
        written = dask.delayed(functools.partial(append, out), pure=False)(written, task)
    return dask.compute(written, scheduler="synchronous")[0]


def compute_on(client, tasks, out, shown):
    """Submits every block, one graph each so that the scheduler starts them in
    input order, and writes each result to `out` as its turn comes (part
    files, `out` None: waits for them). Returns as compute_here does."""
    from distributed import progress

    futures = [client.compute(task) for task in tasks]
    bar = None
    if shown:
        # distributed's bar blocks until every block is done, so it runs beside
        # the writing. It follows a small task after each block, kept to the
        # end: a block's own result is released once written, maybe before
        # the bar has looked, and a bar whose keys are gone would wait forever.
        marks = [client.submit(len, future) for future in futures]
        bar = threading.Thread(target=progress, args=(marks,), daemon=True)
        bar.start()
    written = 0
    for future in futures:
        result = future.result()
        future.release()
        if out is not None:
            written += out.write(result)
    if bar:
        bar.join()
        # distributed 2022.12 logs a traceback when the cluster closes within
        # one update (100 ms) of the bar's end.
        time.sleep(0.2)
    return written if out is not None else len(futures)


def write(output, produce):
    """Writes `output` with produce(out), or for part files produce(None);
    returns what was done, for the last line on standard error."""
    import fsspec

    if "*" in output:
        return f"{produce(None)} part files written as {output}"
    fs, path = fsspec.core.url_to_fs(output)
    # Written under another name first: a failed run leaves no OUT behind.
    partial = path + ".partial"
    try:
        with fs.open(partial, "wb") as out:
            size = produce(out)
    except BaseException:
        fs.rm(partial)
        raise
    fs.mv(partial, path)
    return f"{size} bytes written to {output}"


def main(argv):
    args = parse_args(argv)
    try:
        import dask
        from dask.bytes import read_bytes
        from fsspec.core import url_to_fs
    except ImportError:
        sys.exit("dask_lemmatize.py: Dask is missing (apt-get install python3-dask python3-distributed)")
    fs, path = url_to_fs(args.input)
    if not fs.isfile(path):
        sys.exit(f"dask_lemmatize.py: no such file: {args.input}")
    if args.morphemes and not args.scheduler:  # a missing dictionary stops here, not in each task
        stemmer_for(args.settings)
    _, blocks = read_bytes(args.input, delimiter=b"\n", blocksize=args.blocksize, sample=False)
    blocks = blocks[0] if blocks else []
    if "*" in args.output:
        width = len(str(max(0, len(blocks) - 1)))
        tasks = [dask.delayed(write_part)(b, args.settings, args.output.replace("*", f"{i:0{width}d}"))
                 for i, b in enumerate(blocks)]
    else:
        tasks = [dask.delayed(stem_block)(b, args.settings) for b in blocks]

    # Dask's progress bars write to standard output, which this program leaves free.
    shown = sys.stdout.isatty()
    if args.workers == 0 and not args.scheduler:
        from dask.diagnostics import ProgressBar

        with ProgressBar() if shown else contextlib.nullcontext():
            message = write(args.output, functools.partial(compute_here, tasks))
    else:
        from distributed import Client, LocalCluster

        cluster = None
        if not args.scheduler:
            # Every listener on the loopback interface: Debian's distributed
            # serves HTTP on all interfaces when given no address. Threads of
            # this process talk in memory (inproc), processes over TCP.
            where = {"host": "127.0.0.1"} if args.processes else {}
            cluster = LocalCluster(n_workers=args.workers, threads_per_worker=1, processes=args.processes,
                                   worker_dashboard_address="127.0.0.1:0",
                                   dashboard_address=args.dashboard or "127.0.0.1:0",
                                   scheduler_kwargs={"dashboard": bool(args.dashboard)}, **where)
        with cluster or contextlib.nullcontext(), Client(args.scheduler or cluster) as client:
            if cluster and args.dashboard:  # client.dashboard_link names another interface
                print(f"dask_lemmatize.py: dashboard at http://{args.dashboard}/status", file=sys.stderr)
            message = write(args.output, lambda out: compute_on(client, tasks, out, shown))
    print(f"dask_lemmatize.py: {message}", file=sys.stderr)
    return 0


if __name__ == "__main__":
    try:
        sys.exit(main(sys.argv[1:]))
    except Exception as error:  # one line for a person, as the tool does
        sys.exit(f"dask_lemmatize.py: {type(error).__name__}: {error}")
