#!/usr/bin/env python3
"""Writes the relations between logarithms of primes that the generator of Log(n) formulas searches.

    make-relation-tables.py [SOURCE_ROOT]

A relation of the prime p is  2 ln p = c ln((x + 1) / (x - 1)) + sum of d_j ln y_j  with smaller primes y_j, none
above 19. So x - 1 and x + 1 hold no other primes, and p once (c = +-2) or twice (c = +-1). The larger x, the cheaper
is ArcCoth(x): for each p, and each base of the 4 to 8 smallest primes, the primary table holds the largest x below
2^32, and the secondary table the largest one that the primary table does not use for p. Bases that add nothing to a
smaller one add no row. Takes some seconds.
"""

import math
import pathlib
import sys
from fractions import Fraction

LIMIT = 2**32
BASE = [2, 3, 5, 7, 11, 13, 17, 19]
BASE_SIZES = range(4, 9)
PRIMES = [p for p in range(11, 252) if all(p % q for q in range(2, p))]
ROWS_PER_PRIME = 5
SLOTS = 8

# Rows with fewer primes than the smallest base, which the rule does not give.
FURTHER_ROWS = {"primary": {251: [501]}, "secondary": {}}


def smooth_numbers(primes, limit):
    """All products of the primes up to the limit."""
    found = [1]
    for p in primes:
        fresh = found
        while fresh:
            fresh = [n * p for n in fresh if n * p <= limit]
            found = found + fresh
    return found


def arguments(p, smooth):
    """The x of all relations of p whose other primes are those of the smooth numbers."""
    found = set()
    for power in (p, p * p):
        for s in smooth:
            n = power * s
            if n > LIMIT:
                continue
            if n - 2 in smooth:
                found.add(n - 1)
            if n + 2 in smooth:
                found.add(n + 1)
    return sorted(x for x in found if 2 <= x < LIMIT)


def exponent(n, p):
    """How often p divides n."""
    e = 0
    while n % p == 0:
        n //= p
        e += 1
    return e


class Relation:
    def __init__(self, p, x):
        self.p = p
        self.x = x
        in_ratio = exponent(x + 1, p) - exponent(x - 1, p)
        self.c, remainder = divmod(2, in_ratio)
        assert remainder == 0
        exponents = [(y, -self.c * (exponent(x + 1, y) - exponent(x - 1, y))) for y in BASE if y != p]
        self.factors = [(y, d) for y, d in exponents if d != 0]
        self.verify()

    def verify(self):
        """p^2 = ((x + 1) / (x - 1))^c times the product of the y^d, exactly."""
        product = Fraction(self.x + 1, self.x - 1) ** self.c
        for y, d in self.factors:
            assert y < self.p
            product *= Fraction(y) ** d
        assert product == self.p**2 and 2 <= self.x < LIMIT and len(self.factors) <= SLOTS

    def order(self):
        return (self.p, self.factors[-1][0], len(self.factors), self.x)

    def row(self):
        numbers = [self.x] + [y for y, _ in self.factors]
        coefficients = [self.c] + [d for _, d in self.factors]
        joined = [", ".join(map(str, values)) for values in (numbers, coefficients)]
        return f"    {{{self.p}, {len(self.factors)}, {{{joined[0]}}}, {{{joined[1]}}}, {1 / math.log(self.x):.6f}}},\n"


def largest_for_each_base(p, smooth, excluded):
    """One argument for each base that has a larger one than the bases before it."""
    chosen = []
    for size in BASE_SIZES:
        if BASE[size - 1] >= p:
            break
        found = [x for x in arguments(p, smooth[size]) if x not in excluded]
        if found and (not chosen or found[-1] > chosen[-1]):
            chosen.append(found[-1])
    return chosen


def tables():
    smooth = {size: set(smooth_numbers(BASE[:size], LIMIT + 2)) for size in BASE_SIZES}
    primary, secondary = [], []
    for p in PRIMES:
        first = largest_for_each_base(p, smooth, [])
        second = largest_for_each_base(p, smooth, first)
        for name, table, chosen in (("primary", primary, first), ("secondary", secondary, second)):
            relations = [Relation(p, x) for x in FURTHER_ROWS[name].get(p, []) + chosen]
            assert len(relations) <= ROWS_PER_PRIME
            table.extend(sorted(relations, key=Relation.order))
    return {"primary": primary, "secondary": secondary}


HEADER = """// Written by tools/make-relation-tables.py, which tells how the rows were found.
#include "constants/log_tables.h"

namespace kelvara {

namespace {

// clang-format off
"""

FOOTER = """// clang-format on

}  // namespace

const std::span<const LogRecord> primary_log_relations = primary;
const std::span<const LogRecord> secondary_log_relations = secondary;

}  // namespace kelvara
"""


def main():
    root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else pathlib.Path(__file__).parent.parent)
    text = HEADER
    for name, relations in tables().items():
        rows = "".join(relation.row() for relation in relations)
        text += f"constexpr LogRecord {name}[] = {{\n    {{0, 0, {{}}, {{}}, 0}},\n{rows}}};\n\n"
    output = root / "src/constants/log_relations.cpp"
    output.write_text(text.rstrip("\n") + "\n" + FOOTER, encoding="utf-8")


if __name__ == "__main__":
    main()
