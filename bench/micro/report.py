#!/usr/bin/env python3
"""Writes what kemba-micro measured as a Markdown table: report.py FILE, its JSON with repetitions."""

import json
import sys
from statistics import median, quantiles

BARE = "/Bare"
UNITS = (("s", 1e9), ("ms", 1e6), ("µs", 1e3), ("ns", 1.0))
IN_NANOSECONDS = {name.replace("µ", "u"): factor for name, factor in UNITS}


def read_times(results):
    """Of every benchmark its repetitions: pairs of wall and processor time in nanoseconds."""
    times = {}
    for run in sorted(results["benchmarks"], key=lambda run: run["family_index"]):
        if run["run_type"] == "iteration":
            factor = IN_NANOSECONDS[run["time_unit"]]
            times.setdefault(run["run_name"], []).append((run["real_time"] * factor, run["cpu_time"] * factor))
    return times


def in_words(values):
    """The median of times, and how far they lie apart: half the way between the quartiles."""
    middle = median(values)
    low, _, high = quantiles(values, n=4)
    unit, factor = next((row for row in UNITS if middle >= row[1]), UNITS[-1])
    return f"{middle / factor:.3g} {unit} ± {(high - low) / 2 / middle:.0%}"


def ratio(values, bare):
    return f"{median(values) / median(bare):.2f}" if median(bare) else "-"


def ratios(results):
    """The ratio to its bare sibling of every benchmark that has one."""
    walls = {name: median(wall for wall, _ in rows) for name, rows in read_times(results).items()}
    return {name: wall / walls[name + BARE] for name, wall in walls.items() if walls.get(name + BARE)}


def table(results):
    """A row for each benchmark, with its bare sibling where it has one."""
    times = read_times(results)
    lines = ["| | time | bare | ratio | ratio of processor time |", "|---|---|---|---|---|"]
    for name, rows in times.items():
        if name.endswith(BARE) and name.removesuffix(BARE) in times:
            continue
        wall, processor = zip(*rows)
        row = [f"`{name}`", in_words(wall), "", "", ""]
        if name + BARE in times:
            bare_wall, bare_processor = zip(*times[name + BARE])
            row[2:] = in_words(bare_wall), ratio(wall, bare_wall), ratio(processor, bare_processor)
        lines.append("| " + " | ".join(row) + " |")
    return "\n".join(lines)


if __name__ == "__main__":
    with open(sys.argv[1], encoding="utf-8") as results_file:
        print(table(json.load(results_file)))
