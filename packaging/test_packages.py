#!/usr/bin/env python3
"""Tests of the packages, in the Wine prefix of WINEPREFIX: makes them, looks into them, and installs, upgrades, repairs
and removes what the installer holds."""

import json
import os
import re
import struct
import subprocess
import sys
import tempfile
import time
import unittest
import zipfile
from pathlib import Path
from xml.etree import ElementTree

import yaml

import installer
import manifests
import package

sys.path.insert(0, str(package.ROOT / "checks"))
import links  # noqa: E402

WINE = package.ROOT / "cmake" / "start-wine"
PREFIX = Path(os.environ["WINEPREFIX"])
DRIVE = PREFIX / "drive_c"
HOME = DRIVE / "Program Files" / "kemba"
HOME_ON_WINDOWS = r"C:\Program Files\kemba"
CLASS = r"HKLM\Software\Classes\CLSID\{F56F2E65-2620-41A2-84B8-5CE2F149E1D0}"
ENVIRONMENT = r"HKLM\System\CurrentControlSet\Control\Session Manager\Environment"
REFUSED = 1603


def setUpModule():
    global SCRATCH, VERSION, VERSIONS, MADE, OLDER, NEWER
    SCRATCH = Path(unittest.enterModuleContext(tempfile.TemporaryDirectory()))
    VERSION = package.project("VERSION")
    VERSIONS = ("0.9.0", VERSION, "99.0.0")
    MADE = package.make(SCRATCH / "made")
    with tempfile.TemporaryDirectory() as staged:
        product = package.stage("product", Path(staged))
        OLDER, NEWER = SCRATCH / "older.msi", SCRATCH / "newer.msi"
        for version, path in ((VERSIONS[0], OLDER), (VERSIONS[2], NEWER)):
            for program in product.glob("*.exe"):
                program.write_bytes(of_version(program.read_bytes(), version))
            installer.build(product, version, package.publisher(), "another version", package.moment(), path)


def of_version(program, version):
    """The program, with another file version in its resource."""
    major, minor, patch = map(int, version.split("."))
    signature = struct.pack("<LL", 0xFEEF04BD, 0x00010000)  # of VS_FIXEDFILEINFO, whose file version follows
    before, after = program.split(signature)
    return before + signature + struct.pack("<HHHH", minor, major, 0, patch) + after[8:]


def batch(*lines):
    """The lines as a batch file, in a fresh cmd: what it prints, CR LF as LF."""
    script, output = SCRATCH / "run.cmd", SCRATCH / "run.out"
    script.write_text("@echo off\r\n" + "".join(line + "\r\n" for line in lines), newline="")
    with open(output, "wb") as printed:  # a file: what Wine starts along the way would hold on to a pipe
        subprocess.run([WINE, "cmd.exe", "/c", windows(script)], stdin=subprocess.DEVNULL, stdout=printed,
                       stderr=subprocess.DEVNULL, timeout=120, check=False)
    return output.read_bytes().decode("cp1252").replace("\r\n", "\n")


def windows(path):
    return "Z:" + str(path).replace("/", "\\")


def table(name):
    """The rows of a table of the installer."""
    return subprocess.run(["msiinfo", "export", MADE[1], name], check=True, capture_output=True, text=True,
                          encoding="cp1252").stdout.splitlines()


def msiexec(*words):
    """The status of a silent msiexec."""
    return int(batch(f"msiexec {' '.join(words)} /qn", "echo %ERRORLEVEL%").split()[-1])


def value(key, name=None):
    """A value of the registry, or nothing."""
    printed = batch(f'reg query "{key}" {f"/v {name}" if name else "/ve"}')
    found = re.search(r"(?m)^ +.*? +REG_\w+ +(.*)$", printed)
    return found and found[1]


def installed_versions():
    """Those that the system lists of the product."""
    listed = r"HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall\{%s}"
    return [version for version in VERSIONS
            if value(listed % installer.product_code(version), "DisplayVersion") == version]


def files():
    return sorted(path.relative_to(HOME).as_posix() for path in HOME.rglob("*") if path.is_file())


def path():
    """The machine's PATH."""
    return value(ENVIRONMENT, "PATH")


def machine():
    """Every file of the drive but temporary ones, and every key and value of the machine and the user."""
    found = sorted(str(path.relative_to(DRIVE)) for path in DRIVE.rglob("*") if "Temp" not in path.parts)
    for hive in ("HKEY_LOCAL_MACHINE", "HKEY_CURRENT_USER"):
        export = SCRATCH / f"{hive}.reg"
        batch(f'regedit /E "{windows(export)}" {hive}')
        found += export.read_text(encoding="utf-16").splitlines()
    return found


class Packages(unittest.TestCase):
    def test_the_zip_holds_the_programs_that_were_built_and_what_goes_with_them(self):
        with zipfile.ZipFile(MADE[0]) as archive:
            self.assertIsNone(archive.testzip())
            names = [name.removeprefix(f"kemba-{VERSION}/") for name in archive.namelist()]
            for name in ("kemba.exe", "kemba-dal.exe"):
                self.assertEqual(archive.read(f"kemba-{VERSION}/{name}"), (package.BUILD / "bin" / name).read_bytes())
            pages = [f"docs/{path.name}" for path in (package.ROOT / "docs").glob("*.md")]
            for name in ("profiles/escpos-receipt.profile", "README.md", "CHANGELOG.md", "SHA256SUMS", *pages):
                self.assertIn(name, names)
            self.assertFalse([name for name in names if re.search(r"test|demo|Dock", name)])

    def test_the_acceptance_zip_has_what_is_started_and_what_that_starts(self):
        with zipfile.ZipFile(MADE[2]) as archive:
            self.assertIsNone(archive.testzip())
            folder = f"kemba-acceptance-{VERSION}/"
            names = {name.removeprefix(folder) for name in archive.namelist()}
            for name in ("README.txt", "acceptance.exe", "kemba.exe", "kemba-dal.exe", "program_tests.exe"):
                self.assertIn(name, names)
            script = archive.read(folder + "accept.cmd")
            self.assertEqual(script.count(b"\r\n"), script.count(b"\n"))

    def test_the_checksums_in_the_zip_and_beside_it_are_those_of_all_files(self):
        with zipfile.ZipFile(MADE[0]) as archive:
            archive.extractall(SCRATCH / "out")
        for folder in (SCRATCH / "out" / f"kemba-{VERSION}", MADE[0].parent):
            subprocess.run(["sha256sum", "--check", "--strict", "--quiet", "SHA256SUMS"], cwd=folder, check=True)
            listed = (folder / "SHA256SUMS").read_text().count("\n")
            self.assertEqual(listed, len(package.files_below(folder)) - 1)

    def test_the_pages_in_the_zip_lead_to_pages_in_the_zip(self):
        with zipfile.ZipFile(MADE[0]) as archive:
            archive.extractall(SCRATCH / "pages")
        root = SCRATCH / "pages" / f"kemba-{VERSION}"
        for path in root.rglob("*.md"):
            name = path.relative_to(root).as_posix()
            self.assertEqual(list(links.page_problems(name, path.read_text(encoding="utf-8"), root, set())), [])

    def test_the_same_programs_give_the_same_bytes(self):
        again = package.make(SCRATCH / "again")
        for first, second in zip(MADE, again):
            self.assertEqual(first.read_bytes(), second.read_bytes(), first.name)

    def test_the_version_is_everywhere_that_of_the_project(self):
        program = (package.BUILD / "bin" / "kemba.exe").read_bytes()
        self.assertIn(f"ProductVersion\0{VERSION}\0".encode("utf-16-le"), program)
        self.assertIn(f"ProductVersion\t{VERSION}", table("Property"))
        self.assertIn(f"Manufacturer\t{package.publisher()}", table("Property"))
        for path in MADE:
            self.assertIn(VERSION, path.name)


class Tables(unittest.TestCase):
    """What Wine does not show."""

    def test_an_upgrade_takes_the_choice_of_features_over(self):
        older = next(row for row in table("Upgrade") if row.endswith("WIX_UPGRADE_DETECTED"))
        self.assertEqual(int(older.split("\t")[4]) & 1, 1, "msidbUpgradeAttributesMigrateFeatures")
        self.assertIn("MigrateFeatureStates", {row.split("\t")[0] for row in table("InstallExecuteSequence")})

    def test_actions_come_in_their_order(self):
        numbers = {row.split("\t")[0]: int(row.split("\t")[2]) for row in table("InstallExecuteSequence")[3:]}
        ordered = ("AppSearch", "CostFinalize", "RefuseOtherServer", "MigrateFeatureStates", "InstallInitialize",
                   "RemoveExistingProducts", "ProcessComponents", "UndoUnregisterServer", "UnregisterServer",
                   "RemoveFiles", "InstallFiles", "UndoRegisterServer", "RegisterServer", "WriteEnvironmentStrings",
                   "InstallFinalize")
        self.assertEqual(sorted(ordered, key=numbers.get), list(ordered))
        self.assertEqual(len(set(numbers.values())), len(numbers))

    def test_programs_go_by_their_versions_and_other_files_by_their_contents(self):
        files = {row[2].split("|")[-1]: (row[4], row[5]) for row in (line.split("\t") for line in table("File")[3:])}
        self.assertEqual(files, {"kemba.exe": (f"{VERSION}.0", "1033"), "kemba-dal.exe": (f"{VERSION}.0", "1033"),
                                 "escpos-receipt.profile": ("", "")})
        self.assertEqual([row.split("\t")[0] for row in table("MsiFileHash")[3:]], ["escpos_receipt.profile"])
        for row in table("File")[3:]:
            self.assertRegex(row.split("\t")[2].split("|")[0], r"^[\w-]{1,8}\.\w{1,3}$", "an 8.3 name")

    def test_kemba_cannot_be_left_out(self):
        features = {row.split("\t")[0]: int(row.split("\t")[7]) for row in table("Feature")[3:]}
        self.assertEqual(features, {"Program": 16, "SubstituteServer": 0}, "msidbFeatureAttributesUIDisallowAbsent")

    def test_a_failure_undoes_what_the_server_did(self):
        kinds = {row.split("\t")[0]: row.split("\t")[1:4] for row in table("CustomAction")[3:]}
        for done, undone in (("RegisterServer", "UndoRegisterServer"), ("UnregisterServer", "UndoUnregisterServer")):
            self.assertEqual(int(kinds[undone][0]) & 0x500, 0x500, "msidbCustomActionTypeRollback")
            self.assertNotEqual(kinds[done][2], kinds[undone][2])

    def test_what_ends_an_installation_says_why(self):
        refusal = next(row for row in table("CustomAction") if row.startswith("RefuseOtherServer"))
        self.assertIn("[OTHERSERVER]", refusal)
        self.assertTrue([row for row in table("Error") if row.startswith("1722\t") and "another program" in row])


class Installer(unittest.TestCase):
    def setUp(self):
        self.remove()
        self.assertEqual(files(), [])
        self.addCleanup(self.remove)

    @staticmethod
    def remove():
        """Removes every version; in PATH, Wine leaves the semicolon, and its prompt looks no further than two."""
        for version in installed_versions():
            msiexec("/x", f"{{{installer.product_code(version)}}}")
        left = path().rstrip(";").replace("%", "%%")
        batch(f'reg add "{ENVIRONMENT}" /v PATH /t REG_EXPAND_SZ /d "{left}" /f')

    def install(self, path=None, *words):
        self.assertEqual(msiexec("/i", windows(path or MADE[1]), *words), 0)

    def wait_for_the_server_to_end(self):
        """Its file could not be removed before."""
        for _ in range(60):
            found = subprocess.run(["pgrep", "-f", "kemba.kemba-dal.exe"], stdout=subprocess.DEVNULL, check=False)
            if found.returncode:
                return
            time.sleep(0.5)
        self.fail("the server did not end")

    def test_kemba_alone_is_installed_and_found_by_a_new_prompt(self):
        self.install()
        self.assertEqual(files(), ["kemba.exe"])
        self.assertEqual((HOME / "kemba.exe").read_bytes(), (package.BUILD / "bin" / "kemba.exe").read_bytes())
        self.assertIn("KEMBA usage:", batch("kemba help usage"))
        self.assertIsNone(value(CLASS + r"\LocalServer32"))
        self.assertEqual(installed_versions(), [VERSION])

    def test_the_server_comes_when_it_is_asked_for_and_serves(self):
        self.install(None, "ADDLOCAL=ALL")
        self.assertEqual(files(), ["kemba-dal.exe", "kemba.exe", "profiles/escpos-receipt.profile"])
        self.assertEqual(value(CLASS + r"\LocalServer32"), rf'"{HOME_ON_WINDOWS}\kemba-dal.exe"')
        self.assertIn(VERSION, batch("kemba version interface"))
        self.wait_for_the_server_to_end()

    def test_the_server_can_be_added_and_taken_away(self):
        self.install()
        self.install(None, "ADDLOCAL=SubstituteServer")
        self.assertIsNotNone(value(CLASS + r"\LocalServer32"))
        self.install(None, "REMOVE=SubstituteServer")
        self.assertIsNone(value(CLASS + r"\LocalServer32"))
        self.assertEqual(files(), ["kemba.exe"])

    def test_an_upgrade_takes_the_older_version_s_place_and_leaves_what_is_not_its_own(self):
        self.install(OLDER, "ADDLOCAL=ALL")
        own = HOME / "profiles" / "Dock 1.profile"
        own.write_text("Feed = FF\n")
        self.addCleanup(own.unlink, missing_ok=True)
        self.install(None, "ADDLOCAL=ALL")  # for Wine does not take over which features were chosen
        self.assertEqual(installed_versions(), [VERSION])
        self.assertIsNotNone(value(CLASS + r"\LocalServer32"))
        self.assertEqual((HOME / "kemba-dal.exe").read_bytes(), (package.BUILD / "bin/kemba-dal.exe").read_bytes())
        self.assertEqual(own.read_text(), "Feed = FF\n")

    def test_an_upgrade_of_kemba_alone_brings_no_server(self):
        self.install(OLDER)
        self.install()
        self.assertEqual(files(), ["kemba.exe"])
        self.assertEqual(path().split(";")[-1], HOME_ON_WINDOWS + "\\")

    def test_an_older_version_does_not_take_the_place_of_a_newer_one(self):
        self.install(NEWER)
        self.assertEqual(msiexec("/i", windows(MADE[1])), REFUSED)
        self.assertEqual(installed_versions(), ["99.0.0"])

    def test_a_repair_brings_files_path_and_registration_back(self):
        self.install(None, "ADDLOCAL=ALL")
        (HOME / "kemba.exe").unlink()
        batch(f'"{HOME_ON_WINDOWS}\\kemba-dal.exe" /unregserver')
        self.assertIsNone(value(CLASS + r"\LocalServer32"))
        self.install(None, "REINSTALL=ALL REINSTALLMODE=omus")  # what msiexec /f does, which Wine's does not
        self.assertIn("KEMBA usage:", batch("kemba help usage"))
        self.assertIsNotNone(value(CLASS + r"\LocalServer32"))

    def test_a_removal_leaves_nothing(self):
        self.install(None, "ADDLOCAL=ALL")  # what the system's own installer makes for its first product stays
        self.remove()
        before = machine()
        self.install(None, "ADDLOCAL=ALL")
        self.assertNotEqual(machine(), before)
        self.remove()
        self.assertEqual(machine(), before)

    def test_where_another_program_serves_the_classes_its_server_stays_and_ours_is_refused(self):
        for kind in ("LocalServer32", "InprocServer32"):
            with self.subTest(kind):
                batch(rf'reg add "{CLASS}\{kind}" /ve /d C:\other.exe /f')
                self.addCleanup(batch, f'reg delete "{CLASS}" /f')
                self.assertEqual(msiexec("/i", windows(MADE[1]), "ADDLOCAL=ALL"), REFUSED)
                self.assertEqual(files(), [])
                self.assertEqual(value(rf"{CLASS}\{kind}"), r"C:\other.exe")
                self.install()
                self.assertEqual(files(), ["kemba.exe"])
                self.remove()
                self.assertEqual(value(rf"{CLASS}\{kind}"), r"C:\other.exe")
                batch(f'reg delete "{CLASS}" /f')

    def test_what_the_server_itself_refuses_is_undone(self):
        library = r"HKLM\Software\Classes\TypeLib\{92F852BA-8681-4312-8DBC-427E0BA3E3CE}"
        batch(rf'reg add "{library}\1.0\0\win64" /ve /d C:\other.tlb /f')
        self.addCleanup(batch, f'reg delete "{library}" /f')
        self.assertNotEqual(msiexec("/i", windows(MADE[1]), "ADDLOCAL=ALL"), 0)  # REFUSED on Windows, 1627 on Wine
        self.assertEqual(installed_versions(), [])
        self.assertEqual(files(), [])
        self.assertNotIn("kemba", path())
        self.assertIsNone(value(CLASS + r"\LocalServer32"))
        self.assertEqual(value(rf"{library}\1.0\0\win64"), r"C:\other.tlb")


# What each field of the manifests may hold, as the published schemas say: a form, or the forms of what is inside it.
# Every field of a manifest is here, and every field here is in the manifest.
TEXT, ADDRESS, NUMBERS, SHA256 = r".{3,256}", r"https://.{1,2000}", r"\d{1,5}(\.\d{1,5}){0,3}", r"[A-Fa-f0-9]{64}"
NAME = r'[^.\s\\/:*?"<>|]{1,32}'
WINGET = {"PackageIdentifier": rf"{NAME}(\.{NAME}){{1,7}}", "PackageVersion": NUMBERS, "ManifestVersion": r"1\.6\.0"}
FORMS = {
    "winget/Brandle.Kemba.yaml": WINGET | {"DefaultLocale": "en-US", "ManifestType": "version"},
    "winget/Brandle.Kemba.locale.en-US.yaml": WINGET | {
        "PackageLocale": "en-US", "Publisher": TEXT, "PackageName": TEXT, "PackageUrl": ADDRESS, "License": TEXT,
        "LicenseUrl": ADDRESS, "ShortDescription": TEXT, "Moniker": r"\w{1,40}", "Tags": [r"\w{1,40}"],
        "ManifestType": "defaultLocale"},
    "winget/Brandle.Kemba.installer.yaml": WINGET | {
        "Platform": [r"Windows\.Desktop"], "MinimumOSVersion": NUMBERS, "InstallerType": "msi", "Scope": "machine",
        "UpgradeBehavior": "install", "Commands": [r"\w{1,40}"], "ProductCode": r"\{[0-9A-F-]{36}\}",
        "Installers": [{"Architecture": "x64", "InstallerUrl": ADDRESS, "InstallerSha256": SHA256}],
        "ManifestType": "installer"},
    "scoop/kemba.json": {
        "version": r"[\w.+-]+", "description": TEXT, "homepage": ADDRESS, "bin": TEXT, "notes": TEXT,
        "license": {"identifier": r"[\w.+-]+", "url": ADDRESS},
        "architecture": {"64bit": {"url": ADDRESS, "hash": SHA256, "extract_dir": TEXT}}},
}


class Manifests(unittest.TestCase):
    OWNED = {"licence": "MIT", "licence_page": "https://kemba.invalid/licence", "homepage": "https://kemba.invalid",
             "downloads": "https://kemba.invalid/files"}

    def owner(self, **changes):
        """An owner.ini with everything that manifests need, but for the changes."""
        file = SCRATCH / "owner.ini"
        file.write_text("[owner]\n" + "".join(f"{name} = {text}\n" for name, text in (self.OWNED | changes).items()))
        return file

    def written(self):
        folder = SCRATCH / "manifests"
        manifests.write(folder, package.manifest_values(MADE[0], MADE[1], VERSION) | manifests.choices(self.owner()))
        return folder

    def test_they_name_what_was_made(self):
        folder = self.written()
        winget = {path.stem.removeprefix("Brandle.Kemba"): yaml.safe_load(path.read_text())
                  for path in (folder / "winget").iterdir()}
        self.assertEqual(set(winget), {"", ".installer", ".locale.en-US"})
        for manifest in winget.values():
            self.assertEqual(manifest["PackageIdentifier"], "Brandle.Kemba")
            self.assertEqual(manifest["PackageVersion"], VERSION)
            self.assertEqual(manifest["ManifestVersion"], "1.6.0")
        of_msi, of_zip = package.digest(MADE[1]), package.digest(MADE[0])
        self.assertEqual(winget[".installer"]["Installers"],
                         [{"Architecture": "x64", "InstallerSha256": of_msi.upper(),
                           "InstallerUrl": f"https://kemba.invalid/files/{MADE[1].name}"}])
        self.assertEqual(winget[".installer"]["ProductCode"], f"{{{installer.product_code(VERSION)}}}")
        self.assertEqual(winget[".locale.en-US"]["Publisher"], package.publisher())
        scoop = json.loads((folder / "scoop" / "kemba.json").read_text())
        self.assertEqual(scoop["version"], VERSION)
        self.assertEqual(scoop["license"], {"identifier": "MIT", "url": "https://kemba.invalid/licence"})
        self.assertEqual(scoop["architecture"]["64bit"], {"url": f"https://kemba.invalid/files/{MADE[0].name}",
                                                          "hash": of_zip, "extract_dir": f"kemba-{VERSION}"})
        with zipfile.ZipFile(MADE[0]) as archive:
            archive.getinfo(f"kemba-{VERSION}/{scoop['bin']}")
        nuspec = ElementTree.parse(folder / "chocolatey" / "kemba.nuspec").getroot()[0]
        texts = {re.sub("{.*}", "", element.tag): element.text for element in nuspec}
        self.assertEqual((texts["id"], texts["version"]), ("kemba", VERSION))
        script = (folder / "chocolatey" / "tools" / "chocolateyinstall.ps1").read_text()
        self.assertIn(f"'https://kemba.invalid/files/{MADE[1].name}'", script)
        self.assertIn(f"'{of_msi}'", script)

    def check_form(self, found, form, where):
        if isinstance(form, dict):
            self.assertEqual(set(found), set(form), where)
            for name, inner in form.items():
                self.check_form(found[name], inner, f"{where}: {name}")
        elif isinstance(form, list):
            self.assertTrue(found, where)
            for one in found:
                self.check_form(one, form[0], where)
        else:
            self.assertRegex(found, f"^(?:{form})$", where)

    def test_they_have_the_form_that_their_readers_want(self):
        folder = self.written()
        for name, form in FORMS.items():
            text = (folder / name).read_text(encoding="utf-8")
            self.check_form(json.loads(text) if name.endswith(".json") else yaml.safe_load(text), form, name)
        found = {path.relative_to(folder).as_posix() for path in package.files_below(folder)}
        self.assertEqual(found - set(FORMS), {"chocolatey/kemba.nuspec", "chocolatey/tools/chocolateyinstall.ps1"})

    def test_nothing_is_made_up_for_what_the_owner_leaves_open(self):
        for name in self.OWNED:
            with self.assertRaisesRegex(manifests.OpenChoices, f"leaves open: {name}$"):
                manifests.choices(self.owner(**{name: ""}))
        with self.assertRaisesRegex(manifests.OpenChoices, "licence, licence_page, homepage, downloads"):
            manifests.choices()

    def test_a_choice_that_would_spoil_a_manifest_is_refused(self):
        for name, text in (("licence", "MIT, or so"), ("homepage", "http://kemba.invalid"), ("colour", "red"),
                           ("downloads", "https://kemba.invalid/'x"), ("licence_page", "https://kemba.invalid/")):
            with self.assertRaisesRegex(manifests.OpenChoices, name):
                manifests.choices(self.owner(**{name: text}))


if __name__ == "__main__":
    unittest.main()
