#include "radix/hash.h"

#include <array>

namespace qmp {
namespace {

constexpr std::uint64_t most_blocks = 64;
// A product and its reduction depend on the ones before; four interleaved sums keep the multiplier busy.
constexpr std::uint64_t lanes = 4;

// h R^n + the hash of the words.
std::uint64_t horner(std::uint64_t h, std::uint64_t radix, const Word* words, std::uint64_t n) {
    while (n > 0) h = check_add(check_mul(h, radix), check_reduce(words[--n]));
    return h;
}

// As horner() with h = 0; n is a multiple of `lanes`. Lane k sums the words k, k + lanes, ...
std::uint64_t interleaved(std::uint64_t radix, const Word* words, std::uint64_t n) {
    const std::uint64_t square = check_mul(radix, radix);
    const std::uint64_t step = check_mul(square, square);
    std::array<std::uint64_t, lanes> h{};
    while (n > 0) {
        n -= lanes;
        // h step < 2^122, so the sum with a word stays below 2^123.
        for (std::uint64_t k = 0; k < lanes; ++k) {
            h[k] = check_reduce(static_cast<DoubleWord>(h[k]) * step + words[n + k]);
        }
    }
    return horner(0, radix, h.data(), lanes);
}

}  // namespace

std::uint64_t hash_words(std::uint64_t h0, std::uint64_t radix, const Word* words, std::uint64_t n) {
    const std::uint64_t r = check_reduce(Word{radix});
    const std::uint64_t even = n - n % lanes;
    const std::uint64_t h = horner(check_reduce(Word{h0}), r, words + even, n - even);
    return check_add(check_mul(h, pow_mod(r, even)), interleaved(r, words, even));
}

std::uint64_t hash_words(ParallelContext parallel, std::uint64_t h0, std::uint64_t radix, const Word* words,
                         std::uint64_t n) {
    if (n < parallel_hash_threshold || parallel.tds <= 1) return hash_words(h0, radix, words, n);
    const std::uint64_t tasks = parallel.tds < most_blocks ? parallel.tds : most_blocks;
    const BlockCut cut = BlockCut::of(n, tasks, parallel_hash_threshold);
    std::array<std::uint64_t, most_blocks> hashes;
    parallel.run(0, cut.count, [&](std::uint64_t i) {
        const std::uint64_t begin = cut.begin(i);
        hashes[i] = hash_words(0, radix, words + begin, cut.end(i, n) - begin);
    });
    const std::uint64_t block_weight = pow_mod(check_reduce(Word{radix}), cut.block);
    const std::uint64_t top_words = n - cut.begin(cut.count - 1);
    std::uint64_t h = check_mul(check_reduce(Word{h0}), pow_mod(check_reduce(Word{radix}), top_words));
    h = check_add(h, hashes[cut.count - 1]);
    for (std::uint64_t i = cut.count - 1; i-- > 0;) h = check_add(check_mul(h, block_weight), hashes[i]);
    return h;
}

std::uint64_t hash_digits(std::uint64_t h0, std::string_view digits) {
    // Eighteen digits at a time: with values up to 15 (hexadecimal digits) their sum is below 2^61.
    constexpr std::uint64_t group = 18;
    std::uint64_t h = check_reduce(Word{h0});
    for (std::size_t i = 0; i < digits.size(); i += group) {
        std::uint64_t value = 0;
        std::uint64_t weight = 1;
        for (const char c : digits.substr(i, group)) {
            value = value * 10 + static_cast<std::uint64_t>(c <= '9' ? c - '0' : c - 'a' + 10);
            weight *= 10;
        }
        h = check_add(check_mul(h, weight), check_reduce(Word{value}));
    }
    return h;
}

}  // namespace qmp
