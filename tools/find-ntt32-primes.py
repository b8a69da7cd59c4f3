#!/usr/bin/env python3
"""Finds the primes and the size lists of the 32-bit number-theoretic transform.

    tools/find-ntt32-primes.py primes > src/multiply/ntt32/prime_table.cpp
    tools/find-ntt32-primes.py sizes > src/multiply/ntt32/size_tables.cpp

Primes: for each of four powers of two, the nine largest primes below 2^31 that are 1 modulo it, and the
least primitive root of each. A length of multiplier * 2^exponent takes the first set with roots of unity for
2^exponent: the multiplier needs none.

Sizes: every (primes, multiplier, exponent) whose largest coefficient, squares of points of
16 * (primes - 1) bits times the number of points, is below the product of the primes by 2^-20. The
specialised list keeps those that no larger size beats in cost(); the standard list drops, of all sizes in the
range, one after the other the one that lies closest to its neighbours, until 126 are left.
"""

import math
import sys

LIMIT = 1 << 31
PRIMES_PER_SET = 9
SET_EXPONENTS = (20, 22, 23, 24)
FIRST, LAST = (5, 1, 11), (4, 3, 24)
STANDARD_ROWS = 126


def prime_factors(n):
    factors, q = [], 2
    while q * q <= n:
        if n % q == 0:
            factors.append(q)
            while n % q == 0:
                n //= q
        q += 1
    return factors + ([n] if n > 1 else [])


def primitive_root(p):
    factors = prime_factors(p - 1)
    g = 2
    while any(pow(g, (p - 1) // q, p) == 1 for q in factors):
        g += 1
    return g


def prime_set(exponent):
    found, k = [], (LIMIT - 2) >> exponent
    while len(found) < PRIMES_PER_SET:
        p = (k << exponent) + 1
        if prime_factors(p) == [p]:
            found.append(p)
        k -= 1
    return found


def capacity(row):
    primes, multiplier, exponent = row
    return (primes - 1) * multiplier * 32 << (exponent - 1)


def fits(row, sets):
    primes, multiplier, exponent = row
    chosen = next(s for e, s in sets.items() if e >= exponent)
    product = math.prod(chosen[:primes])
    coefficient = (multiplier << exponent) * ((1 << 16 * (primes - 1)) - 1) ** 2
    return coefficient << 20 < product * ((1 << 20) - 1)


# Time of a residue in transforms and conversions, in units of 0.1 ns: AMD EPYC (family 26), AVX-512, 2026-11.
# Points of an odd number of 16-bit parts are dearer; every level of the transform adds one unit.
CONVERSION = {4: 23, 5: 20, 6: 23, 7: 23, 8: 27, 9: 26}


def cost(row):
    primes, multiplier, exponent = row
    return primes * (multiplier << exponent) * (CONVERSION[primes] + exponent)


def all_sizes(sets):
    sizes = {}
    for primes in range(4, 10):
        for multiplier in (1, 3, 5, 7):
            for exponent in range(9, 25):
                row = (primes, multiplier, exponent)
                bits = capacity(row)
                if not capacity(FIRST) <= bits <= capacity(LAST) or not fits(row, sets):
                    continue
                if bits in sizes and cost(sizes[bits]) <= cost(row):
                    continue
                sizes[bits] = row
    sizes[capacity(FIRST)], sizes[capacity(LAST)] = FIRST, LAST
    return [sizes[bits] for bits in sorted(sizes)]


def specialised(sizes):
    kept = [sizes[-1]]
    for row in reversed(sizes[:-1]):
        if cost(row) < cost(kept[-1]) or row == sizes[0]:
            kept.append(row)
    return kept[::-1]


def standard(sizes):
    rows = list(sizes)
    while len(rows) > STANDARD_ROWS:
        closest = min(range(1, len(rows) - 1), key=lambda i: (capacity(rows[i + 1]) / capacity(rows[i - 1]), i))
        del rows[closest]
    return rows


def print_primes(sets):
    print('// Written by tools/find-ntt32-primes.py.')
    print('#include "multiply/ntt32/prime_table.h"\n')
    print('namespace qmp::ntt32 {\n')
    print('const PrimeTable prime_table = {{')
    for exponent, primes in sets.items():
        print(f'    // 1 modulo 2^{exponent}')
        print('    {{')
        for p in primes:
            print(f'        {{{p:#x}, {primitive_root(p)}}},')
        print('    }},')
    print('}};\n')
    print('}  // namespace qmp::ntt32')


def print_rows(name, count, rows):
    print(f'const std::array<LimitRow, {count}> {name} = {{{{')
    for i in range(0, len(rows), 8):
        print('    ' + ' '.join(f'{{{p}, {m}, {e}}},' for p, m, e in rows[i:i + 8]))
    print('}};')


def print_sizes(sets):
    sizes = all_sizes(sets)
    print('// Written by tools/find-ntt32-primes.py.')
    print('#include "multiply/ntt32/size_tables.h"\n')
    print('namespace qmp::ntt32 {\n')
    print('// clang-format off')
    print_rows('standard_rows', 'standard_row_count', standard(sizes))
    print()
    print_rows('specialised_rows', 'specialised_row_count', specialised(sizes))
    print('// clang-format on\n')
    print('}  // namespace qmp::ntt32')
    print(len(standard(sizes)), len(specialised(sizes)), 'of', len(sizes), file=sys.stderr)


def main():
    sets = {e: prime_set(e) for e in SET_EXPONENTS}
    {'primes': print_primes, 'sizes': print_sizes}[sys.argv[1]](sets)


main()
