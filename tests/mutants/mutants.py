#!/usr/bin/env python3
"""Puts one fault after the other into a copy of the sources, each a line of a table, and looks
whether the test that is named beside it fails. A table is tab-separated: file, the line that is
there, the line in its place, test. A row whose line is gone, or stands in its file more than once,
fails: a table cannot rot unseen."""

import argparse
import collections
import pathlib
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
TABLE = pathlib.Path(__file__).with_name("mutants.tsv")
LONGEST = 600  # seconds; who never ends is caught, too

Mutant = collections.namedtuple("Mutant", "number file old new test")


def read_table(path):
    for number, line in enumerate(path.read_text().splitlines(), 1):
        cells = line.split("\t")
        if len(cells) != 4:
            sys.exit(f"{path}:{number}: {len(cells)} cells, not file, old line, new line, test")
        yield Mutant(number, *cells)


def mutated(text, mutant):
    """The text with the mutant in it, or None if its line is not there once."""
    lines = text.split("\n")
    at = [index for index, line in enumerate(lines) if line.strip() == mutant.old]
    if len(at) != 1:
        return None
    lines[at[0]] = mutant.new
    return "\n".join(lines)


def said(*command, seconds=None):
    try:
        done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              text=True, errors="replace", timeout=seconds)
        return done.returncode, done.stdout
    except subprocess.TimeoutExpired:
        return -1, "it did not end"


def target_of(test):
    if test == "*":
        return "all"
    return {"soak": "lumiset-soak"}.get(test, test if test.startswith("fuzz_") else f"test_{test}")


class Copy:
    """The tree in a folder of its own, with its build; only what changed is copied anew."""

    def __init__(self, folder):
        self.tree, self.build = folder / "tree", folder / "build"
        tracked = said("git", "-C", ROOT, "ls-files")[1].splitlines()
        for file in tracked:
            self.take(pathlib.Path(file))
        for path in [path for path in self.tree.rglob("*") if path.is_file()]:
            if str(path.relative_to(self.tree)) not in tracked:
                path.unlink()
        status, words = said("cmake", "-S", self.tree, "-B", self.build, "-G", "Ninja")
        if status:
            sys.exit(words)

    def take(self, file):
        here, there = ROOT / file, self.tree / file
        if here.exists() and not (there.exists() and there.read_bytes() == here.read_bytes()):
            there.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(here, there)

    def make(self, test):
        return said("ninja", "-C", self.build, target_of(test))[0]

    def test(self, name):
        return said("ctest", "--test-dir", self.build, "--stop-on-failure", "-R",
                    "." if name == "*" else f"^{name}$", seconds=LONGEST)[0]

    def judge(self, mutant):
        file = self.tree / mutant.file
        whole = file.read_text() if file.exists() else ""
        text = mutated(whole, mutant)
        if text is None:
            return "its line is gone, or is there more than once"
        file.write_text(text)
        try:
            if self.make(mutant.test):
                return "does not compile"
            return "caught" if self.test(mutant.test) else "SURVIVED"
        finally:
            file.write_text(whole)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("files", nargs="*", help="mutants of these files or folders alone")
    parser.add_argument("--table", type=pathlib.Path, default=TABLE)
    parser.add_argument("--folder", type=pathlib.Path, default=ROOT / "build/mutants")
    options = parser.parse_args()
    copy, ends = Copy(options.folder.resolve()), collections.Counter()
    for mutant in read_table(options.table):
        if options.files and not any(mutant.file.startswith(file) for file in options.files):
            continue
        end = copy.judge(mutant)
        ends[end] += 1
        print(f"{mutant.number:4} {end:9} {mutant.test:14} {mutant.file}: {mutant.old}", flush=True)
    print(", ".join(f"{count} {end}" for end, count in ends.most_common()))
    sys.exit(0 if set(ends) == {"caught"} else 1)


main()
