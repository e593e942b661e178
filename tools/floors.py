#!/usr/bin/env python3
"""Checks the floors of the house: a file includes only what stands on its own floor or above it in
these lists, and no part of the house knows a part that it must not."""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.M)

# Floors of the plug-in and of the stand-in host, in order; folders on one line share a floor.
PLUGIN = [["foundation"], ["persistence/xml"], ["persistence/codecs"], ["persistence/chunks"],
          ["resources"], ["core_link"], ["measures"], ["undo"], ["controllers"], ["objects"],
          ["nodes"], ["persistence/scene"], ["adaptor"], ["plugin"]]
HOST = [["breaches"], ["values"], ["storage"], ["references"], ["hold"], ["drawing"],
        ["control", "objects"], ["scene"], ["classes"], ["scene_file"], ["ui"], ["viewport"],
        ["viewport_module"], ["session"], ["command"]]

# Part of the house: its folder, its floors, and the contracts, or single headers, that it may
# include.
PARTS = [
    ("include/tvl", None, ["tvl"]),
    ("include/host", None, ["host", "platform"]),
    ("include/headless", None, ["headless", "host"]),
    ("platform", None, ["platform"]),
    ("src", PLUGIN, ["tvl", "host", "platform"]),
    ("headless", HOST, ["headless", "host", "platform"]),
    ("examples/replay_core", None, ["tvl", "replay_core", "platform/narrow_path.h"]),
]


def floor_of(path, floors):
    for index, folders in enumerate(floors or []):
        if any(path == folder or path.startswith(folder + "/") for folder in folders):
            return index
    return None


def complaints(folder, floors, contracts):
    top = ROOT / folder
    for file in sorted(top.rglob("*.h")) + sorted(top.rglob("*.cpp")):
        here = str(file.relative_to(top))
        for included in INCLUDE.findall(file.read_text()):
            if "/" not in included or {included, included.split("/")[0]} & set(contracts):
                continue
            there, own = floor_of(included, floors), floor_of(here, floors)
            if there is None:
                yield f"{folder}/{here}: includes {included}, which is none of its contracts"
            elif own is None:
                yield f"{folder}/{here}: stands on no floor"
            elif there > own:
                yield f"{folder}/{here}: includes {included} from a floor below"


found = [line for part in PARTS for line in complaints(*part)]
print("\n".join(found) if found else "floors: every include points upward")
sys.exit(1 if found else 0)
