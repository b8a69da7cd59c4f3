#!/usr/bin/env python3
"""Finds the primes of the transforms and prints their tables.

    tools/find-transform-primes.py vst > src/multiply/vst/prime_table.cpp
    tools/find-transform-primes.py ntt64 > src/multiply/ntt64/prime_table.cpp

Vector transform: for every length multiplier m the nine largest primes below 2^50 that are 1 modulo
m * 2^e, with the exponents that the longest transforms of that multiplier need.

64-bit transform: for every number of primes and every multiplier the largest primes below 2^63 that are 1
modulo m * 2^e, e as large as their product allows: it must exceed 2 * m * 2^e * 2^(64 (primes - 1)).

Each prime comes with its least primitive root.
"""

import sys

MULTIPLIERS = (1, 3, 5, 7)

VST_LIMIT = 1 << 50
VST_PRIMES = 9
# multiplier: largest power of two whose roots of unity the set has
VST_EXPONENTS = {1: 41, 3: 40, 5: 39, 7: 38}

NTT64_LIMIT = 1 << 63
NTT64_SMALLEST = 1 << 62
NTT64_COUNTS = range(5, 10)

# These bases decide every number below 3.3 * 10^24.
WITNESSES = (2, 3, 5, 7, 11, 13, 17, 19, 23, 29, 31, 37, 41)


def is_prime(n):
    for q in WITNESSES:
        if n % q == 0:
            return n == q
    d, s = n - 1, 0
    while d % 2 == 0:
        d, s = d // 2, s + 1
    for a in WITNESSES:
        x = pow(a, d, n)
        if x in (1, n - 1):
            continue
        for _ in range(s - 1):
            x = x * x % n
            if x == n - 1:
                break
        else:
            return False
    return True


def prime_factors(n):
    factors, q = [], 2
    while q * q <= n:
        if n % q == 0:
            factors.append(q)
            while n % q == 0:
                n //= q
        q += 1
    return factors + ([n] if n > 1 else [])


def primitive_root(p, odd_part, power):
    factors = prime_factors(odd_part) + [2]
    g = 2
    while any(pow(g, (p - 1) // q, p) == 1 for q in factors):
        g += 1
    return g


def largest_primes(m, e, limit, smallest, count):
    step = m << e
    found = []
    k = (limit - 2) // step
    while len(found) < count and k * step + 1 > smallest:
        p = k * step + 1
        if is_prime(p):
            found.append((p, primitive_root(p, k * m, e)))
        k -= 1
    return found


def product(primes):
    result = 1
    for p, _ in primes:
        result *= p
    return result


def print_vst():
    print('// Written by tools/find-transform-primes.py.')
    print('#include "multiply/vst/prime_table.h"')
    print()
    print('namespace qmp::vst {')
    print()
    print('const PrimeTable prime_table = {{')
    for m, e in VST_EXPONENTS.items():
        print(f'    // 1 modulo {m} * 2^{e}')
        print('    {{')
        for p, g in largest_primes(m, e, VST_LIMIT, 0, VST_PRIMES):
            print(f'        {{{p:#x}, {g}}},')
        print('    }},')
    print('}};')
    print()
    print('}  // namespace qmp::vst')


def ntt64_set(m, count):
    e = 62
    while True:
        primes = largest_primes(m, e, NTT64_LIMIT, NTT64_SMALLEST, count)
        if len(primes) == count and product(primes) > (2 * m << e) << 64 * (count - 1):
            return e, primes
        e -= 1


def print_ntt64():
    print('// Written by tools/find-transform-primes.py.')
    print('#include "multiply/ntt64/prime_table.h"')
    print()
    print('namespace qmp::ntt64 {')
    print()
    print('const PrimeTable prime_table = {{')
    for count in NTT64_COUNTS:
        print('    {{')
        for m in MULTIPLIERS:
            e, primes = ntt64_set(m, count)
            print(f'        // {count} primes, 1 modulo {m} * 2^{e}')
            print(f'        {{{e},')
            print('         {{')
            for p, g in primes:
                print(f'             {{{p:#x}, {g}}},')
            print('         }}},')
        print('    }},')
    print('}};')
    print()
    print('}  // namespace qmp::ntt64')


def main():
    printers = {'vst': print_vst, 'ntt64': print_ntt64}
    if len(sys.argv) != 2 or sys.argv[1] not in printers:
        sys.exit('usage: find-transform-primes.py vst|ntt64')
    printers[sys.argv[1]]()


main()
