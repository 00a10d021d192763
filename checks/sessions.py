#!/usr/bin/env python3
"""Holds the blocks of the pages to be what they say they are; silent when all are.

    sessions.py            looks at every block of every page
    sessions.py list       names the pages that show sessions
    sessions.py run PAGE   runs the sessions of a page, in a Wine prefix that stands ready

CONTRIBUTING.md says what kinds of blocks there are and how each is written. A page's prompts of cmd are one session in
Wine's cmd, as if typed; its prompts of a shell run at the top of the tree.
"""

import itertools
import os
import re
import shutil
import subprocess
import sys
import tempfile
from dataclasses import dataclass, field
from pathlib import Path

sys.dont_write_bytecode = True

import layers
import prose

FOLDER = "C:\\Labels"  # where sessions of cmd begin; emptied before
PROMPT = re.compile(r"(C:\\[^>\n]*)>(.*)|(\$) (.*)")
BEGIN_MARK, PROMPT_MARK, STATUS_MARK = "\x1d", "\x1e", "\x1f"  # what cmd is made to print between outputs
NO_ANSWER = ("none", "", "0")
SCRIPT_PAGE, SCRIPT_TESTS = "docs/automation-server.md", "tests/programs/ScriptTests.cpp"
PROGRAMS = re.compile(r"\b(kemba|kemba-dal|[\w-]+\.cmd)\b")
SECONDS = 120
CONDITION = re.compile(r"&&|\|\|")
NO_CONDITION = "has && or ||, for which Wine's cmd does not look at the status; use if errorlevel"


@dataclass
class Block:
    """A block of a page: its kind, the line on which it begins, its lines, and the text of its section above it."""

    kind: str
    line: int
    lines: list = field(default_factory=list)
    above: str = ""

    def text(self):
        return "\n".join(self.lines)


@dataclass
class Place:
    """Where a block stands."""

    root: Path
    sources: dict  # the tree's files but pages, by name
    name: str
    page: str


@dataclass
class Command:
    """A prompt of a session, what is typed there, and what the page shows below it."""

    line: int
    folder: str
    text: str
    output: str = ""
    status_shown: bool = False


def blocks_of(page):
    """The blocks, fenced or indented; what is indented has no kind. A heading begins a section, and what stands above
    the page's first one below its title counts for all."""
    blocks, fence, section, introduction = [], "", "", None
    after_blank = indented = in_list = False
    for number, line in enumerate(page.split("\n"), 1):
        opening = re.match(r" *(```+|~~~+)\s*(.*)", line)
        if fence:
            fence = "" if line.strip() == fence else fence
            blocks[-1].lines += [line] if fence else []
        elif opening:
            fence, indented = opening[1], False
            blocks.append(Block(opening[2].strip(), number, above=(introduction or "") + section))
        elif line.startswith("    ") and line.strip() and (indented or after_blank and not in_list):
            if not indented:
                blocks.append(Block("", number))
            indented = True
        else:
            indented = indented and not line.strip()
            in_list = bool(re.match(r" {,3}([-*]|\d+\.) ", line)) or in_list and not re.match(r"\S", line)
            if line.startswith("##"):
                introduction, section = section if introduction is None else introduction, ""
            section += line + "\n"
        after_blank = not line.strip()
    return blocks


def commands_of(block):
    """The prompts of a block of kind console, with what is shown below each."""
    commands = []
    for number, line in enumerate(block.lines, block.line + 1):
        if prompt := PROMPT.fullmatch(line):
            text = prompt[2] if prompt[1] else prompt[4]
            if commands and "errorlevel" in text.lower():
                commands[-1].status_shown = True
            commands.append(Command(number, prompt[1] or "$", text, status_shown="errorlevel" in text.lower()))
        elif commands:
            commands[-1].output += line + "\n"
    return commands


def session_of(page):
    """All prompts of a page, in order."""
    return [command for block in blocks_of(page) if block.kind == "console"
            for command in commands_of(block)]


def batch_name(block):
    """The name under which a batch file is saved: its first remark begins with it."""
    name = re.search(r"(?m)^@?rem (\S+\.cmd)\b", block.text())
    return name[1] if name else None


def open_brackets(text):
    """What is left open in a script of PowerShell, or closes nothing; comments and quoted texts are passed over."""
    text = re.sub(r"""'[^']*'|"(?:`.|[^"`])*"|#.*""", "", text)
    left, pairs = [], {")": "(", "]": "[", "}": "{"}
    for letter in text:
        if letter in "([{":
            left.append(letter)
        elif letter in pairs and (not left or left.pop() != pairs[letter]):
            return letter
    return "".join(left) + "".join(re.findall("['\"]", text))


def console_problems(block, place):
    if not block.lines or not PROMPT.fullmatch(block.lines[0]):
        yield block.line, "is a session that does not begin with a prompt, such as 'C:\\Labels>' or '$ '"
    for command in commands_of(block):
        if command.folder != "$" and CONDITION.search(command.text):
            yield command.line, NO_CONDITION


def batch_problems(block, place):
    name = batch_name(block)
    if not name or not any(name in command.text for command in session_of(place.page)):
        yield block.line, "is a batch file without a 'rem NAME.cmd', or one that no session runs"
    if CONDITION.search(block.text()):
        yield block.line, NO_CONDITION


def shell_problems(block, place):
    """What is not run: verbs, checks, options, presets and programs have to be there."""
    known = "\n".join(text for name, text in place.sources.items() if name.endswith((".py", "dev")))
    for number, line in enumerate(block.lines, block.line + 1):
        for part in line.partition("#")[0].split("&&"):
            words = list(itertools.dropwhile(lambda word: "=" in word, part.split()))
            if words[:1] == ["./dev"]:
                if prose.is_missing(" ".join(words), place.root, place.sources):
                    yield number, "names a verb or a check that ./dev does not have"
                yield from ((number, f"names the option {word}, which nothing knows") for word in words
                            if word.startswith("-") and word not in known)
            elif words[:1] == ["cmake"]:
                if f'"name": "{words[-1]}"' not in (place.root / "CMakePresets.json").read_text(encoding="utf-8"):
                    yield number, f"names the preset {words[-1]}, which is not there"
            elif words:
                yield number, f"starts {words[0]}, of which this check knows nothing"


def script_problems(block, place):
    tests = place.root / SCRIPT_TESTS
    if place.name != SCRIPT_PAGE or f'"```{block.kind}"' not in tests.read_text(encoding="utf-8"):
        yield block.line, f"is a script that {SCRIPT_TESTS} does not run"
    elif place.page.count(f"```{block.kind}\n") > 1:
        yield block.line, f"is one of several scripts of its kind, of which {SCRIPT_TESTS} runs the first"


def untried_problems(block, place):
    if not re.search(r"(?i)not tried: \S", block.above):
        yield block.line, "cannot be run here, and its section does not say 'Not tried: ' with the reason"


def powershell_problems(block, place):
    yield from untried_problems(block, place)
    if left := open_brackets(block.text()):
        yield block.line, f"has these without their other half: {left}"


def yaml_problems(block, place):
    import yaml  # Debian's python3-yaml; the one thing here that is not of the standard library

    yield from untried_problems(block, place)
    try:
        yaml.safe_load(block.text())
    except yaml.YAMLError as error:
        yield block.line, "is no YAML: " + " ".join(str(error).split())


def picture_problems(block, place):
    if place.name != layers.PICTURE:
        yield block.line, f"is a picture that nothing holds; only {layers.PICTURE} has one that is"


def text_problems(block, place):
    for number, line in enumerate(block.lines, block.line + 1):
        if re.match(r"(kemba|kemba-dal|\./dev) |C:\\[^>]*>|\$ ", line) and "[" not in line:
            yield number, "is a command in a block of mere text"


KINDS = {"console": console_problems, "bat": batch_problems, "sh": shell_problems, "vbscript": script_problems,
         "javascript": script_problems, "powershell": powershell_problems, "yaml": yaml_problems,
         "mermaid": picture_problems, "text": text_problems}


def pages_of(root):
    return {name: text for name, text in prose.files_of(root) if name.endswith(".md")}


def problems(root):
    """What is wrong with the blocks of all pages, without running them."""
    sources = prose.sources_of(dict(prose.files_of(root)))
    for name, page in pages_of(root).items():
        place = Place(root, sources, name, page)
        for block in blocks_of(page):
            if not block.kind:
                found = [(block.line, "is a block without a kind; fence it, and name one")]
            elif block.kind not in KINDS:
                found = [(block.line, f"is of the kind '{block.kind}'; known are {', '.join(KINDS)}")]
            else:
                found = KINDS[block.kind](block, place)
            yield from (f"{name}:{number}: {said}" for number, said in found)


def typed(commands):
    """What cmd reads: the prompts' lines, and behind each one, unseen by the page, that it shall tell its status. A
    batch file that switches the echo off leaves it off in Wine, and no prompts come."""
    lines = [f"prompt {PROMPT_MARK}$P$G", f"echo {BEGIN_MARK}"]
    for command in commands:
        lines += [command.text, f"echo {STATUS_MARK}%ERRORLEVEL%&echo on&echo {BEGIN_MARK}"]
    return "\r\n".join(lines) + "\r\nexit\r\n"


def answers(written):
    """The folder, output and status of each line that was typed, from what cmd wrote. It begins each prompt on a new
    line, below an empty one, which no page shows."""
    prompt = rf"{PROMPT_MARK}([^>]*)>"
    for part in written.split(BEGIN_MARK)[1:]:
        found = re.match(rf"\s*{prompt}(.*?)(\r\n{prompt})?{STATUS_MARK}(\d+)", part, re.DOTALL)
        yield (found[1], found[2].replace("\r\n", "\n"), found[5]) if found else NO_ANSWER


def differences(commands, found):
    """What a page shows and what came, where they differ: a line number and words."""
    for command, (folder, output, status) in zip(commands, itertools.chain(found, itertools.repeat(NO_ANSWER))):
        if folder != command.folder:
            yield command.line, f"is typed in {command.folder}, and the session is in {folder}"
        if output != command.output:
            yield command.line, f"'{command.text}' printed\n{output or '(nothing)'}\nand the page shows\n" \
                                f"{command.output or '(nothing)'}"
        ours = command.folder == "$" or PROGRAMS.search(command.text)
        if status != "0" and ours and not command.status_shown:
            yield command.line, f"'{command.text}' ends with {status}, which the page does not show"


def run_cmd(page, root):
    """What Wine's cmd answers to the prompts of the page."""
    commands = [command for command in session_of(page) if command.folder != "$"]
    if not commands:
        return
    labels = Path(os.environ["WINEPREFIX"], "drive_c", FOLDER.rpartition("\\")[2])
    shutil.rmtree(labels, ignore_errors=True)
    labels.mkdir()
    for block in blocks_of(page):
        if block.kind == "bat":
            (labels / batch_name(block)).write_text("\r\n".join(block.lines) + "\r\n", encoding="ascii", newline="")
    programs = "Z:" + str(root / "build/mingw-release/bin").replace("/", "\\")
    written, _ = run([root / "cmake/start-wine", "cmd"], labels, {"WINEPATH": programs}, typed(commands))
    yield from differences(commands, answers(written))


def run_shell(page, root):
    """What a shell answers to the prompts of the page. ./dev uses the prefix in which all sessions run."""
    prefix = os.environ["WINEPREFIX"]
    for command in session_of(page):
        if command.folder == "$":
            text = command.text.replace("build/wine/demo", prefix)
            written, status = run(["bash", "-c", text], root, {"KEMBA_WINEPREFIX": prefix})
            yield from differences([command], [("$", written.replace("\r\n", "\n"), str(status))])


def run(command, folder, words, typing=""):
    """What a command writes when it is run in the folder with these words in its environment, and its status."""
    # Files and no pipes: servers that are started along the way would keep those open.
    with tempfile.TemporaryFile() as source, tempfile.TemporaryFile() as target:
        source.write(typing.encode("cp1252"))
        source.seek(0)
        status = subprocess.run(command, stdin=source, stdout=target, stderr=subprocess.STDOUT, cwd=folder,
                                env={**os.environ, **words}, timeout=SECONDS).returncode
        target.seek(0)
        return target.read().decode("cp1252"), status


def main(words):
    root = Path(__file__).resolve().parent.parent
    if words == ["list"]:
        print("\n".join(name for name, page in pages_of(root).items() if session_of(page)))
        return 0
    if words[:1] == ["run"]:
        page = pages_of(root)[words[1]]
        for printed in Path(os.environ["WINEPREFIX"]).glob("drive_c/users/*/Temp/dock-*.prn"):
            printed.unlink()
        found = [f"{words[1]}:{number}: {said}" for run_kind in (run_shell, run_cmd)
                 for number, said in run_kind(page, root)]
    else:
        found = list(problems(root))
    print("\n".join(found), end="\n" if found else "", file=sys.stderr)
    return bool(found)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
