#!/usr/bin/env python3
"""Runs the command on small inputs over and over. In each run one thing fails that it asks of the
system: the nth allocation or the nth operation on a file, for every n until none is left. After
each it looks at how the command ended and at what it left in its folder."""

import argparse
import collections
import concurrent.futures
import itertools
import os
import pathlib
import re
import shutil
import signal
import struct
import subprocess
import sys

# Over an old scene, into a new place, over another scene, over the one that is read, and a picture.
VERBS = {"record": "record small.bvh --scene take.scene --poses poses.csv",
         "open": "open in.scene --save new.scene",
         "merge": "merge in.scene other.scene --save take.scene",
         "convert": "convert in.scene --save in.scene",
         "render": "render in.scene --time 0 --size 32x32 -o picture.png",
         "export": "export in.scene -o take.glb",
         "bvh": "export in.scene -o take.bvh",
         "view": "view in.scene -o take.html",
         "run": "run in.scene --script steps"}
STEPS = """detach
attach
select small_Hip
delete
undo
option 1028
save take.scene
"""

WITHOUT_CORE = ["export", "bvh", "view"]  # of a scene alone they write what there is
# The library behind these asks for memory in destructors, and the process ends if there is none.
FRAGILE = ["export", "view"]

SURVIVED = ["part", "eintr"]  # whoever asks again gets what it wants
DEATHS = ["kill", "cut", "lost"]
HONEST = ["alloc", "eio", "enospc", "eacces"] + SURVIVED + DEATHS
LIE = "lie"  # of a disk that only says it has done it: cannot be helped, and must be seen

# How many of a kind a sample passes over.
STRIDES = {"alloc": 97}
STRIDE = 7
SLOWER = {"render": 6}

CAPTURE = pathlib.Path(__file__).parents[2] / "fuzz/corpus/capture/two_joints"

REGISTRY = """Windows Registry Editor Version 5.00

[HKEY_LOCAL_MACHINE\\SOFTWARE\\Wow6432Node\\Tarvo Works\\Ostrel tools]
"datapath"="{0}"

[HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders]
"Personal"="{1}/documents"
"""

BOOK = struct.Struct("ll?512s7x")  # as injector.cpp has it

Ending = collections.namedtuple("Ending", "status out error struck what")


def folder_files(folder):
    return {path.name: path.read_bytes() for path in folder.iterdir()}


class Place:
    """Where one process of the command at a time runs: its folder of scenes, and all else."""

    def __init__(self, binaries, home):
        self.binaries, self.home, self.scenes = binaries, home, home / "scenes"
        self.environment = {"LD_PRELOAD": str(binaries / "fault_injector.so"),
                            "LUMISET_FAULT_HOME": str(home),
                            "LUMISET_REGISTRY": str(home / "lumiset.reg"),
                            "MESA_SHADER_CACHE_DISABLE": "true",
                            "TMPDIR": str(home / "tmp")}

    def lay(self, files):
        shutil.rmtree(self.home, ignore_errors=True)
        for name in ["scenes", "tmp", "attic", "documents/Tarvo Works/Lumiset/data"]:
            (self.home / name).mkdir(parents=True)
        (self.home / "lumiset.reg").write_text(REGISTRY.format(self.binaries, self.home))
        for name, content in files.items():
            (self.scenes / name).write_bytes(content)
            os.link(self.scenes / name, self.home / "attic" / name)

    def run(self, words, fault="none:0"):
        (self.home / "book").write_bytes(bytes(BOOK.size))
        done = subprocess.run([self.binaries / "lumiset-headless", *words.split()], cwd=self.scenes,
                              capture_output=True, check=False,
                              env=self.environment | {"LUMISET_FAULT": fault})
        _, _, struck, what = BOOK.unpack((self.home / "book").read_bytes())
        return Ending(done.returncode, done.stdout.decode(), done.stderr.decode(), struck,
                      what.split(b"\0")[0].decode())

    def must(self, words):
        ending = self.run(words)
        if ending.status != 0:
            sys.exit(f"faults: {words}: status {ending.status}\n{ending.error}")
        return ending


def make_inputs(place):
    place.lay({"small.bvh": CAPTURE.read_bytes(), "other.bvh": CAPTURE.read_bytes()})
    place.must("record small.bvh --scene in.scene")
    place.must("record other.bvh --scene other.scene")
    files = folder_files(place.scenes)
    old = ["poses.csv", "picture.png", "take.glb", "take.bvh", "take.html"]
    return files | dict.fromkeys(old, b"old") | {"take.scene": files["other.scene"],
                                                 "steps": STEPS.encode()}


def has_complaint(ending):
    """What was asked for is done, and what else did not go well is told."""
    return ending.status == 0 and any(
        line.strip().startswith(("Complaint: ", "Message box: ")) for line in ending.out.split("\n"))


class Verb:
    """A verb's run without a fault, which the others are held against."""

    def __init__(self, place, name, before):
        self.name, self.words, self.before = name, VERBS[name], before
        place.lay(before)
        self.ending = place.must(self.words)
        self.after = self.alone = folder_files(place.scenes)
        if name in WITHOUT_CORE:
            place.must(self.words + " --no-core")
            self.alone = folder_files(place.scenes)

    def is_as_good(self, place, name, ending):
        """Whether it is what a run without Core writes, if that is told; of a scene, whether another process finds in a scene what it finds in the one of the clean run; or opens
        it to the same words, if the run has told that it keeps what could not be read beside it."""
        if not name.endswith(".scene"):
            written = (place.scenes / name).read_bytes()
            return has_complaint(ending) and self.name in WITHOUT_CORE and written == self.alone[name]
        # Steps go on behind one that was not done whole, which is told.
        if self.name == "run" and has_complaint(ending):
            return place.run(f"open {name}").status == 0
        # What is kept unread is saved along with the rest, so there is more in the file by then.
        keeps_old = has_complaint(ending) and any(
            words in ending.out for words in ("kept as they are stored", "they were never claimed"))
        found, compared = place.run(f"open {name}"), place.scenes / "compared"
        compared.write_bytes(self.after[name])
        is_same = keeps_old or place.run(f"diff compared {name}").status == 0
        compared.rename(place.scenes / name)
        return is_same and place.must(f"open {name}").out == found.out

    def fault_in_folder(self, place, ending, may_leave):
        now = folder_files(place.scenes)
        for name, after in self.after.items():
            before, found = self.before.get(name), now.pop(name, None)
            if found == before and (ending.status != 0 or before == after):
                continue
            if found is None:
                return f"{name} is gone"
            if before == after or found != after and not self.is_as_good(place, name, ending):
                return f"{name} is not what was to be saved, nor as it was"
        left = [name for name in now if not (may_leave and name.endswith(".saving"))]
        return f"{left[0]} is left behind" if left else ""

    def fault_in_words(self, kind, ending):
        # An undo step whose name found no memory goes without.
        words, meant = (re.sub('to undo: ".*"', "to undo", out)
                        for out in (ending.out, self.ending.out))
        if ending.status == 0 and words != meant and not has_complaint(ending):
            return "success in other words"
        if ending.status not in (0, 1):
            return f"status {ending.status}"
        if ending.status == 1 and kind in SURVIVED:
            return "refuses what is to be survived"
        has_words = "\nlumiset-headless: " in "\n" + ending.error and "std::" not in ending.error
        return "" if ending.status == 0 or has_words else "has no words for its refusal"


def attempt(place, verb, kind, n):
    place.lay(verb.before)
    ending = place.run(verb.words, f"{kind}:{n}")
    is_killed = ending.struck and kind in DEATHS
    may_leave = is_killed or kind == "lost" or ending.what.startswith("unlink")
    if is_killed:
        fault = "" if ending.status == -signal.SIGKILL else "is not killed"
    else:
        fault = verb.fault_in_words(kind, ending)
    if not may_leave and any((place.home / "tmp").iterdir()):
        fault = fault or "a scratch file is left"
    return ending, fault or verb.fault_in_folder(place, ending, may_leave)


def outcome(ending, fault):
    done = "complained" if has_complaint(ending) else "done"
    return "faults" if fault else {0: done, 1: "refused"}.get(ending.status, "killed")


def sweep(places, verb, kind, stride):
    """Every n, or some, until one has nothing left to fail; one run in each place at a time."""
    numbers, figures, is_over = itertools.count(1 + stride // 2, stride), collections.Counter(), False
    with concurrent.futures.ThreadPoolExecutor(len(places)) as pool:
        while not is_over:
            row = list(itertools.islice(numbers, len(places)))
            runs = pool.map(lambda place, n: attempt(place, verb, kind, n), places, row)
            for n, (ending, fault) in zip(row, runs):
                is_over |= not ending.struck
                if ending.struck or fault:
                    figures[outcome(ending, fault)] += 1
                if fault and kind != LIE:
                    print(f"FAULT: ./dev faults {verb.name} {kind} {n}: {ending.what}: {fault}")
    tell(f"{verb.name} {kind}", figures)
    return figures


def tell(title, figures):
    print(f"{title:16}{figures.total():7} runs:" + ",".join(
        f"{figures[name]:7} {name}" for name in ["refused", "done", "complained", "killed", "faults"]),
        flush=True)


def show(ending, fault):
    print(f"{ending.what or 'nothing failed'}\nstatus {ending.status}\n{ending.out}{ending.error}"
          f"{'FAULT: ' + fault if fault else 'sound'}")
    return 1 if fault else 0


def read_words():
    """Of words that it does not know it makes nothing, and ends with status 2."""
    parser = argparse.ArgumentParser(add_help=False, allow_abbrev=False)
    parser.add_argument("binaries", type=pathlib.Path, help="where command and injector are")
    parser.add_argument("folder", type=pathlib.Path, help="for all that the runs make")
    parser.add_argument("verb", nargs="?", choices=VERBS)
    parser.add_argument("kind", nargs="?", choices=HONEST + [LIE])
    parser.add_argument("n", nargs="?", type=int, help="this run alone, and all that it says")
    parser.add_argument("--sample", action="store_true", help="some of all, with fixed strides")
    parser.add_argument("--lies", action="store_true", help="that a lying disk is seen, and an honest one not")
    parser.add_argument("--check", action="store_true", help="look at these words alone")
    given = parser.parse_intermixed_args()
    if given.n is not None and given.n < 1:
        parser.error("runs are counted from 1")
    return given


def main():
    given = read_words()
    if given.check:
        return 0
    binaries = given.binaries.resolve()
    places = [Place(binaries, given.folder.resolve() / str(i)) for i in range(os.cpu_count())]
    inputs = make_inputs(places[0])
    verbs = [given.verb] if given.verb else VERBS
    parts = {"render": "headless_viewport.so", "view": "viewer"}  # not built everywhere
    verbs = [name for name in verbs if (binaries / parts.get(name, "")).exists()]
    kinds = [given.kind] if given.kind else ["eio", *DEATHS, LIE] if given.lies else HONEST
    everything, is_seen = collections.Counter(), True
    for name in verbs:
        verb = Verb(places[0], name, inputs)
        if given.n:
            return show(*attempt(places[0], verb, given.kind, given.n))
        for kind in kinds:
            if kind == "alloc" and name in FRAGILE and not given.kind:
                continue
            stride = STRIDES.get(kind, STRIDE) * SLOWER.get(name, 1) if given.sample else 1
            figures = sweep(places, verb, kind, stride)
            everything += figures
            is_seen &= (figures["faults"] > 0) == (kind == LIE)
    tell("all", everything)
    return 0 if is_seen else 1


sys.exit(main())
