#!/usr/bin/python3
"""Lemmatise a large text file with Dask: one sentence a line in, one JSON
array of normal forms a line out, in input order.

    python3 python/examples/dask_lemmatize.py [--lang enu] [--workers 2] IN OUT

Each partition builds its own Stemmer (a Stemmer pickles by its language
code only, so nothing large travels to the workers). With --workers 0 the
bag runs in this process (Dask's synchronous scheduler).
"""

import argparse
import json
import os
import sys


def parse_args(argv):
    p = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    p.add_argument("input", help="text file, one sentence a line (UTF-8)")
    p.add_argument("output", help="JSON lines file to write")
    p.add_argument("--lang", default="enu", choices=["enu", "frf", "jpj"])
    p.add_argument("--workers", type=int, default=2, help="worker processes (0: none)")
    p.add_argument("--blocksize", default="16MiB", help="bytes of input per partition")
    return p.parse_args(argv)


def stem_partition(lines, lang):
    import dialog_stemmer

    stemmer = dialog_stemmer.Stemmer(lang)
    return [json.dumps(stems, ensure_ascii=False)
            for stems in stemmer.stem_sentences(line.rstrip("\n") for line in lines)]


def main(argv):
    args = parse_args(argv)
    if not os.path.isfile(args.input):
        sys.exit(f"dask_lemmatize.py: no such file: {args.input}")
    try:
        import dask.bag as db
    except ImportError:
        sys.exit("dask_lemmatize.py: Dask is missing (apt-get install python3-dask python3-distributed)")
    import dask

    bag = db.read_text(args.input, blocksize=args.blocksize, encoding="utf-8")
    parts = bag.map_partitions(stem_partition, args.lang).to_delayed()
    if args.workers > 0:
        from distributed import Client, LocalCluster

        cluster = LocalCluster(n_workers=args.workers, threads_per_worker=1,
                               dashboard_address=None)
        client = Client(cluster)
        scheduler = None
    else:
        scheduler = "synchronous"
    # A few partitions at a time, written in order: memory stays bounded.
    step = max(1, 2 * args.workers)
    written = 0
    with open(args.output, "w", encoding="utf-8") as out:
        for first in range(0, len(parts), step):
            for lines in dask.compute(*parts[first:first + step], scheduler=scheduler):
                out.writelines(line + "\n" for line in lines)
                written += len(lines)
    if args.workers > 0:
        client.close()
        cluster.close()
    print(f"dask_lemmatize.py: {written} lines written to {args.output}", file=sys.stderr)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
