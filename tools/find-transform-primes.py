#!/usr/bin/env python3
"""Finds the primes of the vector transform and prints src/multiply/vst/prime_table.cpp.

For every length multiplier m: the nine largest primes below 2^50 that are 1 modulo m * 2^e, with the
exponents that the longest transforms of that multiplier need, and the least primitive root of each.

    tools/find-transform-primes.py > src/multiply/vst/prime_table.cpp
"""

LIMIT = 1 << 50
PRIMES_PER_SET = 9
# multiplier: largest power of two whose roots of unity the set has
EXPONENTS = {1: 41, 3: 40, 5: 39, 7: 38}

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


def main():
    print('// Written by tools/find-transform-primes.py.')
    print('#include "multiply/vst/prime_table.h"')
    print()
    print('namespace qmp::vst {')
    print()
    print('const PrimeTable prime_table = {{')
    for m, e in EXPONENTS.items():
        step = m << e
        found = []
        k = (LIMIT - 2) // step
        while len(found) < PRIMES_PER_SET:
            p = k * step + 1
            if is_prime(p):
                found.append((p, primitive_root(p, k * m, e)))
            k -= 1
        print(f'    // 1 modulo {m} * 2^{e}')
        print('    {{')
        for p, g in found:
            print(f'        {{{p:#x}, {g}}},')
        print('    }},')
    print('}};')
    print()
    print('}  // namespace qmp::vst')


main()
