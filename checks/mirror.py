#!/usr/bin/env python3
"""Looks whether the tests of every source are found: under its name in tests/, or where tests/README.md says."""

import sys
from pathlib import Path

PAGE = "tests/README.md"
# What is no part of what ships: benchmarks measure and are not tested.
WITHOUT_TESTS = ("bench", "build", "tests")
# Folders of tests whose files have no source each; the page says what is in them.
OF_THEIR_OWN = ("acceptance", "commands", "fuzz", "kit", "programs", "shortage", "whole_run")


def problems(root):
    page = (root / PAGE).read_text(encoding="utf-8")
    tests = {path.relative_to(root / "tests") for path in (root / "tests").rglob("*Tests.cpp")}
    sources = {path.relative_to(root) for path in root.rglob("*.cpp")
               if path.relative_to(root).parts[0] not in WITHOUT_TESTS}
    headers = {path.relative_to(root) for path in root.rglob("*.h") if path.relative_to(root).parts[0] != "build"}
    for source in sorted(sources):
        if not any(test.parent == source.parent and test.name.startswith(source.stem) for test in tests) and \
                f"`{source.stem}`" not in page:
            yield f"{source.as_posix()}: tests/{source.parent.as_posix()}/ has no tests of that name, nor has {PAGE}"
    for test in sorted(tests):
        if test.parts[0] not in OF_THEIR_OWN and f"`{test.name}`" not in page and \
                not any(test.parent == source.parent and test.name.startswith(source.stem)
                        for source in sources | headers):
            yield f"tests/{test.as_posix()}: no source in {test.parent.as_posix()}/ has that name, nor has {PAGE}"


if __name__ == "__main__":
    found = list(problems(Path(__file__).resolve().parent.parent))
    print("\n".join(found), end="\n" if found else "", file=sys.stderr)
    sys.exit(bool(found))
