"""docs/performance.md: each section's tables and plots between its marks, and which targets they miss."""

import datetime
import os
import platform
import re
import subprocess
import sys
import textwrap
from pathlib import Path

from measure import WINE
from micro import report

PAGE = "docs/performance.md"
PLOTS = "docs/performance"
UNITS = ((1, "s"), (1e-3, "ms"), (1e-6, "us"), (0, "ns"))
# The most that each ratio may be, and the most kilobytes and bytes.
START = WORK = 1.02
PROCESSOR = 1.05
PER_PRINTER = 1.1
READ = 1.15
SEND = 1 / 0.98
CONVERSION = 1.10
PEAK_KB = 1000
BYTES = {"kemba": 200_000, "kemba-dal": 300_000}


def duration(seconds):
    least, unit = next(row for row in UNITS if seconds >= row[0])
    return f"{seconds / (least or 1e-9):.3g} {unit}"


def ratio(comparison):
    return f"{comparison['ratio']:.3f} ({comparison['low']:.2f} to {comparison['high']:.2f})"


def table(heads, rows):
    return ["| " + " | ".join(row) + " |" for row in (heads, ["---"] * len(heads), *rows)]


def kilobytes(row):
    return f"{(row['peak']['a'] - row['peak']['b']) / 1000:+.1f} MB"


class Targets:
    """Collects what is above its target."""

    def __init__(self):
        self.missed = []

    def hold(self, what, value, most):
        if value > most:
            self.missed.append(f"{what}: {value:.4g}, at most {most:.4g}")


def start(results, targets):
    rows = []
    for row in results:
        rows.append([row["name"], duration(row["wall"]["a"]), duration(row["wall"]["b"]), ratio(row["wall"]),
                     ratio(row["cpu"]), kilobytes(row)])
        targets.hold(f"{row['name']}, time", row["wall"]["ratio"], START)
    return table(["`kemba`, and beside it", "`kemba`", "the other", "ratio", "of processor time", "memory"], rows)


def work(results, targets):
    rows, at = [], {}
    for row in results:
        name = f"`{row['name']}`, {row['size']:,}"
        rows.append([f"`{row['name']}`", f"{row['size']:,}", duration(row["wall"]["a"]), ratio(row["wall"]),
                     ratio(row["cpu"]), kilobytes(row), str(row["wall"]["pairs"])])
        at[row["name"], row["size"]] = row["wall"]["a"] / row["size"]
        targets.hold(f"{name}, time", row["wall"]["ratio"], WORK)
        targets.hold(f"{name}, processor time", row["cpu"]["ratio"], PROCESSOR)
        targets.hold(f"{name}, KB more", row["peak"]["a"] - row["peak"]["b"], PEAK_KB)
    lines = table(["command", "printers", "`kemba`", "ratio", "of processor time", "memory", "pairs"], rows)
    growth = [[f"`{name}`", duration(at[name, 100]), duration(time), f"{time / at[name, 100]:.3f}"]
              for (name, size), time in at.items() if size == 5000 and (name, 100) in at]
    for row in growth:
        targets.hold(f"{row[0]}, time per printer at 5,000", float(row[3]), PER_PRINTER)
    return lines + ([""] + table(["command", "per printer at 100", "at 5,000", "ratio"], growth) if growth else [])


def server(results, targets):
    for row, most in zip(results, (READ, None, None, SEND)):
        if most:
            targets.hold(row["name"], row["time"]["ratio"], most)
    rows = [[row["name"], duration(row["time"]["a"]), duration(row["time"]["b"]), ratio(row["time"]),
             f"{row['memory'] / 1000:+.1f} MB" if "memory" in row else "", str(row["time"]["pairs"])]
            for row in results]
    return table(["operation", "through `kemba-dal`", "its floor", "ratio", "peak memory", "pairs"], rows)


def clients(results, _):
    return table(["clients", "reads a second, all together", "quartiles", "runs"],
                 [[str(row["clients"]), f"{row['rate']:,.0f}", f"{row['low']:,.0f} to {row['high']:,.0f}",
                   str(row["runs"])] for row in results])


def script(results, _):
    return table(["command", "printers", "`kemba`", "`cscript`", "ratio", "of processor time"],
                 [[f"`{row['name']}`", str(row["size"]), duration(row["wall"]["a"]), duration(row["wall"]["b"]),
                   ratio(row["wall"]), ratio(row["cpu"])] for row in results])


def micro(results, targets):
    long_texts = {name: value for name, value in report.ratios(results).items()
                  if name.startswith("Convert/") and name.endswith("/1000000")}
    if not long_texts:
        sys.exit("bench: no conversion of a long text was measured")
    for name, value in long_texts.items():
        targets.hold(f"`{name}`", value, CONVERSION)
    return report.table(results).splitlines()


def sizes(results, targets):
    for row in results:
        targets.hold(f"{row['name']}.exe, bytes", row["bytes"], BYTES[row["name"]])
    return table(["program", "bytes", "at most"],
                 [[f"`{row['name']}.exe`", f"{row['bytes']:,}", f"{BYTES[row['name']]:,}"] for row in results])


FORMATS = {"sizes": sizes, "start": start, "in-process": work, "with-server": work, "server": server,
           "clients": clients, "script": script, "micro": micro}


def plot(path, script_text):
    """Hands the script to gnuplot, which writes the picture."""
    text = f"set terminal svg size 760,360 font 'sans-serif,13' background 'white'\nset output '{path}'\n" + script_text
    subprocess.run(["gnuplot"], input=text, text=True, check=True)


def plot_work(path, results):
    """The ratios with their quartiles over the number of printers; a little apart, so that all are seen."""
    names = list(dict.fromkeys(row["name"] for row in results))
    blocks, curves = [], []
    for place, name in enumerate(names):
        shift = 1.06 ** (place - len(names) / 2)
        points = [f"{row['size'] * shift} {row['wall']['ratio']} {row['wall']['low']} {row['wall']['high']}"
                  for row in results if row["name"] == name]
        blocks.append(f"$data{place} << EOD\n" + "\n".join(points) + "\nEOD\n")
        curves.append(f"$data{place} with yerrorlines linewidth 1.3 title '{name}'")
    plot(path, "".join(blocks) + "set logscale x\nset xlabel 'printers'\nset ylabel 'time, kemba : bare client'\n"
         "set xrange [0.7:8000]\nset grid y\nset key outside right\n" + "plot 1 with lines linecolor 'gray' notitle, " +
         ", ".join(curves) + "\n")


def plot_clients(path, results):
    points = "\n".join(f"{place} {row['rate']} {row['low']} {row['high']}" for place, row in enumerate(results))
    labels = ", ".join(f"'{row['clients']}' {place}" for place, row in enumerate(results))
    plot(path, f"$data << EOD\n{points}\nEOD\nset xlabel 'clients at once'\nset ylabel 'reads a second'\nset grid y\n"
         f"set yrange [0:]\nset xrange [-0.7:{len(results) - 0.3}]\nset xtics ({labels})\nset boxwidth 0.5\n"
         "set style fill solid 0.4\nplot $data using 1:2 with boxes notitle, "
         "$data using 1:2:3:4 with yerrorbars linecolor 'black' notitle\n")


PLOTTED = {"in-process": plot_work, "with-server": plot_work, "clients": plot_clients}


def conditions():
    wine = subprocess.run([WINE, "--version"], capture_output=True, text=True, check=True).stdout.strip()
    model = re.search(r"^model name\s*: (.*)$", Path("/proc/cpuinfo").read_text(encoding="utf-8"), re.MULTILINE)
    return (f"Measured on {datetime.date.today()}, {wine}, Linux {platform.release().split('-')[0]}, "
            f"{os.cpu_count()} processors{f' ({model[1].strip()})' if model else ''}.")


def replace(text, section, lines):
    """The page with the section's new lines between its marks, which have to be there."""
    begin, end = f"<!-- measured: {section} -->\n", f"<!-- end: {section} -->\n"
    before, found, rest = text.partition(begin)
    _, closed, after = rest.partition(end)
    if not found or not closed:
        sys.exit(f"bench: {PAGE} has no place for {section}")
    return before + begin + "\n" + "\n".join(lines) + "\n\n" + end + after


def write(root, section, results):
    """Puts the results into the page and draws their plot; gives a line for each target that is missed."""
    targets = Targets()
    lines = FORMATS[section](results, targets)
    if section in PLOTTED:
        (root / PLOTS).mkdir(exist_ok=True)
        PLOTTED[section](root / PLOTS / f"{section}.svg", results)
        lines += ["", f"![{section}](performance/{section}.svg)"]
    lines += ["", *textwrap.wrap(conditions(), 120)]
    if targets.missed:
        lines += ["", *textwrap.wrap("Above its target: " + "; ".join(targets.missed) + ".", 120)]
    page = root / PAGE
    page.write_text(replace(page.read_text(encoding="utf-8"), section, lines), encoding="utf-8")
    return targets.missed
