#!/usr/bin/env python3
"""Looks whether what the pages link to is there; silent when all is. Addresses outside are not asked for, only their
form is looked at."""

import posixpath
import re
import sys
from pathlib import Path
from urllib.parse import unquote, urlsplit

sys.dont_write_bytecode = True

import prose

ROOT_PAGE = "README.md"
# A label may have brackets of an image in it. A target may be in angle brackets, a title behind it.
INLINE = re.compile(r"!?\[(?:[^\[\]]|!?\[[^\[\]]*\](?:\([^()]*\))?)*\]\(\s*(<[^>]*>|[^\s()]*(?:\([^\s()]*\)[^\s()]*)*)"
                    r"(?:\s+(?:\"[^\"]*\"|'[^']*'))?\s*\)")
IMAGE_IN_LABEL = re.compile(r"(?<=\[)!\[[^\[\]]*\]\(\s*([^\s()]+)")
DEFINITION = re.compile(r"(?m)^ {,3}\[([^\]]+)\]:\s*(<[^>]*>|\S+)")
REFERENCE = re.compile(r"\[([^\[\]]+)\]\[([^\[\]]*)\]")
SHORTCUT = re.compile(r"(?<![\]\w\\])\[([^\[\]]+)\](?![\[(:])")
HTML = re.compile(r"<(?:a|img)\b[^>]*?\b(?:href|src)\s*=\s*[\"']([^\"']*)[\"']", re.IGNORECASE)
ADDRESS = re.compile(r"(?<![\w(<\"'=])<?\b([a-z]+://[^\s<>\"'`)\]]*[^\s<>\"'`)\].,;:!?])")


def blanked(pattern, text):
    """The text with spaces for what the pattern matches, lines kept."""
    return re.sub(pattern, lambda match: re.sub(r"[^\n]", " ", match[0]), text)


def prose_of(page):
    """The page without its blocks, its code and its remarks."""
    page = blanked(r"(?ms)^ *(```+|~~~+).*?^ *\1[ \t]*$|<!--.*?-->", page)
    return blanked(r"(`+)(?!`).+?(?<!`)\1(?!`)", page)


def anchors_of(page):
    """What a link may name behind '#': headings as GitHub writes them, each more of one name numbered, and anchors."""
    anchors, seen = set(re.findall(r"<[^>]*\b(?:id|name)=[\"']([^\"']+)[\"']", page)), {}
    for title in re.findall(r"(?m)^#{1,6} +(.+?)(?: +#+)?$", blanked(r"(?ms)^ *(```+|~~~+).*?^ *\1[ \t]*$", page)):
        plain = re.sub(r"!?\[([^\]]*)\](\([^)]*\)|\[[^\]]*\])", r"\1", title)
        anchor = re.sub(r"[^\w -]", "", plain.lower()).replace(" ", "-")
        anchors.add(f"{anchor}-{seen[anchor]}" if anchor in seen else anchor)
        seen[anchor] = seen.get(anchor, 0) + 1
    return anchors


def links_of(page):
    """Every link and image of a page: the line, and where it leads, or None where a label is not defined."""
    text = prose_of(page)
    line = lambda match: text.count("\n", 0, match.start()) + 1
    defined = {label.lower(): target for label, target in DEFINITION.findall(text)}
    used = set()
    for pattern in (INLINE, IMAGE_IN_LABEL, HTML, ADDRESS):
        yield from ((line(match), match[1].strip("<>")) for match in pattern.finditer(text))
    for match in REFERENCE.finditer(text):
        label = (match[2] or match[1]).lower()
        used.add(label)
        yield line(match), defined.get(label, "").strip("<>") or None
    for match in SHORTCUT.finditer(text):
        if match[1].lower() in defined:
            used.add(match[1].lower())
            yield line(match), defined[match[1].lower()].strip("<>")
    for match in DEFINITION.finditer(text):
        if match[1].lower() not in used:
            yield line(match), None


def bad_address(address):
    """What is wrong with the form of an address outside, or nothing."""
    parts = urlsplit(address)
    if parts.scheme == "mailto":
        return None if re.fullmatch(r"[^@\s]+@[\w-]+(\.[\w-]+)+", parts.path) else "is no address of mail"
    if parts.scheme != "https":
        return "is not https"
    if not re.fullmatch(r"[\w-]+(\.[\w-]+)+(:\d+)?", parts.netloc):
        return "has no name of a machine"
    return "ends in a stop of the sentence" if re.search(r"[.,;:!?]$", address) else None


def lands(name, target, root):
    """The page or file below the root to which a link of a page leads, and its anchor; None where it leads out."""
    path, _, anchor = unquote(target).partition("#")
    place = posixpath.normpath(posixpath.join(posixpath.dirname(name), path)) if path else name
    return (None if path.startswith("/") or place.startswith("..") or not (root / place).exists() else place), anchor


def page_problems(name, page, root, reached):
    """What is wrong with the links of a page; adds to `reached` the pages to which they lead."""
    for number, target in links_of(page):
        if target is None:
            yield number, "has a label that is not defined, or defines one that is not used"
        elif re.match(r"[a-zA-Z][\w+.-]*:", target):
            if said := bad_address(target):
                yield number, f"{said}: {target}"
        else:
            place, anchor = lands(name, target, root)
            if place is None:
                yield number, f"leads nowhere: {target}"
            elif anchor and (not place.endswith(".md") or
                             anchor not in anchors_of((root / place).read_text(encoding="utf-8"))):
                yield number, f"leads to a place that is not in {place}: {target}"
            else:
                reached.add(place)


def mentions(text):
    """The pages that a source names, with an anchor perhaps, each with its line."""
    for match in re.finditer(r"(?<![\w/.*-])((?:[\w-]+/)*[\w-]+\.md)(?:#([\w-]+))?(?![\w(])", text):
        yield text.count("\n", 0, match.start()) + 1, match[1], match[2]


def source_problems(name, text, root, pages):
    for number, path, anchor in mentions(text):
        near = posixpath.join(posixpath.dirname(name), path)
        place = next((place for place in (path, near) if place in pages), None)
        if not place and ("/" in path or all(posixpath.basename(page) != path for page in pages)):
            yield number, f"names a page that is not there: {path}"
        elif anchor and place and anchor not in anchors_of(pages[place]):
            yield number, f"names a place that is not in {path}: #{anchor}"


def problems(root):
    files = dict(prose.files_of(root))
    pages = {name: text for name, text in files.items() if name.endswith(".md")}
    leads = {}
    for name, page in pages.items():
        leads[name] = {word for _, word in prose.named_in(page) if word in pages}
        for number, said in page_problems(name, page, root, leads[name]):
            yield f"{name}:{number}: {said}"
    for name, text in files.items():
        if name not in pages and not name.startswith("checks/test_"):
            for number, said in source_problems(name, text, root, pages):
                yield f"{name}:{number}: {said}"
    found, ahead = {ROOT_PAGE}, [ROOT_PAGE]
    while ahead:
        new = leads.get(ahead.pop(), set()) - found
        found |= new
        ahead += new
    for name in sorted(pages.keys() - found):
        yield f"{name}: no page that can be reached from {ROOT_PAGE} links to it or names it"


if __name__ == "__main__":
    said = list(problems(Path(__file__).resolve().parent.parent))
    print("\n".join(said), end="\n" if said else "", file=sys.stderr)
    sys.exit(bool(said))
