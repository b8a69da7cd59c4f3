#include "support/words_reference.h"

#include <algorithm>

#include "support/random_words.h"

namespace kelvara_test {
namespace {

constexpr std::uint64_t guard_words = 16;

}  // namespace

std::vector<qmp::Word> reference_product(const std::vector<qmp::Word>& a, const std::vector<qmp::Word>& b) {
    std::vector<qmp::Word> result(a.size() + b.size(), 0);
    for (std::size_t j = 0; j < b.size(); ++j) {
        qmp::Word carry = 0;
        for (std::size_t i = 0; i < a.size(); ++i) {
            const qmp::DoubleWord t = static_cast<qmp::DoubleWord>(a[i]) * b[j] + result[i + j] + carry;
            result[i + j] = qmp::low_word(t);
            carry = qmp::high_word(t);
        }
        result[a.size() + j] = carry;
    }
    return result;
}

GuardedWords::GuardedWords(std::uint64_t n) : n_(n), storage_(n + guard_words + 8, garbage) {
    // A vector of garbage is aligned to 16 bytes at best.
    const auto address = reinterpret_cast<std::uintptr_t>(storage_.data());
    data_ = storage_.data() + ((64 - address % 64) % 64) / sizeof(qmp::Word);
}

bool GuardedWords::guards_intact() const {
    return std::all_of(data_ + n_, data_ + n_ + guard_words, [](qmp::Word w) { return w == garbage; });
}

}  // namespace kelvara_test
