"""The installer (MSI): kemba.wxs as wixl understands it, and installer.sql on top of it."""

import hashlib
import os
import re
import shutil
import subprocess
import tempfile
import time
import uuid
from pathlib import Path
from string import Template

HERE = Path(__file__).resolve().parent
DESCRIPTION = HERE / "kemba.wxs"
STATEMENTS = HERE / "installer.sql"
FILES = ("kemba.exe", "kemba-dal.exe", "profiles/escpos-receipt.profile")


def identity(*parts):
    """An identity that is the same for the same parts, in the family of the product's upgrade code."""
    family = re.search(r'UpgradeCode="([^"]+)"', DESCRIPTION.read_text(encoding="utf-8"))[1]
    return str(uuid.uuid5(uuid.UUID(family), "\n".join(parts))).upper()


def product_code(version):
    """One for each version: that is how an upgrade is told from a repair."""
    return identity("product", version)


def statements(version):
    """The statements of installer.sql."""
    text = re.sub(r"(?m)^--.*\n", "", STATEMENTS.read_text(encoding="utf-8"))
    return [" ".join(one.split()) for one in Template(text).substitute(version=version).split(";\n") if one.strip()]


def build(folder, version, publisher, description, moment, installer):
    """Writes the installer of the programs in the folder; all its times are the moment, in seconds since 1970."""
    contents = [DESCRIPTION, STATEMENTS, *(folder / name for name in FILES)]
    digest = hashlib.sha256(b"".join(hashlib.sha256(path.read_bytes()).digest() for path in contents)).hexdigest()
    # Both tools take the time of day; wixl goes on after what its library calls critical.
    environment = {**os.environ, "TZ": "UTC", "G_DEBUG": "fatal-criticals"}
    frozen = ["faketime", "-f", time.strftime("%Y-%m-%d %H:%M:%S", time.gmtime(moment))]

    def run(*words):
        subprocess.run([*frozen, *map(str, words)], cwd=work, env=environment, check=True, stdin=subprocess.DEVNULL)

    with tempfile.TemporaryDirectory() as made:
        work = Path(made)
        for name in FILES:
            (work / name).parent.mkdir(exist_ok=True)
            shutil.copyfile(folder / name, work / name)
            os.utime(work / name, (moment, moment))
        values = {"Version": version, "Publisher": publisher, "Description": description,
                  "ProductCode": product_code(version)}
        defined = [word for name, value in values.items() for word in ("-D", f"{name}={value}")]
        run("wixl", "-a", "x64", *defined, "-o", "new.msi", DESCRIPTION)
        run("msibuild", "new.msi", "-q", *statements(version))
        package_code = identity("package", version, publisher, description, str(moment), digest)
        run("msibuild", "new.msi", "-s", description, publisher, "x64;1033", f"{{{package_code}}}")
        shutil.move(work / "new.msi", installer)
