// Plain arithmetic on whole numbers of words, written for clarity: what the number objects are compared with
// where there is no other library.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "multiply/word.h"
#include "numbers/big_float.h"

namespace kelvara_test {

using Words = std::vector<qmp::Word>;

inline void trim(Words& a) {
    while (!a.empty() && a.back() == 0) a.pop_back();
}

// a * 2^(64 words), words >= 0.
inline Words shifted(const Words& a, std::uint64_t words) {
    Words result(words, 0);
    result.insert(result.end(), a.begin(), a.end());
    trim(result);
    return result;
}

// floor(a / 2^(64 words)).
inline Words without_low(const Words& a, std::uint64_t words) {
    if (words >= a.size()) return {};
    return {a.begin() + static_cast<std::ptrdiff_t>(words), a.end()};
}

inline int compare(Words a, Words b) {
    trim(a);
    trim(b);
    if (a.size() != b.size()) return a.size() < b.size() ? -1 : 1;
    for (std::size_t i = a.size(); i-- > 0;) {
        if (a[i] != b[i]) return a[i] < b[i] ? -1 : 1;
    }
    return 0;
}

inline Words sum(const Words& a, const Words& b) {
    Words result;
    qmp::Word carry = 0;
    for (std::size_t i = 0; i < std::max(a.size(), b.size()) + 1; ++i) {
        qmp::DoubleWord s = carry;
        if (i < a.size()) s += a[i];
        if (i < b.size()) s += b[i];
        result.push_back(qmp::low_word(s));
        carry = qmp::high_word(s);
    }
    trim(result);
    return result;
}

// a - b for a >= b.
inline Words difference(const Words& a, const Words& b) {
    Words result;
    qmp::Word borrow = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const qmp::Word w = i < b.size() ? b[i] : 0;
        result.push_back(a[i] - w - borrow);
        borrow = a[i] < w || (a[i] == w && borrow) ? 1 : 0;
    }
    trim(result);
    return result;
}

inline Words product(const Words& a, const Words& b) {
    Words result(a.size() + b.size(), 0);
    for (std::size_t i = 0; i < a.size(); ++i) {
        qmp::Word carry = 0;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const qmp::DoubleWord s = static_cast<qmp::DoubleWord>(a[i]) * b[j] + result[i + j] + carry;
            result[i + j] = qmp::low_word(s);
            carry = qmp::high_word(s);
        }
        result[i + b.size()] = carry;
    }
    trim(result);
    return result;
}

// The magnitude of x above word position `bottom`, counted in units of that position; words below are
// dropped.
inline Words magnitude_from(qmp::BigFloatView x, std::int64_t bottom) {
    const Words words(x.T, x.T + x.L);
    if (x.exp >= bottom) return shifted(words, static_cast<std::uint64_t>(x.exp - bottom));
    return without_low(words, static_cast<std::uint64_t>(bottom - x.exp));
}

}  // namespace kelvara_test
