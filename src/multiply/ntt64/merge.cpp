#include "multiply/ntt64/merge.h"

#include <algorithm>
#include <bit>

#include "multiply/basecase/word_kernels.h"
#include "multiply/coefficient_check.h"
#include "multiply/ntt64/crt_constants.h"

namespace qmp::ntt64 {
namespace {

constexpr std::uint64_t most_tasks = 256;
constexpr std::uint64_t tail_words = 6;
constexpr std::uint64_t groups_ahead = 4;
constexpr std::uint64_t groups_per_task = 1024;

// What a block of points leaves: the words above its own, in two's complement, and its largest coefficient.
struct BlockEnd {
    Word tail[tail_words];
    Word found;
};
static_assert(sizeof(BlockEnd) * most_tasks <= merge_scratch_words * sizeof(Word));

// The coefficients of a size of P primes, in two's complement of P words, and the running sum of points of
// 32 (P - 1) bits.
template <int P>
class Merger {
  public:
    Merger(const Plan& plan, const CrtConstants& constants, const std::uint64_t* residues)
        : matrix_(plan.matrix), points_(plan.points), constants_(constants), residues_(residues) {}

    // Groups [begin, end) of eight points.
    void run(std::uint64_t begin, std::uint64_t end, Word* product, BlockEnd& block_end) {
        Word sum[sum_words] = {};
        Word found = 0;
        product += begin * words_per_pair * lanes / 2;
        for (std::uint64_t group = begin; group < end; ++group) {
            const std::uint64_t* residues = residues_ + place(group);
            prefetch(std::min(group + groups_ahead, end - 1));
            std::uint64_t scaled[P][lanes];
            scale(scaled, residues);
            for (std::uint64_t l = 0; l < lanes; l += 2, product += words_per_pair) {
                Word even[P], odd[P];
                recover(even, scaled, l, found);
                recover(odd, scaled, l + 1, found);
                add_pair(sum, even, odd);
                shift_out(sum, product);
            }
        }
        std::copy(sum, sum + carried_words, block_end.tail);
        const Word sign = sign_of(sum[carried_words - 1]);
        std::fill(block_end.tail + carried_words, block_end.tail + tail_words, sign);
        block_end.found = found;
    }

  private:
    static constexpr int words_per_pair = P - 1;
    // The second of two points with its sign; what is left of a pair's sum above the pair.
    static constexpr int sum_words = P + P / 2;
    static constexpr int carried_words = sum_words - words_per_pair;
    static_assert(carried_words <= static_cast<int>(tail_words));

    static Word sign_of(Word top) { return static_cast<Word>(static_cast<std::int64_t>(top) >> 63); }

    std::uint64_t place(std::uint64_t group) const {
        const std::uint64_t groups_per_row = matrix_.columns / lanes;
        const std::uint64_t row = group / groups_per_row, square = group % groups_per_row;
        return row / lanes * lanes * matrix_.columns + square * lanes * lanes + row % lanes * lanes;
    }

    // The residues of a row are 512 bytes apart, in as many places as there are primes.
    void prefetch(std::uint64_t group) const {
        const std::uint64_t* residues = residues_ + place(group);
        for (int i = 0; i < P; ++i, residues += points_) __builtin_prefetch(residues);
    }

    void scale(std::uint64_t (&scaled)[P][lanes], const std::uint64_t* residues) const {
        for (int i = 0; i < P; ++i, residues += points_) {
            const Twiddle factor = constants_.factors[i];
            const std::uint64_t p = constants_.primes[i];
            for (std::uint64_t l = 0; l < lanes; ++l) {
                const Word q = high_word(static_cast<DoubleWord>(residues[l]) * factor.quotient);
                const Word product = residues[l] * factor.value - q * p;
                scaled[i][l] = std::min(product, product - p);
            }
        }
    }

    // The coefficient of point l. It is below half of M, and less than P primes of 63 bits: the sum before
    // the reduction fits into P words.
    void recover(Word* coefficient, const std::uint64_t (&scaled)[P][lanes], std::uint64_t l,
                 Word& found) const {
        // Word by word of the sum, so that the carries of a word's products meet in two registers.
        DoubleWord carried = 0;
        for (int i = 0; i < P - 1; ++i) {
            DoubleWord low = low_word(carried);
            DoubleWord high = high_word(carried);
#pragma GCC unroll 9
            for (int k = 0; k < P; ++k) {
                const DoubleWord t = static_cast<DoubleWord>(constants_.cofactors[k][i]) * scaled[k][l];
                low += low_word(t);
                high += high_word(t);
            }
            coefficient[i] = low_word(low);
            carried = high + high_word(low);
        }
        coefficient[P - 1] = low_word(carried);
        const auto top = static_cast<double>(coefficient[P - 1]);
        const auto multiple = static_cast<Word>(top * constants_.inverse_top + 0.5);
        Word borrow = 0;
        for (int i = 0; i < P; ++i) {
            const DoubleWord t = static_cast<DoubleWord>(constants_.product[i]) * multiple + borrow;
            borrow = high_word(t) + (coefficient[i] < low_word(t));
            coefficient[i] -= low_word(t);
        }
        found = std::max(found, magnitude(coefficient[P - 1]));
    }
    // A cyclic product has no negative coefficient: one makes a top word that no bound allows.
    Word magnitude(Word top) const {
        return matrix_.negacyclic ? top ^ sign_of(top) : top;
    }

    static void add_pair(Word* sum, const Word* even, const Word* odd) {
        add_at<0>(sum, even);
        if constexpr (P % 2 != 0) {
            add_at<(P - 1) / 2>(sum, odd);
        } else {
            Word shifted[P + 1];
            shifted[0] = odd[0] << 32;
            for (int i = 1; i < P; ++i) shifted[i] = odd[i] << 32 | odd[i - 1] >> 32;
            shifted[P] = static_cast<Word>(static_cast<std::int64_t>(odd[P - 1]) >> 32);
            add_at<(P - 2) / 2, P + 1>(sum, shifted);
        }
    }
    // sum += the coefficient's words at word At, its sign above them.
    template <int At, int Length = P>
    static void add_at(Word* sum, const Word* words) {
        static_assert(At + Length <= sum_words);
        const Word sign = sign_of(words[Length - 1]);
        Word carry = 0;
        for (int i = At; i < sum_words; ++i) {
            const DoubleWord t =
                static_cast<DoubleWord>(sum[i]) + (i - At < Length ? words[i - At] : sign) + carry;
            sum[i] = low_word(t);
            carry = high_word(t);
        }
    }
    static void shift_out(Word* sum, Word* product) {
        for (int i = 0; i < words_per_pair; ++i) product[i] = sum[i];
        const Word sign = sign_of(sum[sum_words - 1]);
        for (int i = 0; i < sum_words; ++i) sum[i] = i < carried_words ? sum[i + words_per_pair] : sign;
    }

    const Matrix& matrix_;
    const std::uint64_t points_;
    const CrtConstants& constants_;
    const std::uint64_t* residues_;
};

template <int P>
void merge_blocks(ParallelContext parallel, const BlockCut& cut, const Plan& plan, Word* product,
                  const std::uint64_t* residues, BlockEnd* ends) {
    const CrtConstants constants = form_crt_constants(plan);
    parallel.run(0, cut.count, [&](std::uint64_t task) {
        Merger<P>(plan, constants, residues)
            .run(cut.begin(task), cut.end(task, plan.points / lanes), product, ends[task]);
    });
}

// Adds a tail at words[0 .. n); returns the carry out of the top, -1, 0 or 1.
int add_tail(Word* words, std::uint64_t n, const Word* tail) {
    const bool negative = tail[tail_words - 1] >> 63;
    const int carry = add_words(words, words, tail, tail_words);
    return add_signed_carry(words + tail_words, n - tail_words, carry - negative);
}

void negate(Word* tail) {
    for (std::uint64_t i = 0; i < tail_words; ++i) tail[i] = ~tail[i];
    add_carry(tail, tail_words, true);
}

// Settles what is above the top of n words, `carry` * R^n, modulo R^n - 1.
void wrap_cyclic(Word* words, std::uint64_t n, int carry) {
    while (carry != 0) {
        const int unit = carry > 0 ? 1 : -1;
        carry += add_signed_carry(words, n, unit) - unit;
    }
}

// Modulo R^n + 1, where a carry comes off at the bottom. True when R^n is left.
bool wrap_negacyclic(Word* words, std::uint64_t n, int carry) {
    while (carry != 0) {
        const int unit = carry > 0 ? 1 : -1;
        const int out = add_signed_carry(words, n, -unit);
        carry -= unit;
        if (carry != 0 || out == 0) {
            carry += out;
            continue;
        }
        // 0 + R^n, or R^n - 1 - R^n.
        std::fill(words, words + n, 0);
        return true;
    }
    return false;
}

}  // namespace

bool merge_coefficients(ParallelContext parallel, const Plan& plan, const char* function, Word* product,
                        const std::uint64_t* residues, Word* scratch) {
    static constexpr decltype(&merge_blocks<5>) by_primes[] = {
        merge_blocks<5>, merge_blocks<6>, merge_blocks<7>, merge_blocks<8>, merge_blocks<9>};
    auto* ends = reinterpret_cast<BlockEnd*>(scratch);
    const std::uint64_t groups = plan.points / lanes, n = plan.size.capacity_bits / 64;
    const BlockCut cut = BlockCut::of(groups, std::min(parallel.tds, most_tasks), groups_per_task);
    by_primes[plan.size.primes - fewest_primes](parallel, cut, plan, product, residues, ends);

    Word found = 0;
    for (std::uint64_t i = 0; i < cut.count; ++i) found = std::max(found, ends[i].found);
    // A coefficient is less than points * 2^(64 (primes - 1)).
    const int multiplier_bits = std::bit_width(plan.size.multiplier - 1);
    check_coefficients(
        function, std::uint64_t{1} << (plan.size.exponent + static_cast<unsigned>(multiplier_bits)), found);

    const std::uint64_t words_per_group = n / groups;
    int carry = 0;
    for (std::uint64_t i = 0; i + 1 < cut.count; ++i) {
        const std::uint64_t at = cut.begin(i + 1) * words_per_group;
        carry += add_tail(product + at, n - at, ends[i].tail);
    }
    Word* last = ends[cut.count - 1].tail;
    if (plan.matrix.negacyclic) {
        negate(last);
        carry += add_tail(product, n, last);
        return wrap_negacyclic(product, n, carry);
    }
    carry += add_tail(product, n, last);
    wrap_cyclic(product, n, carry);
    return false;
}

}  // namespace qmp::ntt64
