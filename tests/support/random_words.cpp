#include "support/random_words.h"

#include <cstdlib>

namespace kelvara_test {
namespace {

std::uint64_t from_environment(const char* name, std::uint64_t otherwise) {
    const char* text = std::getenv(name);
    return text && *text ? std::strtoull(text, nullptr, 0) : otherwise;
}

// Alternating runs of zero and one bits of random length.
void fill_runs(Random& random, std::vector<qmp::Word>& words) {
    const std::uint64_t bits = words.size() * 64;
    std::uint64_t position = 0;
    bool one = true;
    while (position < bits) {
        std::uint64_t length = random.between(1, 150);
        for (; length > 0 && position < bits; --length, ++position) {
            if (one) words[position / 64] |= qmp::Word{1} << (position % 64);
        }
        one = !one;
    }
}

}  // namespace

std::uint64_t seed() {
    static const std::uint64_t value = from_environment("KELVARA_TEST_SEED", 20261120);
    return value;
}

std::uint64_t multiplier() {
    static const std::uint64_t value = from_environment("KELVARA_TEST_MULTIPLIER", 1);
    return value;
}

std::vector<qmp::Word> make_words(Random& random, std::uint64_t n, Pattern pattern) {
    std::vector<qmp::Word> words(n, 0);
    switch (pattern) {
        case Pattern::uniform:
            for (auto& w : words) w = random.next();
            break;
        case Pattern::runs:
            fill_runs(random, words);
            break;
        case Pattern::ones:
            for (auto& w : words) w = ~qmp::Word{0};
            break;
        case Pattern::zeros_then_one:
            break;
        case Pattern::sparse:
            for (auto& w : words) w = random.between(0, 7) == 0 ? random.next() : 0;
            break;
    }
    if (n > 0 && words.back() == 0) words.back() = 1;
    return words;
}

void fill_garbage(qmp::Word* words, std::uint64_t n) {
    for (std::uint64_t i = 0; i < n; ++i) words[i] = garbage;
}

}  // namespace kelvara_test
