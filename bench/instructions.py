"""Counts the instructions of an operation under callgrind: instructions.py BIN_FOLDER CAPTURE FILTER

Prints a line for each benchmark whose name the filter finds, and for the recording of the capture by
the command, from its start to its end, if the filter finds that. A work whose target is a number of
instructions has that behind it.
"""

import json
import re
import subprocess
import sys
import tempfile
from pathlib import Path

BIN, CAPTURE, FILTER = Path(sys.argv[1]), sys.argv[2], sys.argv[3]
RECORDING = "record the demo's capture"
TARGET = re.compile(r'\{"([^"]*)", "", Figure::kInstructions, ([^}]*)\}')
TARGETS = dict(TARGET.findall((Path(__file__).parent / "targets.cpp").read_text()))


def callgrind(folder, options, command):
    """The totals of what was dumped, each with its cause."""
    subprocess.run(
        ["valgrind", "--quiet", "--tool=callgrind", f"--callgrind-out-file={folder}/out", *options]
        + command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    for file in folder.glob("out*"):
        text = file.read_text()
        yield re.search("^desc: Trigger: (.*)", text, re.M)[1], int(
            re.search(r"^totals: (\d+)", text, re.M)[1])


def of_benchmark(name, folder):
    """Each stretch that is measured begins at a call of MeasuringBegins and ends at the next of
    MeasuringEnds."""
    exactly = "^" + re.sub(r"([][.+*?(){}|^$\\])", r"\\\1", name) + "$"
    command = [BIN / "lumiset-bench", exactly, "--benchmark_repetitions=1", "--benchmark_min_time=0",
               f"--benchmark_out={folder}/run.json", "--benchmark_out_format=json"]
    marks = ["--zero-before=MeasuringBegins", "--dump-before=MeasuringEnds"]
    counted = sum(count for cause, count in callgrind(folder, marks, command) if "Ends" in cause)
    run = json.loads((folder / "run.json").read_text())["benchmarks"][0]
    return counted / run["operations"]


def of_recording(folder):
    command = [BIN / "lumiset-headless", "record", CAPTURE, "-o", folder / "take.scene"]
    return sum(count for _, count in callgrind(folder, [], command))


def show(name, count):
    target = f"   <= {float(TARGETS[name]):,.0f}" if name in TARGETS else ""
    print(f"{name:<50}{count:>16,.0f}{target}", flush=True)


try:
    is_recording = re.search(FILTER, RECORDING)
except re.error as error:
    sys.exit(f"instructions.py: {FILTER}: {error}")
listed = subprocess.run([BIN / "lumiset-bench", "--list", FILTER], text=True, stdout=subprocess.PIPE,
                        stderr=subprocess.DEVNULL if is_recording else None)
if listed.returncode and not is_recording:
    sys.exit(listed.returncode)
print("instructions of an operation")
for name in sorted(listed.stdout.splitlines(), key=lambda one: one.split("/")[0]):
    with tempfile.TemporaryDirectory() as folder:
        show(name, of_benchmark(name, Path(folder)))
if is_recording:
    with tempfile.TemporaryDirectory() as folder:
        show(RECORDING, of_recording(Path(folder)))
