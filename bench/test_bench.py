#!/usr/bin/env python3
"""Tests of what the bench makes of its figures; what it measures is looked at by whoever reads the page."""

import sys
import tempfile
import unittest
from pathlib import Path

import measure
import page


def comparison(ratio, pairs=30):
    return {"a": ratio, "b": 1.0, "ratio": ratio, "low": ratio, "high": ratio, "pairs": pairs}


def row(name, size, wall=1.0, cpu=1.0, more=0):
    return {"name": name, "size": size, "wall": comparison(wall), "cpu": comparison(cpu),
            "peak": {"a": 20_000 + more, "b": 20_000}}


def missed(section, results):
    targets = page.Targets()
    page.FORMATS[section](results, targets)
    return targets.missed


class Comparing(unittest.TestCase):
    def test_the_ratio_is_the_median_of_the_pairs_and_not_of_the_sides(self):
        made = measure.compare([1, 2, 30], [1, 1, 10])
        self.assertEqual((made["a"], made["b"], made["ratio"], made["pairs"]), (2, 1, 2, 3))

    def test_quartiles_stand_beside_it(self):
        made = measure.compare([1, 2, 3, 4, 5, 6, 7], [1] * 7)
        self.assertEqual((made["low"], made["ratio"], made["high"]), (2, 4, 6))

    def test_what_fails_or_prints_other_bytes_is_not_compared(self):
        samples = {"good": measure.Sample(1, 1, 0, b"x"), "other": measure.Sample(1, 1, 0, b"y"),
                   "bad": measure.Sample(1, 1, 3, b"x")}
        former, measure.run = measure.run, lambda words: samples[words[0]]
        try:
            measure.need_same(["good"], ["good"])
            for words in (["other"], ["bad"]):
                self.assertRaises(SystemExit, measure.need_same, ["good"], words)
            self.assertRaises(SystemExit, measure.in_turn, ["good"], ["bad"], 1)
        finally:
            measure.run = former


class Page(unittest.TestCase):
    def test_durations_have_the_unit_that_fits(self):
        self.assertEqual([page.duration(seconds) for seconds in (2, 0.0213, 4e-6, 5e-9)],
                         ["2 s", "21.3 ms", "4 us", "5 ns"])

    def test_each_target_is_held(self):
        self.assertEqual(missed("in-process", [row("send", 1, 1.02, 1.05, 1000)]), [])
        for change in ({"wall": 1.021}, {"cpu": 1.051}, {"more": 1001}):
            self.assertEqual(len(missed("in-process", [row("send", 1, **change)])), 1, change)
        self.assertEqual(len(missed("start", [row("help", 1, 1.021)])), 1)
        self.assertEqual(missed("sizes", [{"name": "kemba", "bytes": 200_000}]), [])
        self.assertEqual(len(missed("sizes", [{"name": "kemba", "bytes": 200_001}])), 1)
        rows = [{"name": name, "time": comparison(ratio)} for name, ratio in
                (("a read", 1.16), ("an export", 9), ("an import", 9), ("SendFile", 1.03))]
        self.assertEqual([line.split(":")[0] for line in missed("server", rows)], ["a read", "SendFile"])

    def test_the_time_per_printer_may_not_grow(self):
        rows = [row("send", 100, 1.0), row("send", 5000, 1.0)]
        rows[0]["wall"]["a"], rows[1]["wall"]["a"] = 0.1, 5.4
        self.assertEqual(missed("in-process", rows), [])
        rows[1]["wall"]["a"] = 5.6
        self.assertEqual(len(missed("in-process", rows)), 1)

    def test_long_conversions_have_a_target_and_short_ones_have_none(self):
        def run(name, time):
            return {"run_type": "iteration", "run_name": name, "family_index": 0, "time_unit": "ns", "real_time": time,
                    "cpu_time": time}
        results = {"benchmarks": [run(f"Convert/X/{size}{end}", 2 if not end else 1)
                                  for size in (10, 1000000) for end in ("", "/Bare") for _ in range(2)]}
        self.assertEqual([line.split(":")[0] for line in missed("micro", results)], ["`Convert/X/1000000`"])
        self.assertRaises(SystemExit, missed, "micro", {"benchmarks": []})

    def test_results_replace_what_stood_between_the_marks(self):
        text = "a\n<!-- measured: x -->\nold\n<!-- end: x -->\nb\n"
        self.assertEqual(page.replace(text, "x", ["new"]),
                         "a\n<!-- measured: x -->\n\nnew\n\n<!-- end: x -->\nb\n")
        self.assertRaises(SystemExit, page.replace, text, "y", ["new"])

    def test_the_page_has_a_place_for_every_section(self):
        with tempfile.TemporaryDirectory() as folder:
            copy = Path(folder) / page.PAGE
            copy.parent.mkdir()
            copy.write_text((Path(__file__).parent.parent / page.PAGE).read_text(encoding="utf-8"), encoding="utf-8")
            for section in page.FORMATS:
                copy.write_text(page.replace(copy.read_text(encoding="utf-8"), section, ["x"]), encoding="utf-8")


if __name__ == "__main__":
    sys.dont_write_bytecode = True
    unittest.main()
