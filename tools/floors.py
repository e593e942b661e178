#!/usr/bin/env python3
"""Checks the floors of the house: a file includes only what stands on its own floor or above it in
these lists, and no part of the house knows a part that it must not. Then lists what includes do not
show: functions that a room declares for itself and that a room below defines."""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.M)
# Of functions that are no members: layout puts them at the beginning of a line.
DECLARED = re.compile(r"^[A-Za-z][\w:<>,*& ]*[ *&](\w+)\([^;{}]*\)[^;{}()]*;", re.M)
DEFINED = re.compile(r"^[A-Za-z][\w:<>,*& ]*[ *&](\w+)\([^;{}]*\)[^;{}()]*\{", re.M)

# Floors of the plug-in and of the stand-in host, in order; folders on one line share a floor.
PLUGIN = [["foundation"], ["xml"], ["codecs"], ["chunks"],
          ["resources"], ["core_link"], ["measures"], ["undo"], ["controllers"], ["objects"],
          ["nodes"], ["scene_state"], ["adaptor"], ["plugin"]]
HOST = [["breaches"], ["values"], ["storage"], ["hold"], ["references"], ["drawing"],
        ["control", "objects"], ["scene"], ["classes"], ["scene_file"], ["comparison"], ["ui"],
        ["viewport"], ["viewport_module"], ["session"]]

RECORDER = [["stream"], ["tape", "watch", "proxies"], ["recorder.h", "recorder.cpp"], ["module"]]

# Part of the house: its folder, its floors, how includes of its own begin, and the contracts, or
# single headers, that it may include.
PARTS = [
    ("include/tvl", None, "", ["tvl"]),
    ("include/host", None, "", ["host", "platform"]),
    ("include/headless", None, "", ["headless", "host", "tvl/core_interface.h"]),
    ("include/replay", None, "", ["replay"]),
    ("platform", None, "", ["platform"]),
    ("src", PLUGIN, "", ["tvl", "host", "platform"]),
    ("headless", HOST, "headless/", ["include/headless", "host", "platform"]),
    ("seat", None, "", ["seat", "headless/core_seat.h", "tvl", "foundation/thrown.h", "platform"]),
    ("recorder", RECORDER, "recorder/", ["tvl", "platform/files.h", "platform/whole_file.h",
                                         "platform/narrow_path.h", "platform/win32.h",
                                         "platform/windows/last_error.h", "foundation/thrown.h"]),
    ("player", None, "", ["player", "recorder", "tvl", "foundation/thrown.h",
                           "headless/core_seat.h", "headless/session.h", "headless/scene_view.h",
                           "headless/scene_file_view.h",
                           "host", "platform"]),
    ("interchange", None, "", ["interchange", "headless/scene_view.h", "headless/viewport.h", "host",
                               "platform/narrow_path.h", "replay", "tvl"]),
    ("command", None, "", ["command", "interchange", "player", "recorder", "headless", "host", "platform", "replay",
                             "tvl/adaptor_interface.h", "tvl/ids.h", "tvl/installation.h",
                             "tvl/log.h", "tvl/panel.h"]),
    ("examples/hello_core", None, "", ["tvl"]),
    ("examples/replay_core", None, "", ["tvl", "replay", "replay_core", "platform/interrupt.h",
                                          "platform/narrow_path.h",
                                          "platform/progress_line.h", "platform/whole_file.h"]),
]


def floor_of(path, floors):
    for index, folders in enumerate(floors or []):
        if any(path == folder or path.startswith(folder + "/") for folder in folders):
            return index
    return None


def sources(folder):
    top = ROOT / folder
    return [(str(file.relative_to(top)), file.read_text())
            for pattern in ("*.h", "*.cpp") for file in sorted(top.rglob(pattern))]


def is_of(included, contracts):
    """Contracts are folders of includes, or single headers; those of the host's own are told apart
    from its rooms by where they lie."""
    return any(included == contract or included.startswith(contract + "/") or
               contract.startswith("include/") and (ROOT / "include" / included).exists()
               for contract in contracts)


def complaints(folder, floors, prefix, contracts):
    for here, text in sources(folder):
        for included in INCLUDE.findall(text):
            if "/" not in included or is_of(included, contracts):
                continue
            there, own = floor_of(included.removeprefix(prefix), floors), floor_of(here, floors)
            if there is None or not included.startswith(prefix):
                yield f"{folder}/{here}: includes {included}, which is none of its contracts"
            elif own is None:
                yield f"{folder}/{here}: stands on no floor"
            elif there > own:
                yield f"{folder}/{here}: includes {included} from a floor below"


def accessors(folder, floors, *_):
    declared = {name: here for here, text in sources(folder) if here.endswith(".h")
                for name in DECLARED.findall(text)}
    for here, text in sources(folder):
        for name in DEFINED.findall(text) if here.endswith(".cpp") else []:
            if name in declared and floor_of(here, floors) > floor_of(declared[name], floors):
                yield f"  {name}: declared in {declared[name]}, defined in {here}"


found = [line for part in PARTS for line in complaints(*part)]
print("\n".join(found) if found else "floors: every include points upward")
print("declared above, defined below:")
print("\n".join(line for part in PARTS if part[1] for line in accessors(*part)))
sys.exit(1 if found else 0)
