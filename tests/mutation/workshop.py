"""Where mutants are built and tested: builds and Wine prefixes of their own, and which test reaches which line."""

import hashlib
import json
import os
import re
import shutil
import signal
import subprocess
import time
from collections import defaultdict
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
WINESERVER = "/usr/lib/wine/wineserver64"
GCOV = "x86_64-w64-mingw32-gcov"

# Test programs that are left out: the first tests the tests' own kit; the others take long, with sweeps, random input,
# and servers that answer late.
LEFT_OUT = {"kit_tests", "fuzz_tests", "hostile_server_tests", "load_tests", "shortage_tests"}

# Seconds without a sign of life after which a test counts as hung: three times what its suite takes, within limits.
LEAST_PATIENCE = 20
LONGEST_PATIENCE = 120


def say(text):
    print(f"mutate: {text}", flush=True)


def digest_of(*paths):
    digest = hashlib.sha256()
    for path in paths:
        digest.update(Path(path).read_bytes())
    return digest.hexdigest()


def load(path, otherwise):
    return json.loads(path.read_text()) if path.exists() else otherwise


def save(path, value):
    path.parent.mkdir(parents=True, exist_ok=True)
    beside = path.with_suffix(".new")
    beside.write_text(json.dumps(value))
    beside.replace(path)


class Test:
    """One test as ctest knows it."""

    def __init__(self, program, selection, served, environment):
        self.program = program  # the test program's name
        self.selection = selection  # what --gtest_filter calls it
        self.served = served  # it needs the server registered
        self.environment = environment

    @property
    def suite(self):
        """What is measured as one: a class of tests, with a set of its parameters."""
        return f"{self.program} {self.selection.split('.')[0]}"


# The registration that comes before the tests which need it is a test as well.
REGISTER = Test("kemba-dal", "/regserver", True, {})


class Wine:
    """A private Wine prefix, kept running."""

    def __init__(self, folder):
        self.folder = folder
        self.environment = dict(os.environ, WINEPREFIX=str(folder), WINEARCH="win64", WINEDEBUG="-all",
                                WINEDLLOVERRIDES="mscoree,mshtml,winedbg.exe=")  # a crash is the end, at once
        self.first_state = folder / "first-state"

    def _call(self, *command, wait=True):
        process = subprocess.Popen(command, env=self.environment, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL, start_new_session=True)
        if wait:
            process.wait()

    def start(self):
        wine = str(ROOT / "cmake/start-wine")
        if not self.first_state.exists():
            say(f"making the Wine prefix {self.folder}")
            self.folder.mkdir(parents=True, exist_ok=True)
            self._call(wine, "reg", "add", r"HKCU\Software\Wine\Drivers", "/v", "Graphics", "/d", "null", "/f")
            self.stop()
            self.first_state.mkdir()
            for path in self.folder.glob("*.reg"):
                shutil.copy(path, self.first_state)
        self._call(WINESERVER, "-p600")
        self._call(wine, "wineboot")
        self._call(wine, "explorer", wait=False)

    def stop(self):
        self.end_programs(".exe")
        self._call(WINESERVER, "-k")
        self._call(WINESERVER, "-w")

    def renew(self):
        """Nothing is left of what ran before."""
        self.stop()
        if self.first_state.exists():
            for path in self.first_state.glob("*.reg"):
                shutil.copy(path, self.folder)
        self.start()

    def processes(self, name):
        """The prefix's processes whose command names something; by their ids."""
        mark = f"WINEPREFIX={self.folder}".encode()
        found = []
        for entry in Path("/proc").iterdir():
            if not entry.name.isdigit():
                continue
            try:
                if mark in (entry / "environ").read_bytes().split(b"\0") and \
                        name.encode() in (entry / "cmdline").read_bytes():
                    found.append(int(entry.name))
            except OSError:
                continue  # it has ended, or is somebody else's
        return found

    def end_programs(self, name):
        for process in self.processes(name):
            try:
                os.kill(process, signal.SIGKILL)
            except ProcessLookupError:
                continue

    def await_end(self, name, seconds):
        end = time.monotonic() + seconds
        while self.processes(name) and time.monotonic() < end:
            time.sleep(0.1)

    def run(self, program, arguments, log, folder, patience, environment=None):
        """The program's exit status; None if nothing came from it for so many seconds, and it was ended."""
        with open(log, "wb") as output:
            process = subprocess.Popen([str(ROOT / "cmake/start-wine"), str(program), *arguments], cwd=folder,
                                       env={**self.environment, **(environment or {})}, stdin=subprocess.DEVNULL,
                                       stdout=output, stderr=subprocess.STDOUT, start_new_session=True)
        size, since = 0, time.monotonic()
        while True:
            try:
                return process.wait(0.05)
            except subprocess.TimeoutExpired:
                if os.path.getsize(log) != size:
                    size, since = os.path.getsize(log), time.monotonic()
                elif time.monotonic() - since > patience:
                    os.killpg(process.pid, signal.SIGKILL)
                    process.wait()
                    return None


class Build:
    """A build folder of a source folder."""

    def __init__(self, source, folder, preset, *definitions):
        self.source = source
        self.folder = folder
        self.preset = preset
        self.definitions = [*definitions, "-DKEMBA_UNIT_TESTS=ON", "-DKEMBA_PROGRAM_TESTS=ON"]
        self.log = folder.parent / f"{folder.name}.log"
        self.answers = {}

    @property
    def bin(self):
        return self.folder / "bin"

    def configure(self):
        if not (self.folder / "build.ninja").exists():
            self.folder.mkdir(parents=True, exist_ok=True)
            self._run("cmake", "--preset", self.preset, "-B", str(self.folder), *self.definitions, needed=True)

    def make(self, *targets, needed=False):
        """Whether the targets could be built."""
        return self._run("ninja", "-C", str(self.folder), *targets, needed=needed)

    def make_part(self, program, suites, folder):
        """Links a test program with those of its tests alone that are named: the linker takes most of the time."""
        commands = self._asked("commands", f"bin/{program}.exe").splitlines()
        command = commands[-1].replace(f"-o bin/{program}.exe", f"-o {folder}/{program}.exe")
        wanted = {suite.split()[1].split("/")[1 if suite.split()[1].count("/") else 0] for suite in suites}
        inputs = []
        for path in re.findall(r"(?<= )[^ ]+\.(?:obj|res|a)(?= )", command):
            relative = re.sub(r"CMakeFiles/[^/]+\.dir/", "", path.removesuffix(".obj")).replace("__/", "../")
            source = self.source / relative
            tests = set(re.findall(r"^TEST(?:_F|_P)?\((\w+)", source.read_text(), re.MULTILINE)) \
                if path.startswith("tests/") and source.suffix == ".cpp" and source.exists() else set()
            if tests and not tests & wanted:
                command = command.replace(f" {path} ", " ")
            elif not path.startswith(("/", "-")):
                inputs.append(path)
        return self.make(*inputs) and self._run("sh", "-c", f"cd {self.folder} && {command}", needed=False)

    def starts_server(self, program):
        """Whether tests of the program start the server's, which the build knows as an input."""
        return "kemba-dal" in self._asked("query", f"bin/{program}.exe")

    def _asked(self, *question):
        if question not in self.answers:
            self.answers[question] = subprocess.run(["ninja", "-C", str(self.folder), "-t", *question], check=True,
                                                    stdout=subprocess.PIPE, text=True).stdout
        return self.answers[question]

    def make_tests(self):
        """Builds the test programs that are of use here; and what they start, which they name as needed."""
        programs = set(re.findall(r"^bin/(\w+_tests)\.exe:", self._asked("targets", "all"), re.MULTILINE)) - LEFT_OUT
        say(f"building {self.folder}")
        self.make("kemba", *sorted(programs), needed=True)

    def _run(self, *command, needed):
        with open(self.log, "wb") as log:
            done = subprocess.run(command, cwd=self.source, stdin=subprocess.DEVNULL, stdout=log,
                                  stderr=subprocess.STDOUT, check=False).returncode == 0
        if needed and not done:
            raise SystemExit(f"mutate: {' '.join(command)} failed, see {self.log}")
        return done


def tests_of(build, wine):
    """What ctest would run, without what is no test of the programs' code or not needed here."""
    listed = subprocess.run(["ctest", "--test-dir", str(build.folder), "--show-only=json-v1"],
                            env=dict(wine.environment, KEMBA_EACH_TEST="1"),
                            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, check=True).stdout
    tests = []
    for entry in json.loads(listed)["tests"]:
        command = entry.get("command", [])
        program = next((Path(word).stem for word in command if word.endswith(".exe")), None)
        selection = next((word.split("=", 1)[1] for word in command if word.startswith("--gtest_filter=")), None)
        if not program or not selection or program in LEFT_OUT:
            continue
        properties = {row["name"]: row["value"] for row in entry.get("properties", [])}
        environment = dict(row.split("=", 1) for row in properties.get("ENVIRONMENT", []))
        served = "registered_server" in properties.get("FIXTURES_REQUIRED", [])
        tests.append(Test(program, selection, served, environment))
    return sorted(tests, key=lambda test: (test.served, test.program))


class Counters:
    """What a run left in the build's line counters."""

    # Before the counters themselves stand marks, a checksum, the number of runs and the highest count.
    _HEADER = 32

    def __init__(self):
        self.contents = {}  # by path
        self.hits, self.code = {}, {}  # lines that ran, lines that are code, by source

    @staticmethod
    def clear(build):
        for path in build.folder.rglob("*.gcda"):
            path.unlink()

    @classmethod
    def read(cls, build, folders, idle=None):
        """The lines of the sources in the folders. What an idle run counts as well is taken from there: that saves
        reading most of the counters."""
        made = cls()
        hits, code = defaultdict(set), defaultdict(set)
        if idle:
            for path in idle.code:
                hits[path].update(idle.hits.get(path, []))
                code[path].update(idle.code[path])
        moved = []
        for path in build.folder.rglob("*.gcda"):
            if "googletest" not in path.parts:
                made.contents[path] = path.read_bytes()[cls._HEADER:]
                if not idle or idle.contents.get(path) != made.contents[path]:
                    moved.append(str(path))
        if moved:
            output = subprocess.run([GCOV, "--stdout", "--json-format", *moved], cwd=build.folder,
                                    stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=True).stdout
            for document in output.splitlines():
                for entry in json.loads(document)["files"]:
                    path = os.path.relpath(os.path.join(build.folder, entry["file"]), build.source)
                    if path.split("/")[0] in folders:
                        code[path].update(line["line_number"] for line in entry["lines"])
                        hits[path].update(line["line_number"] for line in entry["lines"] if line["count"])
        made.hits = {path: sorted(lines) for path, lines in hits.items()}
        made.code = {path: sorted(lines) for path, lines in code.items()}
        return made


class Reach:
    """Which test runs which line, and which lines are code; measured once and kept."""

    def __init__(self, path):
        self.path = path
        self.tests = []
        self.known = load(path, {})

    def measure(self, build, wine, folders, files):
        """Measures what is not known yet of the programs that can reach one of the files."""
        self.tests = tests_of(build, wine)
        suites = defaultdict(list)
        for test in [*self.tests, REGISTER]:
            suites[test.suite].append(test)
        self.known = {suite: value for suite, value in self.known.items() if suite in suites}
        registered, idle, idle_program = False, Counters(), None
        for suite, tests in suites.items():
            program, served = tests[0].program, tests[0].served
            programs = [program] + (["kemba", "kemba-dal"] if served else [])
            digest = digest_of(*(build.bin / f"{name}.exe" for name in programs))
            if self.known.get(suite, {}).get("digest") == digest:
                continue
            if served and not registered and tests != [REGISTER]:
                self._run(build, wine, [REGISTER])
                registered = True
            if program != idle_program:  # what it counts without a test is the same in each of its tests
                say(f"which lines the tests of {program} reach")
                idle_program, idle = program, Counters()
                Counters.clear(build)
                if tests != [REGISTER]:
                    self._run(build, wine, [Test(program, "NONE", served, tests[0].environment)])
                    idle = Counters.read(build, folders)
            if not served and not files & set(idle.code):
                continue  # it is not made of them
            Counters.clear(build)
            begin = time.monotonic()
            if self._run(build, wine, tests) not in (0, 1):  # it did not live to write its counters
                for test in tests:
                    self._run(build, wine, [test])
            seconds = time.monotonic() - begin
            if served:
                wine.await_end("kemba-dal.exe", 30)  # the server writes its counters when it ends
            counters = Counters.read(build, folders, idle)
            self.known[suite] = {"digest": digest, "seconds": seconds, "hits": counters.hits, "code": counters.code}
            save(self.path, self.known)
        if registered:
            wine.run(build.bin / "kemba-dal.exe", ["/unregserver"], build.log, build.source, 60)

    def _run(self, build, wine, tests):
        arguments, environment = [], dict(tests[0].environment)
        if tests == [REGISTER]:
            arguments = [REGISTER.selection]
        else:
            environment["GTEST_FILTER"] = ":".join(test.selection for test in tests)
        return wine.run(build.bin / f"{tests[0].program}.exe", arguments, build.log, build.source, 120, environment)

    def prepare(self):
        """The measured lines in a form that is quick to ask."""
        self.code, self.hits = defaultdict(set), defaultdict(lambda: defaultdict(set))
        for suite, value in self.known.items():
            for path, lines in value["code"].items():
                self.code[path].update(lines)
            for path, lines in value["hits"].items():
                for line in lines:
                    self.hits[path][line].add(suite)

    def suites_for(self, mutant):
        """The suites that reach a mutant. Where there is no code on its lines, such as in a table, those
        count that reach the block around it, or the file; None for a file without any code."""
        code, hits = self.code.get(mutant.file, set()), self.hits.get(mutant.file, {})
        for low, high in mutant.regions:
            lines = [line for line in range(low, high + 1) if line in code]
            if lines:
                return set().union(*(hits.get(line, set()) for line in lines))
        return set().union(*hits.values()) if code else None


_OUTCOME = re.compile(r"^\[ +(RUN|OK|FAILED|SKIPPED) +\] ([^\s,]+\.[^\s,]+)", re.MULTILINE)


def read_log(path):
    """What a test program's output says: (tests that passed or were skipped, tests that failed or never ended)."""
    text = Path(path).read_bytes().decode("utf-8", "replace").replace("\r", "")
    begun, passed, failed = [], set(), set()
    for word, test in _OUTCOME.findall(text):
        if word == "RUN":
            begun.append(test)
        elif word == "FAILED":
            failed.add(test)
        else:
            passed.add(test)
    return passed - failed, failed | {test for test in begun if test not in passed}


class Bench:
    """One job's place: a copy of the sources, a build of it, a copy of the programs without mutants, a Wine prefix."""

    def __init__(self, folder):
        self.folder = folder
        self.source = folder / "source"
        self.wine = Wine(folder / "wine")
        # Debug as in the preset; without optimization and debug information, for that is quicker to build. A warning is
        # no error: a mutant that leaves a variable unused is one to be found by a test.
        self.build = Build(self.source, folder / "build", "mingw-debug", "-DCMAKE_CXX_FLAGS=-w",
                           "-DCMAKE_CXX_FLAGS_DEBUG=-O0", "-DCMAKE_EXE_LINKER_FLAGS=-static -s")
        self.pristine = folder / "pristine"
        self.part = folder / "part"
        self.log = folder / "test.log"
        self.baseline = {}

    def take_sources(self):
        listed = subprocess.run(["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"], cwd=ROOT,
                                stdout=subprocess.PIPE, check=True).stdout.decode().split("\0")
        wanted = {name for name in listed if name and (ROOT / name).is_file()}
        for name in wanted:
            theirs, ours = ROOT / name, self.source / name
            if not ours.exists() or ours.read_bytes() != theirs.read_bytes():
                ours.parent.mkdir(parents=True, exist_ok=True)
                shutil.copyfile(theirs, ours)
                shutil.copymode(theirs, ours)
        for path in self.source.rglob("*"):
            if path.is_file() and str(path.relative_to(self.source)) not in wanted:
                path.unlink()

    def prepare(self, tests, path):
        """Builds without a mutant, and sees which tests pass together in one process and which in one of their own."""
        self.take_sources()
        self.build.configure()
        self.build.make_tests()
        for folder in (self.pristine, self.part):
            shutil.copytree(self.build.bin, folder, dirs_exist_ok=True)
        self.wine.renew()
        known = load(path, {})
        programs = defaultdict(list)
        for test in tests:
            programs[test.program].append(test)
        for program, members in programs.items():
            digest = digest_of(*(self.pristine / f"{name}.exe" for name in (program, "kemba", "kemba-dal")))
            entry = known.get(program, {})
            if entry.get("digest") != digest or set(entry["together"]) | set(entry["alone"]) | set(entry["red"]) != {
                    test.selection for test in members}:
                say(f"trying the {len(members)} tests of {program} without a mutant")
                known[program] = {"digest": digest, **self._try(program, members)}
                save(path, known)
        self.baseline = known

    def _try(self, program, members):
        served, environment = members[0].served, members[0].environment
        if served:
            self.register(self.pristine)
        together, alone = {test.selection for test in members}, set()
        for _ in range(4):  # what fails may make others fail
            self._gtest(self.pristine, program, sorted(together), 120, environment)
            passed, failed = read_log(self.log)
            if together <= passed:
                break
            alone |= failed & together if failed & together else together - passed
            together -= alone
        else:
            alone, together = alone | together, set()
        red = {selection for selection in alone
               if self._gtest(self.pristine, program, [selection], 120, environment) != 0}
        if served:
            self.unregister()
        for selection in red:
            say(f"left out, for it fails without a mutant: {program} {selection}")
        return {"together": sorted(together), "alone": sorted(alone - red), "red": sorted(red)}

    def _gtest(self, folder, program, selections, patience, environment):
        if not selections:
            self.log.write_bytes(b"")
            return 0
        # The list may be too long for a command line.
        status = self.wine.run(folder / f"{program}.exe", [] if folder == self.pristine else ["--gtest_fail_fast"],
                               self.log, self.source, patience, {**environment, "GTEST_FILTER": ":".join(selections)})
        if status is None:
            self.wine.renew()
        return status

    def register(self, folder):
        return self.wine.run(folder / "kemba-dal.exe", ["/regserver"], self.log, self.source, 60)

    def unregister(self):
        self.wine.end_programs("kemba-dal.exe")
        self.wine.renew()

    def judge(self, mutant, text, mutated, tests, reach):
        """What becomes of a mutant: (status, the test that killed it or None, how)."""
        path = self.source / mutant.file
        path.write_text(mutated)
        try:
            return self._judge(mutant, tests, reach)
        finally:
            path.write_text(text)

    def _judge(self, mutant, tests, reach):
        suites = reach.suites_for(mutant)
        if suites is None:
            suites = set(reach.known)
        reaching = [test for test in tests if test.suite in suites]
        programs = defaultdict(list)
        for test in reaching:
            programs[test.program].append(test)
        top = mutant.file.split("/")[0]
        cost = {program: sum(reach.known[suite]["seconds"] for suite in {test.suite for test in members})
                for program, members in programs.items()}
        registering = REGISTER.suite in suites
        order = sorted(programs, key=lambda name: (programs[name][0].served, not name.startswith(top), cost[name]))
        if not order and not registering:
            return "unreached", None, ""
        served_up = False
        try:
            for program in order:
                members = programs[program]
                if not members[0].served:
                    if not self.build.make_part(program, {test.suite for test in members}, self.part):
                        return "stillborn", None, ""
                    killer, how = self._run_all(self.part, program, members, reach)
                    if killer:
                        return "killed", f"{program} {killer}", how
                    if not self.build.starts_server(program):
                        continue
                if not self.build.make(program):
                    return "stillborn", None, ""
                if members[0].served and not served_up:
                    served_up = True
                    if self.register(self.build.bin) != 0:
                        return "killed", REGISTER.suite, "failed"
                killer, how = self._run_all(self.build.bin, program, members, reach)
                if killer:
                    return "killed", f"{program} {killer}", how
            if registering and not served_up:
                if not self.build.make("kemba-dal"):
                    return "stillborn", None, ""
                served_up = True
                if self.register(self.build.bin) != 0:
                    return "killed", REGISTER.suite, "failed"
        finally:
            if served_up:
                self.unregister()
        return "survived", None, ""

    def _run_all(self, folder, program, members, reach):
        """The first test that fails with the mutant, twice, and passes without it; and how it fails."""
        baseline = self.baseline[program]
        environment = members[0].environment
        seconds = {test.selection: reach.known[test.suite]["seconds"] for test in members}
        patience = min(max(LEAST_PATIENCE, 3 * max(seconds.values())), LONGEST_PATIENCE)
        together = [selection for selection in baseline["together"] if selection in seconds]
        while together:
            if self._gtest(folder, program, together, patience, environment) == 0:
                break
            suspects = read_log(self.log)[1] & set(together)
            if not suspects:  # it failed before or after the tests
                suspects = {together[0]}
            for suspect in sorted(suspects):
                how = self._confirm(folder, program, suspect, patience, environment, members[0].served)
                if how:
                    return suspect, how
            together = [selection for selection in together if selection not in suspects]
        for selection in sorted((name for name in baseline["alone"] if name in seconds), key=seconds.get):
            if self._gtest(folder, program, [selection], patience, environment) != 0:
                how = self._confirm(folder, program, selection, patience, environment, members[0].served)
                if how:
                    return selection, how
        return None, ""

    def _confirm(self, folder, program, selection, patience, environment, served):
        """How a test fails that has just failed, if it does so again, alone, and not without the mutant."""
        status = self._gtest(folder, program, [selection], patience, environment)
        if status == 0:
            return None
        # Without the mutant it passes at the same place; else something was left there that is to be cleared away.
        # Programs that need the registered server would meet the mutant's again.
        if not served and self._gtest(self.pristine, program, [selection], patience, environment) != 0:
            self.wine.renew()
            return None
        return "hung" if status is None else "failed" if status == 1 else "crashed"
