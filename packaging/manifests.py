"""The manifests of package managers: the templates in manifests/, filled in. What only the owner of the product decides
stands in owner.ini; as long as a part of it is open, there are no manifests."""

import configparser
import re
from pathlib import Path
from string import Template

HERE = Path(__file__).resolve().parent
TEMPLATES = HERE / "manifests"
OWNER = HERE / "owner.ini"
ADDRESS = r"https://[\w.~:/?#@!&*+,;=%-]*[^/\W]"

# What manifests need of the owner, and what each may look like.
CHOICES = {"licence": r"[A-Za-z0-9.+-]+", "licence_page": ADDRESS, "homepage": ADDRESS, "downloads": ADDRESS}


class OpenChoices(Exception):
    """What the owner has not decided yet, or not so that it can be used."""


def choices(path=OWNER):
    """What the owner has decided; raises OpenChoices."""
    read = configparser.ConfigParser(interpolation=None)
    read.read_string(path.read_text(encoding="utf-8"))
    given = {name: read.get("owner", name, fallback="").strip() for name in CHOICES}
    if unknown := sorted(set(read["owner"]) - set(CHOICES)):
        raise OpenChoices(f"{path.name} has what nobody reads: {', '.join(unknown)}")
    if missing := [name for name, value in given.items() if not value]:
        raise OpenChoices(f"{path.name} leaves open: {', '.join(missing)}")
    if wrong := [name for name, value in given.items() if not re.fullmatch(CHOICES[name], value)]:
        raise OpenChoices(f"{path.name} has what cannot be used: {', '.join(wrong)}")
    return given


def write(folder, values):
    """Fills every template in, below the folder; a name in a template that has no value is an error."""
    for template in sorted(path for path in TEMPLATES.rglob("*") if path.is_file()):
        target = folder / template.relative_to(TEMPLATES)
        target.parent.mkdir(parents=True, exist_ok=True)
        target.write_text(Template(template.read_text(encoding="utf-8")).substitute(values), encoding="utf-8",
                          newline="\n")
