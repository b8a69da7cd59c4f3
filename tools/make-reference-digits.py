#!/usr/bin/env python3
"""Writes the reference digits of the spot check from the reference values of the tests.

    make-reference-digits.py [SOURCE_ROOT]

tests/data/constants.csv holds, for each constant and a number of digits, the last 50 of them, computed with two
arithmetic libraries that agree; Digits/NAME.txt gets five entries of ten digits from each of them, NAME being
the constant's short name. tests/data/long_digits.csv holds what the program computed by two formulas that agree,
and agree with those as far as they go (compute-reference-digits.py): an entry from each line.
"""

import csv
import pathlib
import re
import sys

# Where the short name is not the key with its first letter in upper case.
NAMES = {"golden": "Golden Ratio", "e": "e", "gamma": "Euler's Constant", "arccoth": "ArcCoth"}
GROUP = 10


def short_name(constant):
    """ "log(2)" becomes "Log(2)". """
    key, argument = re.fullmatch(r"([a-z]+)(\(\d+\))?", constant).groups()
    return NAMES.get(key, key.capitalize()) + (argument or "")


def entries(row):
    """(position, digits) of each group of ten among the row's digits."""
    last = int(row["d"])
    digits = row["last50"]
    for start in range(0, len(digits), GROUP):
        yield last - len(digits) + start + GROUP, digits[start:start + GROUP]


def main(arguments):
    root = pathlib.Path(arguments[1] if len(arguments) > 1 else pathlib.Path(__file__).parent.parent)
    files = {}
    with open(root / "tests/data/constants.csv", newline="", encoding="utf-8") as table:
        for row in csv.DictReader(table):
            files.setdefault(short_name(row["constant"]), {}).update(entries(row))
    with open(root / "tests/data/long_digits.csv", newline="", encoding="utf-8") as table:
        for row in csv.DictReader(table):
            known = files[short_name(row["constant"])].setdefault(int(row["position"]), row["digits"])
            if known != row["digits"]:
                raise SystemExit(f"{row['constant']}: two kinds of digits at {row['position']}")
    folder = root / "Digits"
    folder.mkdir(exist_ok=True)
    for name, digits in files.items():
        width = len(f"{max(digits):,}")
        lines = [f"{position:>{width},} | {digits[position]}\n" for position in sorted(digits)]
        (folder / f"{name}.txt").write_text("".join(lines), encoding="utf-8", newline="\n")


if __name__ == "__main__":
    main(sys.argv)
