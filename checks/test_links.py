#!/usr/bin/env python3
"""Tests of links.py: python3 checks/test_links.py"""

import sys
import unittest
from pathlib import Path

sys.dont_write_bytecode = True

import links
from test_checks import made

PAGE = """# A page's `title`
[a](#a-pages-title) [b](../dev "a title") ![c](plan.svg) [![d](plan.svg)](page.md) [e][here] [here] [f
g](<page.md>) <a href="../dev">h</a> <https://x.org/y_(z)> https://x.org/y, [i](https://x.org/y#z) `[j](gone.md)`

[here]: page.md#twice-1
## Twice
## Twice
## With a [link](page.md)
[k](#with-a-link) [l](#made)<a id="made"></a> {extra}
```text
[m](gone.md)
```
"""


class Links(unittest.TestCase):
    def said(self, extra="", **more):
        files = {"dev": "", "README.md": "[a](docs/page.md)", "docs/page.md": PAGE.replace("{extra}", extra),
                 "docs/plan.svg": ""}
        with made(files | more) as root:
            return [line.split(": ", 1)[1] for line in links.problems(Path(root))]

    def test_nothing_is_said_of_links_that_lead_somewhere(self):
        self.assertEqual(self.said(), [])

    def test_every_kind_of_link_is_followed(self):
        for link in ("[a](gone.md)", "[a](gone.md 'title')", "![a](gone.md)", "[![a](gone.md)](page.md)",
                     "[![a](page.md)](gone.md)", "[a](<gone.md>)", '<a class="b" href="gone.md">a</a>',
                     "<img src='gone.md'>", "[a](../../gone.md)", "[a](/dev)"):
            with self.subTest(link):
                self.assertRegex(" ".join(self.said(link)), r"^leads nowhere: \S*(gone.md|/dev)$")

    def test_an_anchor_has_to_be_there(self):
        for link in ("[a](#gone)", "[a](page.md#gone)", "[a](#twice-2)", "[a](../dev#gone)", "[a](#m)"):
            with self.subTest(link):
                self.assertRegex(" ".join(self.said(link)), "^leads to a place that is not in")

    def test_a_label_has_to_be_defined_and_used(self):
        wrong = ["has a label that is not defined, or defines one that is not used"]
        for text in ("[a][gone]", "[gone][]", "\n[unused]: page.md\n"):
            with self.subTest(text):
                self.assertEqual(self.said(text), wrong)
        self.assertEqual(self.said("[only] [just words]\n\n[only]: page.md\n"), [])
        self.assertEqual(self.said("[only]\n\n[only]: gone.md\n"), ["leads nowhere: gone.md"])
        self.assertEqual(self.said("[a][gone2]\n\n[gone2]: gone.md\n"), ["leads nowhere: gone.md"])

    def test_the_form_of_an_address_outside_is_looked_at(self):
        for address, said in {"http://x.org": "is not https", "https://x/y": "has no name of a machine",
                              "https://x.org/y.": "ends in a stop of the sentence",
                              "mailto:somebody": "is no address of mail"}.items():
            with self.subTest(address):
                self.assertEqual(self.said(f"[a]({address})"), [f"{said}: {address}"])
        self.assertEqual(self.said("[a](mailto:b@x.org)"), [])

    def test_a_page_that_a_source_names_has_to_be_there(self):
        for name in ("docs/page.md", "page.md", "docs/page.md#twice", "*.md", "Z:/docs/page.md"):
            self.assertEqual(self.said(**{"core/a.cpp": f"// See {name}.\n"}), [])
        self.assertEqual(self.said(**{"core/a.cpp": "// See docs/gone.md.\n"}),
                         ["names a page that is not there: docs/gone.md"])
        self.assertEqual(self.said(**{"core/a.cpp": "// See gone.md\n"}), ["names a page that is not there: gone.md"])
        self.assertEqual(self.said(**{"core/a.cpp": "// docs/page.md#gone\n"}),
                         ["names a place that is not in docs/page.md: #gone"])

    def test_links_lead_to_every_page(self):
        self.assertEqual(self.said(**{"docs/lost.md": "[a](lost.md) [b](../README.md)"}),
                         ["no page that can be reached from README.md links to it or names it"])
        for text in ("[a](lost.md)", "`docs/lost.md`"):
            self.assertEqual(self.said(text, **{"docs/lost.md": ""}), [])


if __name__ == "__main__":
    unittest.main()
