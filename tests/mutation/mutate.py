#!/usr/bin/env python3
"""Mutation testing: makes small changes in the programs' sources and sees if a test notices; see docs/mutation.md."""

import argparse
import hashlib
import json
import os
import queue
import subprocess
import sys
import threading
import time
from collections import Counter, defaultdict

sys.dont_write_bytecode = True

import mutants
from workshop import ROOT, Bench, Build, Reach, say

PLACE = ROOT / "build/mutation"
EXPLAINED = ROOT / "tests/mutation/explained.txt"

# The percentage of a folder's mutants that its tests have to notice.
THRESHOLDS = {"cli": 95, "commands": 95, "automation": 95, "messages": 95, "platform": 95, "core": 90, "substitute": 90}

LEAST_SHARE = 10  # mutants of a sample that every folder has, if it has so many


def all_mutants(selections):
    """The mutants of the sources that lie in the folders, or are the files, that are named."""
    listed = subprocess.run(["git", "ls-files", *THRESHOLDS], cwd=ROOT, stdout=subprocess.PIPE, text=True,
                            check=True).stdout.split()
    made, texts = [], {}
    for file in listed:
        chosen = any(file == name or file.startswith(name.rstrip("/") + "/") for name in selections)
        if chosen and file.endswith((".h", ".cpp")):
            texts[file] = (ROOT / file).read_text()
            made += mutants.mutants_of(file, texts[file])
    return made, texts


def folder_of(mutant):
    return mutant.file.split("/")[0]


def shares(counts, size):
    """How many mutants of each folder a sample of a size has: as many as its part of all, and at least LEAST_SHARE."""
    total = sum(counts.values())
    return {folder: min(count, max(LEAST_SHARE, -(-size * count // total))) for folder, count in counts.items()}


def in_order_of(seed, made):
    """Shuffled by a seed. A change elsewhere leaves the order of the others as it is."""
    return sorted(made, key=lambda mutant: hashlib.sha256(f"{seed} {mutants.identity(mutant)}".encode()).digest())


def digest(text):
    return hashlib.sha256(text.encode()).hexdigest()[:16]


def tests_digest():
    """Changes with the tests, not with this script."""
    listed = subprocess.run(["git", "ls-files", "--cached", "--others", "--exclude-standard", "tests"], cwd=ROOT,
                            stdout=subprocess.PIPE, text=True, check=True).stdout.split()
    sums = [digest((ROOT / name).read_text(errors="replace")) for name in listed
            if not name.startswith("tests/mutation/") and (ROOT / name).is_file()]
    return digest(" ".join(sums))


class Results:
    """What became of each mutant, one line each as soon as it is known; the last line of a mutant counts."""

    def __init__(self, path):
        self.path = path
        self.lock = threading.Lock()
        self.known = {}
        if path.exists():
            for line in path.read_text().splitlines():
                row = json.loads(line)
                self.known[row["id"]] = row

    def add(self, row):
        with self.lock:
            self.known[row["id"]] = row
            self.path.parent.mkdir(parents=True, exist_ok=True)
            with open(self.path, "a", encoding="utf-8") as file:
                file.write(json.dumps(row) + "\n")

    def of(self, mutant, text, tests):
        """The row that still holds: of the same source, and for one that nothing noticed also of the same tests."""
        row = self.known.get(mutants.identity(mutant))
        if not row or row["source"] != digest(text) or row["after"] != mutant.after:
            return None
        return row if row["status"] in ("killed", "stillborn") or row["tests"] == tests else None


class Explanations:
    """Survivors that were looked at. A paragraph each: what finds the mutant, the line's text, why it lives."""

    def __init__(self, text):
        self.rows = {}
        for paragraph in text.split("\n\n"):
            lines = [line for line in paragraph.strip("\n").split("\n") if line and not line.startswith("#")]
            if not lines:
                continue
            words = lines[0].split()
            if len(words) not in (3, 4) or words[-1] not in ("equivalent", "accepted") or len(lines) < 3:
                raise SystemExit(f"mutate: not understood in explained.txt: {lines[0]}")
            occurrence = words[2] if len(words) == 4 else "#1"
            self.rows[f"{words[0]} {words[1]} {occurrence} {lines[1].strip()}"] = words[-1]

    def kind(self, identity):
        return self.rows.get(identity)


def run(chosen, texts, jobs, results, quota):
    """Judges mutants until each folder has as many that could be built as its quota says."""
    tests = tests_digest()
    counted = Counter()
    waiting = defaultdict(list)
    for mutant in chosen:
        row = results.of(mutant, texts[mutant.file], tests)
        if row:
            if row["status"] != "stillborn":
                counted[folder_of(mutant)] += 1
        else:
            waiting[folder_of(mutant)].append(mutant)
    if all(counted[folder] >= quota[folder] or not waiting[folder] for folder in quota):
        return
    benches = [Bench(PLACE / f"job-{number}") for number in range(1, jobs + 1)]
    try:
        reach = measured_reach(benches[0], {mutant.file for mutant in chosen})
        for bench in benches:
            bench.prepare([test for test in reach.tests if test.suite in reach.known], PLACE / "baseline.json")
        while True:
            batch = [mutant for folder, needed in quota.items()
                     for mutant in waiting[folder][:max(0, needed - counted[folder])]]
            if not batch:
                return
            for mutant in batch:
                waiting[folder_of(mutant)].remove(mutant)
            batch.sort(key=lambda one: (one.file, one.start))
            for row in judged(batch, texts, benches, reach, tests, results):
                if row["status"] != "stillborn":
                    counted[row["id"].split("/")[0]] += 1
    finally:
        for bench in benches:
            bench.wine.stop()


def measured_reach(bench, files):
    build = Build(ROOT, PLACE / "coverage", "mingw-coverage", "-DCMAKE_CXX_FLAGS=-w")
    build.configure()
    build.make_tests()
    bench.wine.renew()
    reach = Reach(PLACE / "reach.json")
    reach.measure(build, bench.wine, set(THRESHOLDS), files)
    reach.prepare()
    return reach


def judged(batch, texts, benches, reach, tests, results):
    """The rows of a batch, whose mutants are shared out among the benches."""
    # Neighbours go to one bench: it has to build the file anew only once more when the next file comes.
    waiting, rows, failures = queue.SimpleQueue(), [], []
    for mutant in batch:
        waiting.put(mutant)

    def work(bench):
        while not failures:
            try:
                mutant = waiting.get_nowait()
            except queue.Empty:
                return
            begin = time.monotonic()
            try:
                text = texts[mutant.file]
                status, killer, how = bench.judge(mutant, text, mutants.apply(text, mutant), reach.tests, reach)
            except BaseException as error:
                failures.append(error)
                raise
            row = {"id": mutants.identity(mutant), "status": status, "by": killer, "how": how,
                   "before": mutant.before, "after": mutant.after, "source": digest(text), "tests": tests,
                   "seconds": round(time.monotonic() - begin, 1)}
            results.add(row)
            rows.append(row)
            say(f"{len(rows)}/{len(batch)} {mutants.name(mutant)} {status}"
                f"{' by ' + killer if killer else ''} ({row['seconds']} s)")

    threads = [threading.Thread(target=work, args=(bench,)) for bench in benches]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    if failures:
        raise failures[0]
    return rows


def report(chosen, texts, results, explanations, quota):
    """Says what became of the mutants; whether every folder reaches its threshold."""
    tests = tests_digest()
    good = True
    counts = defaultdict(Counter)
    for mutant in chosen:
        folder = folder_of(mutant)
        if sum(counts[folder].values()) - counts[folder]["stillborn"] >= quota[folder]:
            continue
        row = results.of(mutant, texts[mutant.file], tests)
        if not row:
            counts[folder]["untried"] += 1
            continue
        identity, kind = row["id"], row["status"]
        explained = explanations.kind(identity)
        if kind in ("survived", "unreached"):
            if not explained:
                no_test = " (no test reaches it)" if kind == "unreached" else ""
                print(f"{mutants.name(mutant)} survives{no_test}\n    {mutant.text}\n"
                      f"    {short(mutant.before)}  ->  {short(mutant.after)}")
            kind = explained or "survived"
        elif explained:
            print(f"{mutants.name(mutant)} is {kind}, but explained.txt explains why it lives")
        counts[folder][kind] += 1
    for folder, count in counts.items():
        # What nobody could notice is not counted against the tests.
        judged_ = count["killed"] + count["survived"] + count["accepted"]
        score = 100 * count["killed"] / judged_ if judged_ else 100
        enough = score >= THRESHOLDS[folder] and not count["untried"]
        good = good and enough
        print(f"{folder}: {count['killed']} of {judged_} noticed, {score:.1f} % ({THRESHOLDS[folder]} % wanted"
              f"{'' if enough else ', NOT REACHED'}); {count['survived']} not explained, {count['accepted']} accepted; "
              f"besides {count['equivalent']} that change nothing, {count['stillborn']} that do not compile"
              f"{'; ' + str(count['untried']) + ' not tried with these sources and tests' if count['untried'] else ''}")
    return good


def short(text):
    text = " ".join(text.split())
    return text if len(text) < 70 else text[:67] + "..."


def lost(explanations, texts, made):
    """What is explained of mutants that are no longer made."""
    known = {mutants.identity(mutant) for mutant in made}
    for identity in explanations.rows:
        file = identity.split(" ", 1)[0]
        if identity not in known and (file in texts or not (ROOT / file).exists()):
            yield identity


def main():
    parser = argparse.ArgumentParser(prog="./dev mutate", description=__doc__.split(";", maxsplit=1)[0])
    parser.add_argument("folder", nargs="*", help="folders or files; all of %s without one" % " ".join(THRESHOLDS))
    parser.add_argument("--sample", type=int, help="this many mutants at least, instead of all")
    parser.add_argument("--seed", type=int, default=1, help="picks the sample (1)")
    parser.add_argument("--jobs", type=int, default=1, help="mutants at a time (1); each job has a build of its own")
    parser.add_argument("--list", action="store_true", help="say which mutants there are, and do nothing")
    parser.add_argument("--report", action="store_true", help="say what is known from earlier runs, and run nothing")
    wishes = parser.parse_args()

    made, texts = all_mutants(wishes.folder or list(THRESHOLDS))
    if not made:
        parser.error("there are no mutants in " + " ".join(wishes.folder))
    chosen = in_order_of(wishes.seed, made)
    counts = Counter(folder_of(mutant) for mutant in made)
    quota = shares(counts, wishes.sample) if wishes.sample else dict(counts)
    if wishes.list:
        for mutant in made:
            print(f"{mutants.name(mutant)}  {short(mutant.before)}  ->  {short(mutant.after)}")
        return 0
    results = Results(PLACE / "results.jsonl")
    explanations = Explanations(EXPLAINED.read_text() if EXPLAINED.exists() else "")
    if not wishes.report:
        os.nice(10)
        run(chosen, texts, wishes.jobs, results, quota)
    for identity in lost(explanations, texts, made):
        print(f"explained.txt explains a mutant that is not there: {identity}")
    return 0 if report(chosen, texts, results, explanations, quota) else 1


if __name__ == "__main__":
    sys.exit(main())
