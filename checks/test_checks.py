#!/usr/bin/env python3
"""Tests of the checks beside this file: python3 checks/test_checks.py"""

import sys
import tempfile
import unittest
from pathlib import Path

sys.dont_write_bytecode = True

import layers
import mirror
import prose

ARROWS = ["cli --> messages", "messages --> core", "cli -.-> base", "base --> core"]
INCLUDES = {"cli/a.cpp": "messages/x.h", "cli/b.cpp": "base/x.h", "messages/x.h": "core/x.h", "base/x.h": "core/x.h",
            "core/x.h": "windows.h"}


def made(files):
    """A folder with these files, gone with its owner."""
    folder = tempfile.TemporaryDirectory()
    for name, text in files.items():
        path = Path(folder.name, name)
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")
    return folder


class Layers(unittest.TestCase):
    def said(self, arrows=(), without=(), rows=("cli", "messages", "base", "core"), **includes):
        drawn = [arrow for arrow in [*ARROWS, *arrows] if arrow not in without]
        picture = "# Page\n\n```mermaid\nflowchart TD\n" + "".join(f"    {arrow}\n" for arrow in drawn) + "```\n"
        table = "".join(f"| `{folder}/` | |\n" for folder in rows)
        with made({name: f'#include "{header}"\n' for name, header in (INCLUDES | includes).items()}) as root:
            return list(layers.problems(*layers.read_includes(Path(root)), picture + table))

    def test_nothing_is_said_of_a_picture_that_fits(self):
        self.assertEqual(self.said(**{"cli/c.cpp": "core/x.h", "build/z.h": "cli/a.cpp"}), [])

    def test_an_include_needs_a_way_of_arrows(self):
        for header in ("messages/x.h", "../messages/x.h"):
            self.assertEqual(self.said(**{"core/b.cpp": header}), [
                "core/b.cpp:1: includes messages/x.h, but docs/architecture.md draws no way from core to messages"])

    def test_nothing_lies_behind_a_dotted_arrow(self):
        self.assertEqual(len(self.said(without=["cli --> messages"], **{"cli/a.cpp": "core/x.h"})), 1)

    def test_an_arrow_needs_an_include_and_adds_to_the_others(self):
        self.assertIn("docs/architecture.md:9: nothing in messages includes a header of base",
                      self.said(["messages --> base"]))
        self.assertEqual(self.said(["cli --> core"], **{"cli/c.cpp": "core/x.h"}),
                         ["docs/architecture.md:9: cli comes to core without this arrow as well"])

    def test_arrows_make_no_circle(self):
        self.assertIn("docs/architecture.md:9: the arrow from core to cli closes a circle",
                      self.said(["core --> cli"], **{"core/y.h": "cli/a.h", "cli/a.h": "windows.h"}))

    def test_picture_and_tree_have_the_same_folders(self):
        self.assertEqual(self.said(**{"bench/x.cpp": "windows.h"}), ["docs/architecture.md: the picture has no bench"])
        self.assertIn("docs/architecture.md: the picture has gone, where no C++ source is", self.said(["cli --> gone"]))

    def test_every_folder_is_described(self):
        self.assertEqual(self.said(rows=("cli", "base", "core")),
                         ["docs/architecture.md: the table has no row for messages"])

    def test_an_arrow_that_cannot_be_read_is_told(self):
        with self.assertRaisesRegex(SystemExit, "docs/architecture.md:9: is no arrow"):
            self.said(["cli-->core"])


class Mirror(unittest.TestCase):
    TREE = {"core/OText.cpp": "", "tests/core/OTextEditTests.cpp": "", "core/Small.cpp": "",
            "tests/fuzz/AnyTests.cpp": "", "tests/core/OddTests.cpp": "", "tests/README.md": "`Small`, `OddTests.cpp`"}

    def said(self, **more):
        with made(self.TREE | more) as root:
            return list(mirror.problems(Path(root)))

    def test_tests_under_the_sources_name_or_on_the_page_are_found(self):
        self.assertEqual(self.said(), [])

    def test_a_source_without_tests_is_told(self):
        self.assertEqual(self.said(**{"core/Lost.cpp": ""}),
                         ["core/Lost.cpp: tests/core/ has no tests of that name, nor has tests/README.md"])

    def test_benchmarks_need_no_tests(self):
        self.assertEqual(self.said(**{"bench/micro/Map.cpp": ""}), [])

    def test_tests_without_a_source_are_told(self):
        self.assertEqual(self.said(**{"tests/core/GoneTests.cpp": ""}),
                         ["tests/core/GoneTests.cpp: no source in core/ has that name, nor has tests/README.md"])


class Prose(unittest.TestCase):
    SOURCES = {"dev": "\nverb_check() {\n}\n\ncheck_layout() {\n}\n", "core/OText.h": "class OText;\n",
               "tests/core/OTextTests.cpp": "TEST_F(OText,\n       IsEmpty) {}\n"}

    def said(self, page):
        with made(self.SOURCES | {"docs/page.md": page}) as root:
            return [line.split(": ", 1)[1] for line in prose.problems(Path(root))]

    def test_lines_are_no_wider_than_said(self):
        self.assertEqual(self.said("x" * 120 + "\n|" + "x" * 120 + "\n- [x](https://" + "x" * 120 + ")\n"), [])
        self.assertEqual(self.said("x" * 121), ["is 121 columns wide; 120 is the most"])

    def test_what_is_there_may_be_named(self):
        self.assertEqual(self.said("`core/` `core/OText.h` `OText.h` `OText.IsEmpty` `./dev check layout` `/p` `a b` "
                                   "`build/x.h` `Command_Name.h`\n```\n`core/Gone.h`\n```\n"), [])

    def test_what_is_not_there_is_told(self):
        for name in ("gone/", "core/Gone.h", "Gone.h", "OText.IsGone", "GoneText", "run core/Gone.h", "./dev gone",
                     "./dev check gone"):
            self.assertEqual(self.said(f"`{name}`"), [f"names {name}, which is not there"])

    def test_every_operation_is_described(self):
        self.assertEqual(list(prose.undescribed("HRESULT Feed(); HRESULT Cut(); HRESULT Reserved3();", "`Feed` cuts.")),
                         ["docs/automation-server.md: says nothing about Cut"])

    def test_every_message_is_explained(self):
        catalogue = "#help:a\r\nA\r\n\r\n#error:B\r\nThe %1.\r\n\r\n#text:C\r\nDone.\r\n"
        page = "# Messages `Done.`\n| `The %1.` or so | 2 | wait |\n"
        self.assertEqual(list(prose.unexplained(catalogue, page)),
                         ["docs/manual.md: has no row for the message text:C: Done."])


if __name__ == "__main__":
    unittest.main()
