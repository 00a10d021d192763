#!/usr/bin/env python3
"""Tests of what dev and CMake do on Windows with MSYS2, with stand-ins for both: python3 checks/test_windows.py"""

import os
import re
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
# Each writes its name and words down; the words of a program are to reach it as they are, which this variable asks for.
STAND_IN = '#!/bin/sh\necho "${0##*/} $*${MSYS2_ARG_CONV_EXCL:+ (as they are)}" >>"$CALLS"\n'
CALLED = {"pacman": '[ "$1" != -T ] || { echo "$4"; exit 127; }\n', "ctest": "echo 'Total Test time'\n",
          "cmake": "mkdir -p build/mingw-release build/mingw-debug\n", "ninja": "", "kemba.exe": "exit 3\n",
          "apt-get": "", "dpkg-query": ""}
MSYS2 = ["mingw-w64-x86_64-" + name for name in ("cmake", "ninja", "gcc", "tools-git", "gtest")]
INSTALLED = [f"pacman -T {' '.join(MSYS2)}", f"pacman -S --needed --noconfirm {MSYS2[2]}"]


def built(preset, targets=""):
    folder = f"build/{preset}"
    return [f"cmake --fresh --preset {preset}", f"ninja -C {folder} -n{targets}",
            f"cmake --build --preset {preset}" + (f" --target{targets}" if targets else "")]


class Script(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        for name in ("dev", "cmake/start-wine", "CMakePresets.json", "cmake/mingw-w64-x86_64.cmake"):
            (self.root / name).parent.mkdir(exist_ok=True)
            shutil.copy(ROOT / name, self.root / name)
        for name, more in CALLED.items():
            place = self.root / ("build/mingw-release/bin" if name.endswith(".exe") else "tools") / name
            place.parent.mkdir(parents=True, exist_ok=True)
            place.write_text(STAND_IN + more, encoding="utf-8")
            place.chmod(0o755)

    def run_dev(self, *words, shell="MINGW64"):
        """The status, and each call."""
        calls = self.root / "calls"
        calls.write_text("", encoding="utf-8")
        surroundings = {"PATH": f"{self.root}/tools:{os.environ['PATH']}", "CALLS": str(calls), "MSYSTEM": shell}
        status = subprocess.run([self.root / "dev", *words], env=surroundings, check=False, timeout=60,
                                stdin=subprocess.DEVNULL, capture_output=True).returncode
        return status, calls.read_text(encoding="utf-8").replace(f"{self.root}/", "").splitlines()

    def test_run_builds_and_starts_the_program_itself(self):
        self.assertEqual(self.run_dev("run", "/a", "get", "status"), (3, [
            *INSTALLED, *built("mingw-release", " kemba kemba-dal demo-printers"),
            "kemba.exe /a get status (as they are)"]))

    def test_test_builds_both_presets_and_runs_their_tests(self):
        status, calls = self.run_dev("test", "-R", "Name")
        self.assertEqual(status, 0)
        self.assertEqual([call for call in calls if not call.startswith("ctest")],
                         [*INSTALLED, *built("mingw-release"), *built("mingw-debug")])
        self.assertEqual([call.split(" --no-tests")[0] for call in calls if call.startswith("ctest")],
                         ["ctest --preset mingw-release", "ctest --preset mingw-debug"])
        self.assertFalse((self.root / "build/wine").exists())

    def test_build_takes_a_preset(self):
        self.assertEqual(self.run_dev("build", "mingw-debug"), (0, [*INSTALLED, *built("mingw-debug")]))

    def test_other_verbs_and_shells_are_refused(self):
        for words, shell in ((["check"], "MINGW64"), (["bench"], "MINGW64"), (["run"], "UCRT64"), (["run"], "MSYS")):
            self.assertEqual(self.run_dev(*words, shell=shell), (69, []))

    def test_elsewhere_a_program_started_alone_wants_the_prefix_of_the_tests(self):
        started = subprocess.run([self.root / "cmake/start-wine", "reg"], env={"PATH": os.environ["PATH"]}, check=False,
                                 timeout=60, capture_output=True)
        self.assertEqual((started.returncode, started.stderr),
                         (1, b"start-wine: there is no Wine prefix yet: ./dev test makes it\n"))


class Build(unittest.TestCase):
    """Debian's compiler under the names of MSYS2's, and CMake told that it runs on Windows."""

    def test_takes_the_tools_of_msys2_and_runs_tests_without_wine(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        prefix, build = Path(folder.name, "mingw64"), Path(folder.name, "build")
        (prefix / "bin").mkdir(parents=True)
        triple = "x86_64-w64-mingw32-"
        for name, tool in ((f"{triple}gcc", "gcc-posix"), (f"{triple}g++", "g++-posix"), (f"{triple}widl", "widl"),
                           *((name, name) for name in ("ar", "dlltool", "nm", "objdump", "ranlib", "windres"))):
            if tool == "widl":
                (prefix / "bin" / name).symlink_to(f"/usr/bin/{triple}{tool}")
            else:
                (prefix / "bin" / name).write_text(f'#!/bin/sh\nexec /usr/bin/{triple}{tool} "$@"\n', encoding="utf-8")
                (prefix / "bin" / name).chmod(0o755)
        # The standard imports of the contract and the type library that it refers to, side by side.
        (prefix / "include").mkdir()
        for file in (*Path("/usr/include/wine/wine/windows").glob("*.idl"),
                     Path("/usr/lib/x86_64-linux-gnu/wine/x86_64-windows/stdole2.tlb")):
            (prefix / "include" / file.name).symlink_to(file)
        surroundings = {"PATH": f"{prefix}/bin:/usr/bin:/bin"}
        for command in (["cmake", "--preset", "mingw-release", "-B", build, "-DCMAKE_HOST_WIN32=1",
                         "-DCMAKE_SYSTEM_NAME=Windows", "-DCMAKE_LIBRARY_PATH=/usr/x86_64-w64-mingw32/lib"],
                        ["ninja", "-C", build, "contract_files", "kemba_resources", "kemba_platform"]):
            done = subprocess.run(command, cwd=ROOT, env=surroundings, check=False, timeout=300,
                                  stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
            self.assertEqual(done.returncode, 0, done.stdout)
        files = (build / "build.ninja", build / "CMakeFiles/rules.ninja", *build.glob("tests/*/*.cmake"))
        written = {file.name: file.read_text(encoding="utf-8") for file in files}
        others = re.compile(r"(start|run)-wine|g\+\+-posix")
        self.assertEqual([name for name, text in written.items() if others.search(text)], [])
        self.assertIn("set(runner [==[/usr/bin/bash;", "".join(written.values()))


if __name__ == "__main__":
    unittest.main()
