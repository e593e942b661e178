#!/usr/bin/env python3
"""Puts one fault after the other into a copy of the sources, each a line of a table, and looks
whether the test that is named beside it fails, which must pass without it. A table is
tab-separated: file, the line that is there, the line in its place, test. A row whose line is gone,
or stands in its file more than once, fails: a table cannot rot unseen. --rows looks for such rows
alone, and builds nothing."""

import collections
import functools
import pathlib
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
LONGEST = "600"  # seconds of one test; whatever never ends is caught, too

# What is built for a test whose program does not bear its name.
TARGETS = {"soak": ["lumiset-soak"],
           "recovery": ["lumiset-recovery"],
           "tape_.*": ["lumiset-headless", "TarvoOstrelUtil"],
           "faults_of_a_lying_disk": ["lumiset-headless", "fault_injector"]}

Mutant = collections.namedtuple("Mutant", "number file old new test")


def read_table(path):
    for number, line in enumerate(path.read_text().splitlines(), 1):
        cells = line.split("\t")
        if len(cells) != 4:
            sys.exit(f"{path}:{number}: {len(cells)} cells, not file, old line, new line, test")
        yield Mutant(number, *cells)


def places(mutant, text):
    return [index for index, line in enumerate(text.split("\n")) if line.strip() == mutant.old]


def check_rows(table):
    lost = [mutant for mutant in table if not (ROOT / mutant.file).exists() or
            len(places(mutant, (ROOT / mutant.file).read_text())) != 1]
    for mutant in lost:
        print(f"row {mutant.number}: not one line of {mutant.file}: {mutant.old}")
    sys.exit(1 if lost else 0)


def run(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                          errors="replace", check=False)


class Copy:
    """The tree in a folder of its own, with its build; only what changed is copied anew."""

    def __init__(self, folder):
        self.tree, self.build = folder / "tree", folder / "build"
        listed = run("git", "-C", ROOT, "ls-files", "-co", "--exclude-standard").stdout.splitlines()
        files = {file for file in listed if (ROOT / file).is_file()}
        for file in files:
            here, there = ROOT / file, self.tree / file
            if not (there.exists() and there.read_bytes() == here.read_bytes()):
                there.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(here, there)
        for path in [path for path in self.tree.rglob("*") if path.is_file()]:
            if str(path.relative_to(self.tree)) not in files:
                path.unlink()
        done = run("cmake", "-S", self.tree, "-B", self.build, "-G", "Ninja")
        if done.returncode:
            sys.exit(done.stdout)

    def end(self, test):
        """How a test ends with the tree as it is: "passes", "fails" or "does not compile"."""
        targets = TARGETS.get(test, [f"test_{test}"])
        if run("ninja", "-C", self.build, *targets).returncode:
            return "does not compile"
        done = run("ctest", "--test-dir", self.build, "--timeout", LONGEST, "-R", f"^{test}$")
        return "fails" if done.returncode else "passes"

    @functools.cache
    def end_without(self, test):
        return self.end(test)

    def judge(self, mutant):
        file = self.tree / mutant.file
        whole = file.read_text() if file.exists() else ""
        lines = whole.split("\n")
        at = places(mutant, whole)
        if len(at) != 1:
            return "its line is gone, or is there more than once"
        if self.end_without(mutant.test) != "passes":
            return f"its test {self.end_without(mutant.test)} without it"
        lines[at[0]] = mutant.new
        file.write_text("\n".join(lines))
        try:
            end = self.end(mutant.test)
        finally:
            file.write_text(whole)
        return {"fails": "caught", "passes": "SURVIVED"}.get(end, end)


def main():
    """Of the files or folders that are named, or of all."""
    table = list(read_table(pathlib.Path(__file__).with_name("mutants.tsv")))
    if sys.argv[1:] == ["--rows"]:
        check_rows(table)
    copy, ends = Copy(ROOT / "build/mutants"), collections.Counter()
    for mutant in table:
        if not mutant.file.startswith(tuple(sys.argv[1:]) or ""):
            continue
        end = copy.judge(mutant)
        ends[end] += 1
        print(f"{mutant.number:4} {end:9} {mutant.test:14} {mutant.file}: {mutant.old}", flush=True)
    print(", ".join(f"{count} {end}" for end, count in ends.most_common()) or "no rows")
    sys.exit(0 if set(ends) == {"caught"} else 1)


main()
