#!/usr/bin/env python3
"""Compares the samples of one scene that two systems took. Their C libraries differ in the last bits
of sines and roots, so numbers may differ by one unit in the last place of a float; all else agrees."""

import csv
import math
import sys

FLOAT_DIGITS = 24


def float_unit(number):
    """The distance from a number to the next float; frexp gives a mantissa below one."""
    return math.ldexp(1.0, math.frexp(number)[1] - FLOAT_DIGITS)


def units_apart(first, second):
    if first == second:
        return 0.0
    a, b = float(first), float(second)
    return abs(a - b) / float_unit(max(abs(a), abs(b)))


def read(path):
    with open(path, newline="") as file:
        return list(csv.reader(file))


def main(first, second):
    tables = read(first), read(second)
    if len(tables[0]) < 2 or len(tables[0]) != len(tables[1]):
        sys.exit(f"{first}, {second}: {len(tables[0])} and {len(tables[1])} rows")
    furthest = 0.0
    for line, (a, b) in enumerate(zip(*tables), start=1):
        names = 2 if line > 1 else len(a)  # seconds and node, then numbers alone
        if a[:names] != b[:names] or len(a) != len(b):
            sys.exit(f"{first}, {second}: row {line} is of another node or time")
        for apart in map(units_apart, a[names:], b[names:]):
            if not apart <= 1.0:  # nor is a NaN
                sys.exit(f"{first}, {second}: row {line} is {apart:.3g} units in the last place apart")
            furthest = max(furthest, apart)
    print(f"Poses: at most {furthest:.2g} units in the last place of a float apart in all "
          f"{len(tables[0]) - 1} rows")


main(*sys.argv[1:])
