#!/usr/bin/env python3
"""Holds the includes between folders against the picture in docs/architecture.md; silent when both say the same."""

import posixpath
import re
import sys
from pathlib import Path

PICTURE = "docs/architecture.md"


def read_picture(text):
    """Each arrow (from, to) of the first flowchart, with its line; a dotted one has True beside it."""
    before, _, picture = text.partition("```mermaid\nflowchart TD\n")
    arrows = {}
    for number, line in enumerate(picture.partition("```")[0].splitlines(), before.count("\n") + 3):
        row = re.fullmatch(r"\s*(\S+) (-->|-\.->) (\S+(?: & \S+)*)", line)
        for target in row[3].split(" & ") if row else ():
            arrows[row[1], target] = (number, row[2] == "-.->")
        if line and not row:
            sys.exit(f"{PICTURE}:{number}: is no arrow as this check reads them: {line}")
    return arrows


def folders_from(start, arrows):
    """The folders to which arrows lead from one; nothing follows a dotted arrow."""
    found, ahead = set(), [start]
    while ahead:
        place = ahead.pop()
        for (source, target), (_, dotted) in arrows.items():
            if source == place and target not in found:
                found.add(target)
                ahead += [] if dotted else [target]
    return found


def folder_of(path):
    """A source's folder; all tests are one."""
    folder = path.rpartition("/")[0]
    return "tests" if folder.startswith("tests") else folder


def read_includes(root):
    """Every folder with C++ sources, and each include (from, to) between two of them with its places."""
    paths = {path.relative_to(root).as_posix(): path for path in sorted(root.rglob("*.*"))
             if path.suffix in (".h", ".cpp") and path.relative_to(root).parts[0] != "build"}
    includes = {}
    for name, path in paths.items():
        for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
            header = re.match(r'\s*#\s*include ["<](.+)[">]', line)
            for target in (header[1], posixpath.normpath(f"{name}/../{header[1]}")) if header else ():
                if target in paths and folder_of(target) != folder_of(name):
                    pair = folder_of(name), folder_of(target)
                    includes.setdefault(pair, []).append((f"{name}:{number}", target))
    return {folder_of(name) for name in paths}, includes


def problems(folders, includes, page):
    """What the code and the page say differently, a line each."""
    arrows = read_picture(page)
    drawn = {folder for arrow in arrows for folder in arrow}
    for folder in sorted(folders ^ drawn):
        yield f"{PICTURE}: the picture has no {folder}" if folder in folders else \
              f"{PICTURE}: the picture has {folder}, where no C++ source is"
    for folder in sorted(folders & drawn):
        if f"\n| `{folder}/` |" not in page:
            yield f"{PICTURE}: the table has no row for {folder}"
    ways = {folder: folders_from(folder, arrows) for folder in drawn}
    for (source, target), (number, dotted) in arrows.items():
        others = {arrow: row for arrow, row in arrows.items() if arrow != (source, target)}
        if source in ways[target] | {target}:
            yield f"{PICTURE}:{number}: the arrow from {source} to {target} closes a circle"
        elif (source, target) not in includes:
            yield f"{PICTURE}:{number}: nothing in {source} includes a header of {target}"
        elif target in folders_from(source, others):
            yield f"{PICTURE}:{number}: {source} comes to {target} without this arrow as well"
    for (source, target), places in includes.items():
        if target not in ways.get(source, ()):
            for place, header in places:
                yield f"{place}: includes {header}, but {PICTURE} draws no way from {source} to {target}"


if __name__ == "__main__":
    base = Path(__file__).resolve().parent.parent
    found = list(problems(*read_includes(base), (base / PICTURE).read_text(encoding="utf-8")))
    print("\n".join(found), end="\n" if found else "", file=sys.stderr)
    sys.exit(bool(found))
