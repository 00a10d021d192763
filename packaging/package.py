#!/usr/bin/env python3
"""Makes what is handed out, in build/package: the zip, the installer, the acceptance run and their checksums, and the
manifests of package managers as far as owner.ini lets them be made. Takes the programs of the preset mingw-release; the
same programs give the same bytes."""

import hashlib
import os
import re
import shutil
import subprocess
import sys
import tempfile
import time
import zipfile
from pathlib import Path

import installer
import manifests

ROOT = Path(__file__).resolve().parent.parent
BUILD = ROOT / "build" / "mingw-release"
TARGET = ROOT / "build" / "package"


def project(name):
    """What CMakeLists.txt says in project(): VERSION, DESCRIPTION."""
    return re.search(rf"(?m)^CMAKE_PROJECT_{name}:STATIC=(.*)$", (BUILD / "CMakeCache.txt").read_text())[1]


def publisher():
    """Who the programs say they are from."""
    return re.search(r'"CompanyName", "(.*?)\\0"', (ROOT / "resources" / "kemba.rc").read_text(encoding="utf-8"))[1]


def moment():
    """When what is packaged was written, in seconds since 1970: SOURCE_DATE_EPOCH, or when the last commit was made."""
    given = os.environ.get("SOURCE_DATE_EPOCH") or subprocess.run(
        ["git", "-C", ROOT, "log", "-1", "--format=%ct"], stdout=subprocess.PIPE, text=True, check=False).stdout.strip()
    if not re.fullmatch(r"\d+", given):
        sys.exit("package: there is no commit to take the time from; set SOURCE_DATE_EPOCH, in seconds since 1970")
    return int(given)


def stage(component, folder):
    """What CMake installs of the component, in the folder."""
    subprocess.run(["cmake", "--install", BUILD, "--component", component, "--prefix", folder], check=True,
                   stdout=subprocess.DEVNULL)
    return folder


def files_below(folder):
    return sorted(path for path in folder.rglob("*") if path.is_file())


def digest(path):
    return hashlib.sha256(path.read_bytes()).hexdigest()


def checksums(paths, folder):
    """Lines for `sha256sum --check` in the folder."""
    return "".join(f"{digest(path)}  {path.relative_to(folder).as_posix()}\n"
                   for path in paths)


def write_zip(folder, seconds, archive):
    """The folder, under the archive's own name, with nothing of this machine but names and contents."""
    with zipfile.ZipFile(archive, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as made:
        for path in files_below(folder):
            entry = zipfile.ZipInfo(f"{archive.stem}/{path.relative_to(folder).as_posix()}", zip_time(seconds))
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.create_system = 0  # Windows, without Unix permissions
            made.writestr(entry, path.read_bytes(), compresslevel=9)


def zip_time(seconds):
    """In UTC; a zip begins in 1980."""
    return max(time.gmtime(seconds)[:6], (1980, 1, 1, 0, 0, 0))


def make(target):
    """Everything, in the target folder; gives the paths of what is handed out."""
    version, seconds = project("VERSION"), moment()
    shutil.rmtree(target, ignore_errors=True)
    target.mkdir(parents=True)
    made = [target / f"kemba-{version}.zip", target / f"kemba-{version}-x64.msi",
            target / f"kemba-acceptance-{version}.zip"]
    with tempfile.TemporaryDirectory() as staged:
        product = stage("product", Path(staged, "product"))
        (product / "SHA256SUMS").write_text(checksums(files_below(product), product), newline="\n")
        write_zip(product, seconds, made[0])
        installer.build(product, version, publisher(), project("DESCRIPTION"), seconds, made[1])
        write_zip(stage("acceptance", Path(staged, "acceptance")), seconds, made[2])
    (target / "SHA256SUMS").write_text(checksums(made, target), newline="\n")
    return made


def manifest_values(archive, msi, version):
    """What stands in manifests besides the owner's choices."""
    return {"version": version, "publisher": publisher(), "description": project("DESCRIPTION"),
            "product_code": installer.product_code(version), "zip": archive.name, "zip_folder": archive.stem,
            "zip_sha256": digest(archive), "installer": msi.name, "installer_sha256": digest(msi),
            "INSTALLER_SHA256": digest(msi).upper()}


def main():
    made = make(TARGET)
    for path in made:
        print(f"{path.relative_to(ROOT)}: {path.stat().st_size:,} bytes")
    try:
        values = manifest_values(made[0], made[1], project("VERSION")) | manifests.choices()
    except manifests.OpenChoices as reason:
        print(f"no manifests of package managers: {reason}", file=sys.stderr)
        return
    manifests.write(TARGET / "manifests", values)
    print((TARGET / "manifests").relative_to(ROOT))


if __name__ == "__main__":
    main()
