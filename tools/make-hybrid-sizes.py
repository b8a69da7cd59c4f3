#!/usr/bin/env python3
"""Prints the size lists of the hybrid transform, src/multiply/hybrid_ntt/size_tables.cpp.

    tools/make-hybrid-sizes.py > src/multiply/hybrid_ntt/size_tables.cpp

Candidates are all pairs (k, m), m <= 128, in the range of a list with n = m * 2^k / 128 a multiple of 4; of several with
the same capacity, the one that costs least (cost(): a model of the time). A list keeps its fixed rows and all
candidates that cost no more than any larger one does, times the least factor that leaves enough rows, at
least a ratio of capacities apart: the largest ratio that leaves enough. Of what is still too many, those that
lie closest to their neighbours go.
"""

import bisect

SPECIALISED = {'rows': 328, 'exponents': range(4, 20), 'first': [(4, 32)], 'last': (17, 21)}
STANDARD = {'rows': 189, 'exponents': range(8, 23), 'last': (22, 5),
            'first': [(8, 2), (9, 1), (8, 4), (8, 6), (9, 2), (8, 8)]}

LONGEST = 1 << 18  # n: residues far within the reach of floating-point convolutions
MOST = 128  # m: as many points as words in a residue at least, enough to share among tasks

# Lengths of the floating-point convolutions, in 16 bits a point or somewhat more: r * 2^k for r = 1, 3, 5.
LENGTHS = sorted(r << k for r in (1, 3, 5) for k in range(7, 24))


def words(row):
    k, m = row
    return (m << k) // 128


def capacity(row):
    return (words(row) // 2 - 1) * 32 << row[0]


def cost(row):
    """Nanoseconds: AMD EPYC (family 26), AVX-512, 2026-11."""
    k, n = row[0], words(row)
    residue = n // 2
    butterfly = 18 + 1.35 * residue
    if n <= 58:
        product = 20 + 0.35 * residue * residue
    else:
        length = LENGTHS[bisect.bisect_left(LENGTHS, 4 * n)]
        product = 120 + 0.17 * length * (length.bit_length() + 2)
    return (1 << k) * (1.5 * k * butterfly + product + 2 * residue)


def choose(wanted):
    end = capacity(wanted['last'])
    best = {}
    for k in wanted['exponents']:
        for m in range(1, MOST + 1):
            row = (k, m)
            if m << k < 512 or (m << k) % 512 != 0:
                continue
            bits = capacity(row)
            if bits > end or words(row) > LONGEST:
                break
            if bits not in best or cost(row) < cost(best[bits]):
                best[bits] = row
    fixed = wanted['first'] + [wanted['last']]
    for row in fixed:
        best[capacity(row)] = row
    rows = [best[bits] for bits in sorted(best) if bits > capacity(wanted['first'][-1]) and best[bits] not in fixed]
    costs = [cost(row) for row in rows]

    # The rows that cost no more than `factor` times any larger one, at least `ratio` apart.
    def spaced(factor, ratio):
        affordable, least = [], cost(wanted['last'])
        for row, row_cost in zip(reversed(rows), reversed(costs)):
            if row_cost <= factor * least:
                affordable.append(row)
            least = min(least, row_cost)
        chosen = list(wanted['first'])
        for row in reversed(affordable):
            if capacity(row) >= ratio * capacity(chosen[-1]) and ratio * capacity(row) <= end:
                chosen.append(row)
        return chosen + [wanted['last']]

    factor = 1.0
    while len(spaced(factor, 1.0)) < wanted['rows']:
        factor += 1 / 32
    low, high = 1.0, 2.0
    while high - low > 1e-6:
        middle = (low + high) / 2
        if len(spaced(factor, middle)) >= wanted['rows']:
            low = middle
        else:
            high = middle
    chosen = spaced(factor, low)
    while len(chosen) > wanted['rows']:
        free = range(len(wanted['first']), len(chosen) - 1)
        del chosen[min(free, key=lambda i: (capacity(chosen[i + 1]) / capacity(chosen[i - 1]), i))]
    return chosen


def print_rows(name, count, rows):
    print(f'const std::array<HybridRow, {count}> {name} = {{{{')
    for i in range(0, len(rows), 8):
        print('    ' + ' '.join(f'{{{k}, {m}}},' for k, m in rows[i:i + 8]))
    print('}};')


def main():
    print('// Written by tools/make-hybrid-sizes.py: what a list may hold and how its rows are chosen stands there.')
    print('#include "multiply/hybrid_ntt/size_tables.h"\n')
    print('namespace qmp::hybrid_ntt {\n')
    print('// clang-format off')
    print_rows('standard_rows', 'standard_row_count', choose(STANDARD))
    print()
    print_rows('specialised_rows', 'specialised_row_count', choose(SPECIALISED))
    print('// clang-format on\n')
    print('}  // namespace qmp::hybrid_ntt')


main()
