#!/usr/bin/env python3
"""Prints one table from the benchmark programs' JSON output.

Benchmarks are named <operation>/<case>/<implementation>. For each row: the
median over the repetitions, the range from the fastest to the slowest
repetition, and the ratio of the median to the case's reference baseline.
Ratios are of times for operations measured in time (lower is better) and of
rates for operations measured in throughput (higher is better).
"""

import json
import re
import statistics
import sys
from collections import OrderedDict

# operation: (metric, unit, lower is better, reference baseline, target)
# target: (comparison, bound) on the library's ratio to the reference, or a
# dict of them by case, "*" for the other cases.
OPERATIONS = {
    "construct": ("ms_per_100k", "ms/100k pairs", True, "readline_map",
                  {"default_frf": ("<=", 0.60), "default_enu": ("<=", 0.75), "*": ("<=", 1.0)}),
    "stemword": ("items_per_second", "words/s", False, "two_lookup", (">=", 0.90)),
    "sentence": ("items_per_second", "sentences/s", False, "hand_split", (">=", 0.95)),
    "stream": ("items_per_second", "lines/s", False, "getline_stem", (">=", 0.85)),
    "jpj_open": ("real_time", "ms", True, "mecab_open", ("<=", 1.30)),
    "mecab_walk": ("chars_per_second", "chars/s", False, "bare_walk", None),
}
# Bytes per dictionary entry, peak resident growth while loading.
MEMORY_TARGETS = {"default_frf": 150.0, "*": 200.0}


def human(value, unit):
    if unit in ("ms", "ms/100k pairs", "B/entry"):
        return f"{value:.3g}" if value < 1000 else f"{value:.0f}"
    for scale, suffix in ((1e9, "G"), (1e6, "M"), (1e3, "k")):
        if value >= scale:
            return f"{value / scale:.2f}{suffix}"
    return f"{value:.1f}"


def to_ms(benchmark, value):
    factor = {"ns": 1e-6, "us": 1e-3, "ms": 1.0, "s": 1e3}[benchmark.get("time_unit", "ns")]
    return value * factor


def load(paths):
    runs = OrderedDict()  # name -> list of repetition records
    errors = OrderedDict()
    context = None
    order = {}  # name -> (file, registration order), as interleaving shuffles runs
    for file_index, path in enumerate(paths):
        with open(path, encoding="utf-8") as handle:
            data = json.load(handle)
        context = context or data.get("context", {})
        for benchmark in data.get("benchmarks", []):
            name = benchmark.get("run_name", benchmark["name"])
            # Drop the suffixes that settings add (real_time, min_time:...).
            name = re.sub(r"/(real_time|manual_time|min_time:[0-9.]+|repeats:[0-9]+)", "", name)
            operation = name.split("/", 1)[0]
            rank = list(OPERATIONS).index(operation) if operation in OPERATIONS else len(OPERATIONS)
            order.setdefault(name, (rank, file_index, benchmark.get("family_index", 0)))
            if benchmark.get("error_occurred"):
                errors[name] = benchmark.get("error_message", "error")
                continue
            if benchmark.get("run_type") == "aggregate":
                continue
            runs.setdefault(name, []).append(benchmark)
    runs = OrderedDict(sorted(runs.items(), key=lambda item: order[item[0]]))
    errors = OrderedDict(sorted(errors.items(), key=lambda item: order[item[0]]))
    return runs, errors, context


def metric_values(records, metric):
    values = []
    for record in records:
        if metric == "real_time":
            values.append(to_ms(record, record["real_time"]))
        elif metric in record:
            values.append(float(record[metric]))
    return values


def main(paths):
    runs, errors, context = load(paths)
    medians = {}
    rows = []
    for name, records in runs.items():
        operation, _, implementation = name.partition("/")
        case, _, implementation = implementation.rpartition("/")
        if operation not in OPERATIONS:
            continue
        metric, unit, lower, reference, target = OPERATIONS[operation]
        values = metric_values(records, metric)
        if not values:
            continue
        medians[(operation, case, implementation)] = statistics.median(values)
        rows.append((operation, case, implementation, unit, values, records))

    header = ("operation", "median", "min – max", "unit", "vs baseline", "target")
    table = []
    verdicts = []
    for operation, case, implementation, unit, values, records in rows:
        metric, _, lower, reference, target = OPERATIONS[operation]
        median = medians[(operation, case, implementation)]
        base = medians.get((operation, case, reference))
        ratio_text = target_text = ""
        if implementation == reference:
            ratio_text = "(baseline)"
        elif base:
            ratio = median / base
            ratio_text = f"{ratio:.2f}× {reference}" if ratio >= 0.1 else f"{ratio:.2g}× {reference}"
            if isinstance(target, dict):
                target = target.get(case, target["*"])
            if target and implementation == "library":
                comparison, bound = target
                met = ratio <= bound if comparison == "<=" else ratio >= bound
                target_text = f"{comparison} {bound:.2f} {'met' if met else 'MISSED'}"
                verdicts.append(met)
        label = records[0].get("label", "")
        if operation == "jpj_open" and label:
            target_text += f" ({label})"
        table.append((f"{operation}/{case}/{implementation}", human(median, unit),
                      f"{human(min(values), unit)} – {human(max(values), unit)}", unit,
                      ratio_text, target_text))
        if operation == "sentence":
            words = metric_values(records, "words_per_second")
            if words:
                table.append(("  (same, in words)", human(statistics.median(words), "words/s"),
                              f"{human(min(words), 'words/s')} – {human(max(words), 'words/s')}",
                              "words/s", "", ""))

    # Memory: one measurement per construction case and implementation.
    for operation, case, implementation, unit, values, records in rows:
        if operation != "construct" or implementation == "read_bytes":
            continue
        memory = [float(r["bytes_per_entry"]) for r in records if "bytes_per_entry" in r]
        if not memory:
            continue
        value = statistics.median(memory)
        target_text = ""
        if implementation == "library":
            bound = MEMORY_TARGETS.get(case, MEMORY_TARGETS["*"])
            met = value <= bound
            verdicts.append(met)
            target_text = f"<= {bound:.0f} {'met' if met else 'MISSED'}"
        table.append((f"memory/{case}/{implementation}", human(value, "B/entry"), "", "B/entry",
                      "", target_text))

    for name, message in errors.items():
        table.append((name, "skipped", "", "", message, ""))

    widths = [max(len(str(row[i])) for row in [header] + table) for i in range(len(header))]
    line = lambda row: "  ".join(str(cell).ljust(width) for cell, width in zip(row, widths)).rstrip()
    print(line(header))
    print(line(["-" * width for width in widths]))
    for row in table:
        print(line(row))
    if context:
        print()
        print(f"{context.get('num_cpus', '?')} CPUs at {context.get('mhz_per_cpu', '?')} MHz, "
              f"{context.get('date', '')}")
    if verdicts:
        print(f"targets met: {sum(verdicts)} of {len(verdicts)}")


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit("usage: bench_table.py RESULT.json...")
    main(sys.argv[1:])
