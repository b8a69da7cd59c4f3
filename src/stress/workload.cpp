#include "stress/workload.h"

#include "errors/exception.h"
#include "numbers/check_value.h"
#include "radix/hash.h"

namespace kelvara {
namespace {

using qmp::Word;

Word* at(std::byte* memory, std::uint64_t bytes) {
    return reinterpret_cast<Word*>(memory + bytes);
}

std::uint64_t hash_of(const Word* words, std::uint64_t n) {
    return qmp::hash_words(0, qmp::binary_word_radix, words, n);
}

}  // namespace

void fill_operand(Word* words, std::uint64_t n) {
    for (std::uint64_t i = 0; i < n; ++i) {
        const Word c = 0x282c8833b79 + i;
        words[i] = c * c * c * 0x282c82b9175 + 0x282c857661b;
    }
}

std::uint64_t hash_of_square(std::uint64_t h) {
    return qmp::check_mul(h, h);
}

StressWorkload::StressWorkload(const StressTest& test, const StressTestSize& size, std::byte* memory,
                               const qmp::TwiddleSet* twiddles)
    : test_(test),
      words_(size.operand_words()),
      operand_(at(memory, 0)),
      product_(at(memory, size.operand_bytes + size.scratch_bytes)),
      context_(qmp::ParallelContext::sequential(), twiddles, at(memory, size.operand_bytes),
               size.scratch_bytes / sizeof(Word)) {}

void StressWorkload::prepare() {
    fill_operand(operand_, words_);
    expected_ = hash_of_square(hash_of(operand_, words_));
}

bool StressWorkload::step() {
    try {
        test_.square(context_, product_, operand_, words_);
    } catch (const qmp::AlgorithmFailedException&) {
        return false;
    }
    return hash_of(product_, 2 * words_) == expected_;
}

}  // namespace kelvara
