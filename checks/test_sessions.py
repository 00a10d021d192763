#!/usr/bin/env python3
"""Tests of sessions.py, but for what Wine's cmd does: python3 checks/test_sessions.py"""

import os
import sys
import unittest
from pathlib import Path
from unittest import mock

sys.dont_write_bytecode = True

import sessions
from test_checks import made

PAGE = r"""# Page

Not tried: no such machine here.

## First

```console
C:\Labels>kemba get comment
Dock 1: by the door
C:\Labels>feed.cmd
C:\Labels>echo %ERRORLEVEL%
2
```

```bat
@echo off
rem feed.cmd: feeds
```

- A list.

    goes on

```powershell
$a = @('(', "{ $b `" [") # )
```

```sh
./dev check layout   # all
KEMBA_X=1 ./dev test -R Name
cmake --preset mingw && cmake --build --preset mingw
```

```yaml
- a: 'b'
```

```text
kemba [options] command
```
"""
FILES = {"dev": "verb_check() {\nverb_test() {\ncheck_layout() {\n-R REGEX", "CMakePresets.json": '"name": "mingw"',
         sessions.SCRIPT_TESTS: 'ScriptOfThePage("```vbscript")'}


def block(kind, *lines):
    return "\n".join((f"```{kind}", *lines, "```", ""))


class Blocks(unittest.TestCase):
    def said(self, page, name="docs/page.md"):
        with made(FILES | {name: page}) as root:
            return [line.split(":", 2)[2].strip() for line in sessions.problems(Path(root))]

    def test_nothing_is_said_of_blocks_that_are_what_they_say(self):
        self.assertEqual(self.said(PAGE), [])

    def test_every_block_has_a_known_kind(self):
        for text in (block(""), "# A\n\n    indented\n", "a\n\n    - indented\n", "1. a\n\nb\n\n    indented\n"):
            with self.subTest(text):
                self.assertEqual(self.said(text), ["is a block without a kind; fence it, and name one"])
        self.assertRegex(self.said(block("dosini"))[0], "^is of the kind 'dosini'; known are console, bat")

    def test_a_session_begins_with_a_prompt(self):
        for line in ("kemba", r"D:\>kemba", "C:>kemba"):
            with self.subTest(line):
                self.assertRegex(" ".join(self.said(block("console", line))), "does not begin with a prompt")

    def test_what_wine_does_otherwise_is_not_shown(self):
        for sign in ("&&", "||"):
            for kind, line in {"console": r"C:\Labels>cd %s cd", "bat": "rem feed.cmd %s"}.items():
                with self.subTest(kind + sign):
                    page = block("console", r"C:\Labels>feed.cmd") + block(kind, line % sign)
                    self.assertRegex(" ".join(self.said(page)), "^has && or \\|\\|, for which Wine's cmd")

    def test_a_picture_is_held(self):
        self.assertRegex(self.said(block("mermaid", "a"))[0], "^is a picture that nothing holds")
        self.assertEqual(self.said(block("mermaid", "a"), "docs/architecture.md"), [])

    def test_a_batch_file_is_run(self):
        for lines in (["rem feed.cmd"], ["echo feed"]):
            with self.subTest(lines):
                self.assertRegex(" ".join(self.said(block("bat", *lines))), "or one that no session runs")

    def test_what_is_not_run_exists(self):
        for line, said in {"./dev gone": "names a verb or a check", "./dev check gone": "names a verb or a check",
                           "./dev test --gone": "names the option --gone", "cmake --preset gone": "the preset gone",
                           "A=1 gone": "starts gone", "./dev test && gone": "starts gone"}.items():
            with self.subTest(line):
                self.assertRegex(" ".join(self.said(block("sh", line))), f"^.*{said}")

    def test_what_cannot_be_run_says_so_with_a_reason(self):
        for kind in ("powershell", "yaml"):
            for above in ("", "# A\n\nNot tried.\n\n", "# A\n\n## B\n\nNot tried: so.\n\n## C\n\n"):
                with self.subTest(above):
                    self.assertRegex(" ".join(self.said(above + block(kind, "a"))), "does not say 'Not tried: '")

    def test_scripts_are_looked_at_as_far_as_may_be(self):
        above = "Not tried: so.\n\n"
        for line in ("(", ")", "(]", "'", '"', "@{ a = 1"):
            with self.subTest(line):
                self.assertRegex(" ".join(self.said(above + block("powershell", line))), "without their other half")
        self.assertRegex(self.said(above + block("yaml", "a: b: c"))[0], "^is no YAML: mapping values")

    def test_scripts_of_the_server_are_those_that_its_tests_run(self):
        script = block("vbscript", "a")
        self.assertEqual(self.said(script, sessions.SCRIPT_PAGE), [])
        self.assertRegex(self.said(script)[0], "does not run$")
        self.assertRegex(self.said(block("javascript", "a"), sessions.SCRIPT_PAGE)[0], "does not run$")
        self.assertRegex(self.said(script + script, sessions.SCRIPT_PAGE)[0], "runs the first$")

    def test_text_has_no_commands(self):
        for line in ("kemba get comment", r"C:\Labels>cd", "$ ls", "./dev test"):
            with self.subTest(line):
                self.assertEqual(self.said(block("text", line)), ["is a command in a block of mere text"])


class Sessions(unittest.TestCase):
    BEGIN = sessions.BEGIN_MARK + "\r\n\r\n" + sessions.PROMPT_MARK
    END = "\r\n" + sessions.PROMPT_MARK + "C:\\Labels>" + sessions.STATUS_MARK

    def said(self, *answers):
        commands = sessions.session_of(PAGE)
        written = "Wine" + "".join(self.BEGIN + answer + "\r\n" for answer in answers) + sessions.BEGIN_MARK
        return list(sessions.differences(commands, sessions.answers(written)))

    RIGHT = ("C:\\Labels>Dock 1: by the door\r\n" + END + "0", "C:\\Labels>" + sessions.STATUS_MARK + "2",
             "C:\\Labels>2\r\n" + END + "2")

    def test_what_goes_as_shown_is_passed_over(self):
        self.assertEqual(self.said(*self.RIGHT), [])

    def test_every_other_byte_is_told(self):
        for output in ("", "Dock 1: by the door", "Dock 1: by the door\r\n\r\n", "Dock 1: by the Door\r\n",
                       "Dock 1: by the door \r\n"):
            with self.subTest(output):
                found = self.said(f"C:\\Labels>{output}{self.END}0", *self.RIGHT[1:])
                self.assertEqual([line for line, _ in found], [8])

    def test_another_folder_and_a_status_that_is_not_shown_are_told(self):
        self.assertEqual(self.said(self.RIGHT[0].replace("C:\\Labels>D", "C:\\>D"), *self.RIGHT[1:]),
                         [(8, "is typed in C:\\Labels, and the session is in C:\\")])
        self.assertEqual(self.said(self.RIGHT[0][:-1] + "2", *self.RIGHT[1:]),
                         [(8, "'kemba get comment' ends with 2, which the page does not show")])

    def test_a_session_that_ends_early_or_loses_an_answer_is_told(self):
        self.assertEqual({line for line, _ in self.said(self.RIGHT[0])}, {10, 11})
        self.assertEqual({line for line, _ in self.said(self.RIGHT[0], "lost", self.RIGHT[2])}, {10})

    def test_cmd_is_told_the_lines_and_asked_for_their_statuses(self):
        typed = sessions.typed(sessions.session_of(PAGE)).split("\r\n")
        self.assertEqual(typed[2::2], ["kemba get comment", "feed.cmd", "echo %ERRORLEVEL%", "exit"])

    def test_a_shell_runs_at_the_top_of_the_tree(self):
        page = block("console", "$ cat dev; echo build/wine/demo $KEMBA_WINEPREFIX", "a", "/p /p", "$ false")
        with made({"dev": "a\n"}) as root, mock.patch.dict(os.environ, WINEPREFIX="/p"):
            self.assertEqual(list(sessions.run_shell(page, Path(root))),
                             [(5, "'false' ends with 1, which the page does not show")])


if __name__ == "__main__":
    unittest.main()
