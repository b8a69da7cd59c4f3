#!/usr/bin/env python3
"""Computes reference digits beyond those of the tests' data, each of them in two ways that have to agree.

    compute-reference-digits.py PROGRAM [CONSTANT...]

Writes tests/data/long_digits.csv, from which make-reference-digits.py takes them; with constants ("log(2)"),
only their lines anew. For every constant, the program computes the digits by one formula; then the same
number of digits comes from another formula, or for square roots from GMP (libgmp.so.10), which shares no code
with the program. Nothing is written unless all digits are the same, and the first of them are those whose
SHA-256 stands in tests/data/constants.csv.

A line is a constant, a position, the ten digits that end there, how many digits were compared, and the two ways.
"""

import csv
import ctypes
import hashlib
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
SHORT = ROOT / "tests/data/constants.csv"
LONG = ROOT / "tests/data/long_digits.csv"
COLUMNS = ["constant", "position", "digits", "compared", "first", "second"]
GROUP = 10
MILLION = 1000000
BLOCK = 1 << 24

# Digits, the constant's name on the command line, and the two ways. "gmp" is the other library.
PLANS = {
    "pi": (512 << 20, "pi", "chudnovsky", "ramanujan"),
    "e": (256 << 20, "e", "exp(1)", "exp(-1)"),
    "golden": (50 * MILLION, "phi", "newton", "gmp"),
    "sqrt(2)": (50 * MILLION, "sqrt:2", "newton", "gmp"),
    "sqrt(125)": (10 * MILLION, "sqrt:125", "newton", "gmp"),
    "sqrt(200)": (10 * MILLION, "sqrt:200", "newton", "gmp"),
    "log(2)": (10 * MILLION, "log:2", "machin-primary", "machin-secondary"),
    "log(3)": (10 * MILLION, "log:3", "machin-primary", "machin-secondary"),
    "log(10)": (10 * MILLION, "log:10", "machin-primary", "machin-secondary"),
    "zeta(3)": (10 * MILLION, "zeta3", "az-long", "az-short"),
    "lemniscate": (10 * MILLION, "lemniscate", "gauss", "sebah"),
    "catalan": (10 * MILLION, "catalan", "lupas", "huvent"),
    "gamma": (2 * MILLION, "gamma", "brent-refined", "brent-original"),
}


def positions(digits):
    """Where a computation is likely to end: the benchmark's sizes of both kinds, and 1, 2, 2.5, 5 times 10^k."""
    round_numbers = {step * 10 ** k for step in (10, 20, 25, 50) for k in range(4, 10)}
    powers = {1 << k for k in range(17, 40)}
    return sorted(n for n in round_numbers | powers if 10 ** 5 < n <= digits)


def digits_of_program(program, constant, algorithm, digits, folder):
    """The path of the text file "I.FFF..."."""
    target = folder / algorithm
    target.mkdir()
    subprocess.run([program, "skip-warnings", "custom", constant, f"-algorithm:{algorithm}", f"-dec:{digits}", "-hex:0",
                    "-o", target], cwd=target, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, check=True)
    (path,) = target.glob("* - Dec - *.txt")
    return path


def square_root_by_gmp(constant, digits, folder):
    """The same of a square root, or of the golden ratio, (1 + sqrt(5)) / 2."""
    gmp = ctypes.CDLL("libgmp.so.10")

    class Integer(ctypes.Structure):
        _fields_ = [("room", ctypes.c_int), ("size", ctypes.c_int), ("words", ctypes.c_void_p)]

    root, power = Integer(), Integer()
    argument = 5 if constant == "golden" else int(re.fullmatch(r"sqrt\((\d+)\)", constant)[1])
    for number in (root, power):
        gmp.__gmpz_init(ctypes.byref(number))
    unsigned = ctypes.c_ulong
    gmp.__gmpz_ui_pow_ui(ctypes.byref(power), unsigned(10), unsigned(digits))
    gmp.__gmpz_mul(ctypes.byref(root), ctypes.byref(power), ctypes.byref(power))
    gmp.__gmpz_mul_ui(ctypes.byref(root), ctypes.byref(root), unsigned(argument))
    gmp.__gmpz_sqrt(ctypes.byref(root), ctypes.byref(root))
    if constant == "golden":
        gmp.__gmpz_add(ctypes.byref(root), ctypes.byref(root), ctypes.byref(power))
        gmp.__gmpz_fdiv_q_2exp(ctypes.byref(root), ctypes.byref(root), unsigned(1))
    text = ctypes.create_string_buffer(digits + 100)
    gmp.__gmpz_get_str(text, ctypes.c_int(10), ctypes.byref(root))
    path = folder / "gmp.txt"
    path.write_bytes(text.value[:-digits] + b"." + text.value[-digits:])
    return path


def assert_same(first, second):
    with open(first, "rb") as one, open(second, "rb") as other:
        while block := one.read(BLOCK):
            if block != other.read(BLOCK):
                raise SystemExit(f"{first} and {second} differ")
        if other.read(1):
            raise SystemExit(f"{second} is longer")


def assert_known(constant, path, rows):
    """The longest reference of the tests, beginning with the integer part, is what the file begins with."""
    row = max((row for row in rows if row["constant"] == constant), key=lambda row: int(row["d"]))
    with open(path, "rb") as file:
        whole = file.read(GROUP).index(b".")
        file.seek(0)
        beginning = file.read(whole + 1 + int(row["d"]))
    if hashlib.sha256(beginning).hexdigest() != row["sha256_dec"]:
        raise SystemExit(f"{constant}: the first {row['d']} digits are not the known ones")


def compute(program, constant, rows):
    """The lines of a constant."""
    digits, argument, first, second = PLANS[constant]
    with tempfile.TemporaryDirectory(prefix="kelvara-digits-") as name:
        folder = pathlib.Path(name)
        path = digits_of_program(program, argument, first, digits, folder)
        assert_known(constant, path, rows)
        if second == "gmp":
            other = square_root_by_gmp(constant, digits, folder)
        else:
            other = digits_of_program(program, argument, second, digits, folder)
        assert_same(path, other)
        with open(path, "rb") as file:
            point = file.read(GROUP).index(b".")
            for position in positions(digits):
                file.seek(point + 1 + position - GROUP)
                yield dict(zip(COLUMNS, [constant, position, file.read(GROUP).decode(), digits, first, second]))


def main(arguments):
    program = shutil.which(arguments[1])
    wanted = arguments[2:] or list(PLANS)
    with open(SHORT, newline="", encoding="utf-8") as table:
        rows = list(csv.DictReader(table))
    lines = {}
    if LONG.exists():
        with open(LONG, newline="", encoding="utf-8") as table:
            for line in csv.DictReader(table):
                lines.setdefault(line["constant"], []).append(line)
    for constant in wanted:
        lines[constant] = list(compute(pathlib.Path(program).resolve(), constant, rows))
        with open(LONG, "w", newline="", encoding="utf-8") as table:
            writer = csv.DictWriter(table, COLUMNS, lineterminator="\n")
            writer.writeheader()
            for name in PLANS:
                writer.writerows(lines.get(name, []))
        print(f"{constant}: {PLANS[constant][0]:,} digits in two ways")


if __name__ == "__main__":
    main(sys.argv)
