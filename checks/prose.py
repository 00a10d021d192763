#!/usr/bin/env python3
"""Looks for lines that are too long to read, and for what the pages name and the tree does not have; silent without."""

import re
import sys
from pathlib import Path

COLUMNS = 120
SCRIPTS = ("dev", ".ci/run", ".clang-tidy", "cmake/run-tests", "cmake/run-wine", "cmake/start-wine")
ENDINGS = (".cmake", ".cmd", ".cpp", ".def", ".h", ".idl", ".in", ".ini", ".js", ".json", ".md", ".nuspec", ".ps1",
           ".py", ".rc", ".sql", ".txt", ".wxs", ".yaml")
CATALOGUE = "KEMBA[ENU].TXT"  # content, not prose
CONTRACT = "automation/DriverAutomation.idl"
SERVER_PAGE = "docs/automation-server.md"
MANUAL = "docs/manual.md"
FOREIGN = ("DsDriver", "DsSpooler", "PascalCase", "RemoteServerName")  # names that stand in the pages alone


def files_of(root):
    """The path below the root of each file that people read, the catalogue's too, and its text."""
    for path in sorted(root.rglob("*")):
        name = path.relative_to(root).as_posix()
        if name.split("/")[0] not in ("build", ".git") and \
                (name in SCRIPTS or path.suffix in ENDINGS or path.name == CATALOGUE):
            yield name, path.read_text(encoding="utf-8")


def long_lines(name, text):
    """Tables, and links alone in their lines, cannot be wrapped."""
    for number, line in enumerate(text.splitlines(), 1):
        table = name.endswith(".md") and re.match(r"\||(- )?\[[^]]*\](\(\S+\)|: \S+)$", line)
        if len(line) > COLUMNS and not table:
            yield f"{name}:{number}: is {len(line)} columns wide; {COLUMNS} is the most"


def named_in(page):
    """What stands between backticks, with its line; code blocks are left out."""
    prose = re.sub(r"(?ms)^```.*?^```", lambda block: "\n" * block[0].count("\n"), page)
    for match in re.finditer(r"`([^`\n]+)`", prose):
        yield prose.count("\n", 0, match.start()) + 1, match[1]


def lacks_path(word, root, sources):
    """Whether the word is a path below the root, or a file's name alone, that is not there."""
    path = re.fullmatch(r"[\w.\[\]-]*(/[\w.\[\]-]+)*(/|\.(h|cpp|idl|md|py|cmake|txt|TXT))", word)
    if not path or word.startswith("build/") or re.search(r"(\b|_)Name(Tests)?\.", word):  # made, or named as you like
        return False
    return not (root / word).exists() and (path[1] or all(file.rsplit("/", 1)[-1] != word for file in sources))


def is_missing(name, root, sources):
    """Whether a page's `name` has a path in it, or is a verb, a test or a name in the code, that is not there."""
    if any(lacks_path(word, root, sources) for word in name.split()):
        return True
    if verb := re.match(r"\./dev ([a-z]+)((?: [a-z]+)*)", name):
        checks = verb[2].split() if verb[1] == "check" else []
        places = [rf"verb_{verb[1]}\(\)", *(rf"check_{check}\(\)|{check}_checks=" for check in checks)]
        return not all(re.search(rf"(?m)^({place})", sources["dev"]) for place in places)
    text = "\n".join(sources.values())
    if test := re.fullmatch(r"([A-Z]\w+)\.([A-Z]\w+)", name):
        return name not in text and not re.search(rf"\(\s*{test[1]},\s*{test[2]}\b", text)
    return bool(re.fullmatch(r"[A-Z]\w*[a-z]\w*[A-Z]\w*", name)) and name not in FOREIGN and \
        not re.search(rf"\b{name}\b", text)


def undescribed(contract, page):
    """The operations of the contract that the page about its server does not name."""
    for operation in re.findall(r"HRESULT (\w+)\(", contract):
        if not operation.startswith("Reserved") and not re.search(rf"`{operation}`", page):
            yield f"{SERVER_PAGE}: says nothing about {operation}"


def unexplained(catalogue, page):
    """The messages of the catalogue, its pages of help left out, that have no row in the manual's table."""
    for key, text in re.findall(r"(?m)^#((?:error|text):\w+)\r?\n([^\r\n]*)", catalogue):
        if not re.search(rf"(?m)^\| .*`{re.escape(text)}`.* \|$", page):
            yield f"{MANUAL}: has no row for the message {key}: {text}"


def sources_of(files):
    return {name: text for name, text in files.items() if not name.startswith("checks/") and name[-3:] != ".md"}


def problems(root):
    files = dict(files_of(root))
    sources = sources_of(files)
    for name, text in files.items():
        if not name.endswith(CATALOGUE):
            yield from long_lines(name, text)
        if name.endswith(".md"):
            for number, word in named_in(text):
                if is_missing(word, root, sources):
                    yield f"{name}:{number}: names {word}, which is not there"
    yield from undescribed(files.get(CONTRACT, ""), files.get(SERVER_PAGE, ""))
    yield from unexplained(files.get(f"messages/{CATALOGUE}", ""), files.get(MANUAL, ""))


if __name__ == "__main__":
    found = list(problems(Path(__file__).resolve().parent.parent))
    print("\n".join(found), end="\n" if found else "", file=sys.stderr)
    sys.exit(bool(found))
