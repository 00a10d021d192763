"""Whole processes in turn: how long they took, and what came of it."""

import os
import statistics
import subprocess
import sys
import tempfile
import time
from dataclasses import dataclass

WINE = "/usr/lib/wine/wine64"


@dataclass
class Sample:
    """One run: wall and processor time (user and system, of this process alone) in seconds."""
    wall: float
    cpu: float
    status: int
    output: bytes


def _fixed_addresses():
    """Wine wants fixed addresses above its loader; where that is not allowed it does without."""
    command = ["setarch", "-R"]
    return command if subprocess.run(command + ["true"], stderr=subprocess.DEVNULL, check=False).returncode == 0 else []


FIXED = _fixed_addresses()


def run(words):
    """Runs a Windows program to its end. Its output goes to a file: a pipe could make it wait."""
    with tempfile.TemporaryFile() as output:
        begin = time.perf_counter()
        process = subprocess.Popen(FIXED + [WINE] + words, stdin=subprocess.DEVNULL, stdout=output,
                                   stderr=subprocess.DEVNULL)
        _, status, usage = os.wait4(process.pid, 0)
        wall = time.perf_counter() - begin
        process.returncode = os.waitstatus_to_exitcode(status)
        output.seek(0)
        return Sample(wall, usage.ru_utime + usage.ru_stime, process.returncode, output.read())


def peak(words):
    """The most resident memory of a run in KB, the median of three. A child begins with its parent's peak, so that the
    parent has to be small: GNU time."""
    def measure():
        with tempfile.NamedTemporaryFile("r") as report:
            subprocess.run(["time", "-o", report.name, "-f", "%M"] + FIXED + [WINE] + words, stdin=subprocess.DEVNULL,
                           stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=True)
            return int(report.read())
    return statistics.median(measure() for _ in range(3))


def need_same(first, second):
    """What is compared does the same work: both succeed and print the same bytes."""
    samples = run(first), run(second)
    for words, sample in zip((first, second), samples):
        if sample.status != 0:
            sys.exit(f"bench: {' '.join(words)} ended with status {sample.status}: {sample.output[:200]}")
    if samples[0].output != samples[1].output:
        sys.exit(f"bench: {' '.join(first)} and {' '.join(second)} print different bytes")


def in_turn(first, second, pairs):
    """A B A B ...: two lists of samples. A pair in which one fails ends the bench: there is nothing to compare."""
    samples = [], []
    for _ in range(pairs):
        for words, taken in zip((first, second), samples):
            sample = run(words)
            if sample.status != 0:
                sys.exit(f"bench: {' '.join(words)} ended with status {sample.status}")
            taken.append(sample)
    return samples


def compare(first, second):
    """Medians of both, and the median and the quartiles of the ratios of the pairs."""
    ratios = [a / b for a, b in zip(first, second)]
    low, _, high = statistics.quantiles(ratios, n=4)
    return {"a": statistics.median(first), "b": statistics.median(second), "ratio": statistics.median(ratios),
            "low": low, "high": high, "pairs": len(ratios)}


def compare_runs(first, second, pairs):
    """The two commands in turn: wall time, processor time and peak memory."""
    a, b = in_turn(first, second, pairs)
    return {"wall": compare([s.wall for s in a], [s.wall for s in b]),
            "cpu": compare([s.cpu for s in a], [s.cpu for s in b]),
            "peak": {"a": peak(first), "b": peak(second)}}
