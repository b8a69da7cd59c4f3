#include "numbers/carry_resolution.h"

#include <algorithm>

#include "console/console.h"
#include "multiply/basecase/word_kernels.h"

namespace qmp {
namespace {

constexpr Word all_ones = ~Word{0};

BlockState classify(const Word* words, std::uint64_t n) {
    const Word first = words[0];
    if (first != 0 && first != all_ones) return BlockState::mixed;
    for (std::uint64_t i = 1; i < n; ++i) {
        if (words[i] != first) return BlockState::mixed;
    }
    return first == 0 ? BlockState::zeros : BlockState::ones;
}

int resolve_sequentially(Word* words, std::uint64_t n, const BlockCut& cut, const std::int8_t* carries) {
    int running = 0;
    for (std::uint64_t i = 0; i < cut.count; ++i) {
        running = add_signed_carry(words + cut.begin(i), cut.end(i, n) - cut.begin(i), running + carries[i]);
    }
    return running;
}

// Turns each block's carry into the one that the blocks below send it. An all-ones block passes +1 on,
// an all-zero block -1, a mixed one neither: that is the carry out of the state byte plus the carry.
int pass_carries(const BlockCut& cut, std::int8_t* carries, const CarryStatus* status) {
    std::int8_t running = 0;
    for (std::uint64_t i = 0; i < cut.count; ++i) {
        const int sum = running + static_cast<int>(status[i].state);
        carries[i] = running;
        running = static_cast<std::int8_t>((sum >> 8) + status[i].carry);
    }
    return running;
}

void apply_pending(Word* words, std::uint64_t n, int carry, BlockState state) {
    if (state == BlockState::ones && carry == 1) {
        std::fill_n(words, n, Word{0});
    } else if (state == BlockState::zeros && carry == -1) {
        std::fill_n(words, n, all_ones);
    } else if (carry != 0) {
        add_signed_carry(words, n, carry);
    }
}

}  // namespace

CarryStatus bp_ksr_carry(int carry, Word* words, std::uint64_t n) {
    if (n == 0) console::fatal_error("bp_ksr_carry(): Length cannot be zero.");
    const int out = carry == 0 ? 0 : add_signed_carry(words, n, carry);
    return {classify(words, n), static_cast<std::int8_t>(out)};
}

int resolve_carries(ParallelContext parallel, Word* words, std::uint64_t n, const BlockCut& cut,
                    std::int8_t* carries, CarryStatus* status) {
    if (n < carry_resolution_threshold) return resolve_sequentially(words, n, cut, carries);

    parallel.run(0, cut.count, [&](std::uint64_t i) {
        status[i] = bp_ksr_carry(carries[i], words + cut.begin(i), cut.end(i, n) - cut.begin(i));
    });
    const int out = pass_carries(cut, carries, status);
    parallel.run(0, cut.count, [&](std::uint64_t i) {
        apply_pending(words + cut.begin(i), cut.end(i, n) - cut.begin(i), carries[i], status[i].state);
    });
    return out;
}

}  // namespace qmp
