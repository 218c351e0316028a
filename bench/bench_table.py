#!/usr/bin/env python3
"""Prints one table from dialog_bench's JSON aggregates; see bench/README.md.

Benchmarks are named <operation>/<case>/<implementation>.
"""

import json
import re
import sys

# operation: (figure, unit, baseline, bound on the library's ratio by case or
# "*"). Memory bounds are on the figure itself; times and memory are better
# lower, rates higher.
OPERATIONS = {
    "construct": ("ms_per_100k", "ms/100k pairs", "readline_map",
                  {"default_frf": 0.60, "default_enu": 0.75, "*": 1.0}),
    "stemword": ("items_per_second", "words/s", "two_lookup", {"*": 0.90}),
    "sentence": ("words_per_second", "words/s", "hand_split", {"*": 0.95}),
    "stream": ("items_per_second", "lines/s", "getline_stem", {"*": 0.85}),
    "jpjOpen": ("real_time", "ms", "mecab_open", {"*": 1.30}),  # registered in milliseconds
    "mecabWalk": ("chars_per_second", "chars/s", "bare_walk", {}),
    "memory": ("bytes_per_entry", "B/entry", "readline_map", {"default_frf": 150, "*": 200}),
    "corpus": ("bytes_per_second", "B/s", "per_line", {"*": 4.0}),
    "tool": ("bytes_per_second", "B/s", "per_line", {"*": 4.0}),
    "jobs": ("bytes_per_second", "B/s", "1_job", {"*": 1.7}),
    "progress": ("bytes_per_second", "B/s", "without", {"*": 0.99}),
    "lineMemory": ("rss_per_line_byte", "× line", None, {"*": 4.0}),
    "morphemes": ("chars_per_second", "chars/s", "bare_walk", {"*": 0.90}),
    "jpjTool": ("bytes_per_second", "B/s", "mecab_command", {"*": 1.0}),
    "jpjJobs": ("bytes_per_second", "B/s", "1_job", {"*": 1.6}),
}
LOWER = ("construct", "jpjOpen", "memory", "lineMemory")
ABSOLUTE = ("memory", "lineMemory")  # bounds on the figure itself, not on a ratio
# The implementations a bound applies to, where it is not "library".
TARGETED = {"corpus": ("line_stemmer",), "tool": ("dialog_stem",), "jobs": ("2_jobs",),
            "progress": ("shown",), "lineMemory": ("lines",), "morphemes": ("morpheme_mode",),
            "jpjTool": ("dialog_stem",), "jpjJobs": ("2_jobs",)}


def human(value):
    for scale, suffix in ((1e9, "G"), (1e6, "M"), (1e3, "k")):
        if value >= scale:
            return f"{value / scale:.3g}{suffix}"
    return f"{value:.3g}"


def metric(name):
    return OPERATIONS[name.split("/")[0]][0]


def main(path):
    with open(path, encoding="utf-8") as f:
        data = json.load(f)
    runs, errors = {}, {}
    for run in data["benchmarks"]:
        name = re.sub(r"(/iterations:\d+)?/(real_time|manual_time)$", "", run["run_name"])
        if run.get("error_occurred"):
            errors[name] = run.get("error_message", "")
        else:  # a single repetition reports no aggregates
            runs.setdefault(name, {}).setdefault(run.get("aggregate_name", "median"), run)
    for name in [n for n in runs if "bytes_per_entry" in runs[n]["median"]]:
        runs[name.replace("construct/", "memory/")] = runs[name]
    medians = {name: run["median"][metric(name)] for name, run in runs.items()}
    rows, met = [], []
    for name in sorted(runs, key=lambda n: (list(OPERATIONS).index(n.split("/")[0]),
                                            runs[n]["median"]["family_index"])):
        operation, case, impl = name.split("/")
        _, unit, baseline, bounds = OPERATIONS[operation]
        cv = runs[name]["cv"][metric(name)] if "cv" in runs[name] else None
        base = medians.get(f"{operation}/{case}/{baseline}")
        ratio = medians[name] / base if base else None
        digits = ".2f" if ratio and ratio >= 0.1 else ".2g"
        versus = "(baseline)" if impl == baseline else f"{ratio:{digits}}× {baseline}" if ratio else ""
        bound, target = bounds.get(case, bounds.get("*")), ""
        checked = medians[name] if operation in ABSOLUTE else ratio
        if impl in TARGETED.get(operation, ("library",)) and bound is not None and checked is not None:
            ok = checked <= bound if operation in LOWER else checked >= bound
            met.append(ok)
            target = f"{'<=' if operation in LOWER else '>='} {bound:g} {'met' if ok else 'MISSED'}"
        rows.append((name, human(medians[name]), "" if cv is None else f"{cv:.1%}", unit, versus,
                     target))
    rows += [(name, "skipped", "", "", message, "") for name, message in errors.items()]
    header = ("benchmark", "median", "cv", "unit", "vs baseline", "target")
    widths = [max(len(row[i]) for row in [header] + rows) for i in range(len(header))]
    for row in [header, ["-" * w for w in widths]] + rows:
        print("  ".join(cell.ljust(w) for cell, w in zip(row, widths)).rstrip())
    context = data["context"]
    print(f"\n{context['num_cpus']} CPUs at {context['mhz_per_cpu']} MHz, {context['date']}")
    print(f"targets met: {sum(met)} of {len(met)}")


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit("usage: bench_table.py RESULT.json")
    main(sys.argv[1])
