#!/usr/bin/env python3
"""What kemba costs beside what it stands on: ./dev bench [--pairs N] [--seconds N] [SECTION ...]

Measures one section after the other, writes its tables and plots into docs/performance.md, and tells which targets are
missed. Wants a Wine prefix of its own, with its server running, and the programs of the preset mingw-bench.
"""

import argparse
import json
import os
import signal
import statistics
import subprocess
import sys
import time
from pathlib import Path

import page
from measure import FIXED, WINE, compare, compare_runs, in_turn, need_same, run

ROOT = Path(__file__).resolve().parent.parent
BIN = ROOT / "build/mingw-bench/bin"
CLASSES = ("F56F2E65-2620-41A2-84B8-5CE2F149E1D0", "165A1555-26FC-47F1-9E9E-9F1C7AD5E27A",
           "966E0F51-1745-406C-8F30-9A5758854678")
SIZES = (1, 10, 100, 1000, 5000)
LABEL = "profiles/escpos-receipt.profile"  # a small file to send


def program(name, *words):
    return [str(BIN / f"{name}.exe"), *words]


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


def do(words):
    """A step of the set-up; the bench ends where it fails."""
    sample = run(words)
    if sample.status != 0:
        sys.exit(f"bench: {' '.join(words)} ended with status {sample.status}: {sample.output!r}")


def say(text):
    print(f"bench: {text}", file=sys.stderr, flush=True)


class Server:
    """The server that answers, registered as long as the scope lasts."""

    def __init__(self, kind):
        self.kind = kind

    def __enter__(self):
        if self.kind == "kemba-dal":
            do(program("kemba-dal", "/regserver"))
            return
        for identity in CLASSES:
            key = f"HKLM\\Software\\Classes\\CLSID\\{{{identity}}}\\InprocServer32"
            do(["reg.exe", "add", key, "/ve", "/d", windows_path(BIN / "null-server.dll"), "/f"])
            do(["reg.exe", "add", key, "/v", "ThreadingModel", "/d", "Apartment", "/f"])

    def __exit__(self, *_):
        if self.kind == "kemba-dal":
            do(program("kemba-dal", "/unregserver"))
            return
        for identity in CLASSES:
            do(["reg.exe", "delete", f"HKLM\\Software\\Classes\\CLSID\\{{{identity}}}", "/f"])


class Held:
    """Keeps kemba-dal running, so that nobody waits for its start."""

    def __enter__(self):
        self.process = subprocess.Popen(FIXED + [WINE] + program("server-client", "hold", "Label 0001"),
                                        stdin=subprocess.PIPE, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        do(program("server-client", "read", "Label 0001", "1"))
        return self

    def __exit__(self, *_):
        self.process.communicate()

    @staticmethod
    def status_file():
        for folder in Path("/proc").glob("[0-9]*"):
            try:
                if b"kemba-dal.exe" in (folder / "cmdline").read_bytes() and \
                        f"WINEPREFIX={os.environ['WINEPREFIX']}\0".encode() in (folder / "environ").read_bytes():
                    return folder
            except OSError:
                continue
        sys.exit("bench: kemba-dal is not running")

    def forget_peak(self):
        (self.status_file() / "clear_refs").write_text("5")

    def memory(self):
        """Present and peak resident memory in KB."""
        lines = dict(line.split(":", 1) for line in (self.status_file() / "status").read_text().splitlines())
        return tuple(int(lines[name].split()[0]) for name in ("VmRSS", "VmHWM"))


def start(options):
    pairs = [("`kemba help`, the same bytes", ["help"], ["same-bytes"]),
             ("`kemba help`, the same bytes and the runtime", ["help"], ["same-bytes-runtime"]),
             ("`kemba /q help`, an empty `main`", ["/q", "help"], ["empty-program"]),
             ("`kemba /q help`, the runtime alone", ["/q", "help"], ["runtime-program"])]
    rows = []
    for name, words, other in pairs:
        first, second = program("kemba", *words), program(*other)
        need_same(first, second)
        rows.append({"name": name, **compare_runs(first, second, options.pairs)})
    return rows


COMMANDS = (("get comment", ["get", "comment"], ["get"]),
            ("set location", ["set", "location", "by the door"], ["set", "by the door"]),
            ("settings reset", ["settings", "reset"], ["reset"]),
            ("version driver", ["version", "driver"], ["driver"]),
            ("action -n Feed", ["action", "-n", "Feed"], ["ask"]),
            ("send", ["send", windows_path(BIN / LABEL)], ["send", windows_path(BIN / LABEL)]))


def work(options, server):
    rows = []
    with Server(server):
        for size in options.sizes:
            do(program("make-printers", str(size)))
            for name, words, other in COMMANDS:
                first, second = program("kemba", "/a", *words), program("bare-client", *other)
                begin = time.perf_counter()
                need_same(first, second)
                pairs = fitting(options, time.perf_counter() - begin)
                rows.append({"name": name, "size": size, **compare_runs(first, second, pairs)})
                say(f"{server}: {name}, {size} printers: {rows[-1]['wall']['ratio']:.3f}")
    return rows


def fitting(options, seconds):
    """As many pairs as were asked for, or as go into the time for a row, but three at least."""
    return options.pairs if options.seconds == 0 else min(options.pairs, max(3, int(options.seconds / seconds)))


def in_process(options):
    return work(options, "null-server")


def with_server(options):
    return work(options, "kemba-dal")


def operation(name, count, file, options, pairs):
    """Two lists of seconds that one operation took, and that what stands below it took."""
    command = [program("server-client", word, "Label 0001", str(count), *([windows_path(file)] if file else []))
               for word in (name, f"{name}-floor")]
    samples = in_turn(*command, pairs)
    return tuple([int(sample.output) / 1e9 for sample in taken] for taken in samples)


def server(options):
    folder = ROOT / "build/bench"
    big = folder / "big.bin"
    if not big.exists():
        with big.open("wb") as file:
            for _ in range(1024):
                file.write(os.urandom(1 << 20))
    do(program("make-printers", "1"))
    rows = []
    with Server("kemba-dal"), Held() as held:
        for name, words, count, file in (("a read (`get comment`)", "read", 2000, None),
                                         ("an export", "export", 50, folder / "settings.vqs"),
                                         ("an import", "import", 50, folder / "settings.vqs")):
            rows.append({"name": name, "time": compare(*operation(words, count, file, options, options.pairs))})
        before = held.memory()[0]
        held.forget_peak()
        times = operation("send", 1, big, options, max(3, options.pairs // 6))
        rows.append({"name": "`SendFile` of 1 GB", "time": compare(*times), "memory": held.memory()[1] - before})
    big.unlink()
    return rows


def clients(options):
    """Reads of several clients at once: how many they get in a second together."""
    do(program("make-printers", "1"))
    rows = []
    with Server("kemba-dal"), Held():
        for number in (1, 4, 16):
            rates = []
            for _ in range(max(3, options.pairs // 3)):
                begin = time.perf_counter()
                processes = [subprocess.Popen(FIXED + [WINE] + program("server-client", "read", "Label 0001", "1000"),
                                              stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL)
                             for _ in range(number)]
                if any(process.wait() != 0 for process in processes):
                    sys.exit("bench: a client failed")
                rates.append(number * 1000 / (time.perf_counter() - begin))
            low, middle, high = statistics.quantiles(rates, n=4)
            rows.append({"clients": number, "rate": middle, "low": low, "high": high, "runs": len(rates)})
    return rows


def script(options):
    # By its path: a name alone would be started by a process between, whose time is not the script's.
    host = os.environ["WINEPREFIX"] + "/drive_c/windows/system32/cscript.exe"
    rows = []
    with Server("kemba-dal"):
        for size in (1, 10, 100):
            do(program("make-printers", str(size)))
            first = program("kemba", "/a", "get", "comment")
            second = [host, "//nologo", windows_path(ROOT / "bench/get-comment.js"), str(size)]
            need_same(first, second)
            rows.append({"name": "get comment", "size": size, **compare_runs(first, second, options.pairs)})
    return rows


def micro(options):
    output = ROOT / "build/bench/micro.json"
    do(program("kemba-micro", f"--benchmark_out={windows_path(output)}", "--benchmark_out_format=json",
               f"--benchmark_repetitions={options.repetitions}", "--benchmark_enable_random_interleaving=true"))
    return json.loads(output.read_text())


def sizes(_):
    return [{"name": name, "bytes": (BIN / f"{name}.exe").stat().st_size} for name in ("kemba", "kemba-dal")]


SECTIONS = {"sizes": sizes, "start": start, "in-process": in_process, "with-server": with_server, "server": server,
            "clients": clients, "script": script, "micro": micro}


def main():
    parser = argparse.ArgumentParser(prog="./dev bench", description="Measures kemba; see docs/performance.md.")
    parser.add_argument("--pairs", type=int, default=30, help="pairs of runs for a row (30)")
    parser.add_argument("--seconds", type=float, default=240,
                        help="the most for a row; a row that would take longer has fewer pairs; 0: no limit (240)")
    parser.add_argument("--sizes", type=lambda text: [int(word) for word in text.split(",")], default=SIZES,
                        help="numbers of printers (1,10,100,1000,5000)")
    parser.add_argument("--repetitions", type=int, default=9, help="of each micro benchmark (9)")
    parser.add_argument("sections", nargs="*", metavar="SECTION", help=f"all, or some of: {' '.join(SECTIONS)}")
    options = parser.parse_args()
    unknown = set(options.sections) - set(SECTIONS)
    if unknown or options.pairs < 3:
        parser.error(f"no section: {' '.join(unknown)}" if unknown else "three pairs are the least")
    (ROOT / "build/bench").mkdir(parents=True, exist_ok=True)
    missed = []
    for name in options.sections or SECTIONS:
        say(f"measuring {name}")
        results = SECTIONS[name](options)
        missed += page.write(ROOT, name, results)
    for line in missed:
        say(f"above its target: {line}")


if __name__ == "__main__":
    signal.signal(signal.SIGTERM, lambda *_: sys.exit("bench: stopped"))
    main()
