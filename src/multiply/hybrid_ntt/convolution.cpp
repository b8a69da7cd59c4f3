#include "multiply/hybrid_ntt/convolution.h"

#include <algorithm>
#include <cstring>

#include "errors/fatal.h"
#include "multiply/basecase/basecase_algorithm.h"
#include "multiply/fft/fft_algorithm.h"

namespace qmp::hybrid_ntt {
namespace {

// Products of residues that the basecase makes faster than a floating-point convolution, in words of product.
constexpr std::uint64_t longest_basecase = 58;
constexpr std::uint64_t most_shares = 64;
constexpr std::uint64_t points_per_share = 128;

const Algorithm64& residue_algorithm(std::uint64_t words) {
    return words <= longest_basecase ? basecase::algorithm64() : fft::algorithm64();
}

std::uint64_t round_up(std::uint64_t words) {
    return (words + 7) / 8 * 8;
}

// One direction of the transform of one buffer.
template <bool Inverse>
class Walk {
  public:
    Walk(const Plan& plan, Word* residues) : plan_(plan), ring_(plan.ring), residues_(residues) {}

    void run(const MultiplyContext& context) const {
        const std::uint64_t tasks = std::min(context.tds, plan_.shares);
        // Passes over everything, until there are blocks for all tasks; the share of a task is its own.
        std::uint32_t top = 0;
        while (tasks > 1 && std::uint64_t{1} << top < 4 * tasks && top + 2 <= plan_.k()) top += 2;
        if constexpr (!Inverse) top_passes(context, tasks, top);
        const std::uint32_t j = plan_.k() - top;
        for_tasks(context, tasks, std::uint64_t{1} << top,
                  [&](std::uint64_t block, Word* spare) { whole_block(block << j, j, spare); });
        if constexpr (Inverse) top_passes(context, tasks, top);
    }

    // run(i, spare) for every i < count
    template <typename Run>
    void for_tasks(const MultiplyContext& context, std::uint64_t tasks, std::uint64_t count, Run run) const {
        const BlockCut cut = BlockCut::of(count, tasks, 1);
        const auto run_task = [&](std::uint64_t task) {
            Word* spare = context.scratch + task * plan_.share_words;
            for (std::uint64_t i = cut.begin(task); i < cut.end(task, count); ++i) run(i, spare);
        };
        if (cut.count == 1) {
            run_task(0);
        } else {
            context.run(0, cut.count, run_task);
        }
    }

  private:
    Word* at(std::uint64_t i) const { return residues_ + i * ring_.residue_words(); }

    void top_passes(const MultiplyContext& context, std::uint64_t tasks, std::uint32_t top) const {
        for (std::uint32_t step = 0; step < top; step += 2) {
            const std::uint32_t depth = Inverse ? top - 2 - step : step;
            const std::uint32_t j = plan_.k() - depth;
            const std::uint64_t columns = std::uint64_t{1} << (j - 2);
            for_tasks(context, tasks, columns << depth, [&](std::uint64_t i, Word* spare) {
                quarter(i / columns << j, j, i % columns, spare);
            });
        }
    }

    // Depth first, so that the parts of a block stay in the nearest cache that holds them.
    void whole_block(std::uint64_t first, std::uint32_t j, Word* spare) const {
        if (j == 0) return;
        const std::uint32_t parts = j == 1 ? 1 : 2;
        const auto pass = [&] {
            for (std::uint64_t i = 0; i < std::uint64_t{1} << (j - parts); ++i) {
                if (parts == 1) {
                    butterfly(first, j, i, spare);
                } else {
                    quarter(first, j, i, spare);
                }
            }
        };
        if constexpr (!Inverse) pass();
        for (std::uint64_t i = 0; i < std::uint64_t{1} << parts; ++i) {
            whole_block(first + (i << (j - parts)), j - parts, spare);
        }
        if constexpr (Inverse) pass();
    }

    // Two depths at the places i, i + 1/4, i + 1/2 and i + 3/4 of a block of 2^j.
    void quarter(std::uint64_t first, std::uint32_t j, std::uint64_t i, Word* spare) const {
        const std::uint64_t q = std::uint64_t{1} << (j - 2);
        if constexpr (!Inverse) {
            butterfly(first, j, i, spare);
            butterfly(first, j, i + q, spare);
        }
        butterfly(first, j - 1, i, spare);
        butterfly(first + 2 * q, j - 1, i, spare);
        if constexpr (Inverse) {
            butterfly(first, j, i, spare);
            butterfly(first, j, i + q, spare);
        }
    }

    // Place i of the halves of the block [first, first + 2^j): the root is the one of order 2^j to the i.
    void butterfly(std::uint64_t first, std::uint32_t j, std::uint64_t i, Word* spare) const {
        Word* const a = at(first + i);
        Word* const b = at(first + i + (std::uint64_t{1} << (j - 1)));
        const std::uint64_t exponent = (std::uint64_t{plan_.params.m} << (plan_.k() - j)) * i;
        Word* const difference = spare;
        Word* const other = spare + ring_.residue_words();
        if constexpr (Inverse) {
            const std::uint64_t circle = 4 * ring_.bits();
            ring_.multiply_by_root(difference, b, i == 0 ? 0 : circle - exponent, other);
            ring_.sub(b, a, difference);
            ring_.add(a, a, difference);
        } else {
            ring_.sub(difference, a, b);
            ring_.add(a, a, b);
            ring_.multiply_by_root(b, difference, exponent, other);
        }
    }

    const Plan& plan_;
    const Ring& ring_;
    Word* residues_;
};

// a = a * b / 2^k
void multiply_residues(const MultiplyContext& context, const Plan& plan, Word* a, const Word* b,
                       Word* spare) {
    const Ring& ring = plan.ring;
    const std::uint64_t w = ring.words();
    Word* const product = spare;
    Word* const residue = spare + 2 * w;
    if (a[w] != 0 || b[w] != 0) {
        // One of them is -1.
        const Word* const other = a[w] != 0 ? b : a;
        std::memcpy(residue, other, ring.residue_words() * sizeof(Word));
        ring.negate(residue);
    } else {
        Word* const scratch = spare + round_up(2 * w + ring.residue_words());
        const MultiplyContext own(ParallelContext::sequential(), context.twiddles, scratch,
                                  plan.product_words);
        residue_algorithm(2 * w).multiply(own, product, a, w, b, w);
        ring.reduce(residue, product);
    }
    ring.shift_left(a, residue, 2 * ring.bits() - plan.k());
}

// sum[0 .. n) += the words [from, from + n) of x 2^(half ? 32 : 0), x of `count` words with zeros around.
// Returns the carry.
bool add_placed(Word* sum, std::uint64_t n, const Word* x, std::int64_t count, std::int64_t from, bool half) {
    bool carry = false;
    std::uint64_t i = 0;
    for (; i < n && from < count + (half ? 1 : 0); ++i, ++from) {
        const Word word = from < count ? x[from] : 0;
        const Word below = from > 0 ? x[from - 1] : 0;
        const DoubleWord total = DoubleWord{sum[i]} + (half ? word << 32 | below >> 32 : word) + carry;
        sum[i] = low_word(total);
        carry = high_word(total) != 0;
    }
    for (; carry && i < n; ++i) carry = ++sum[i] == 0;
    return carry;
}

}  // namespace

Plan::Plan(const HybridParams& size)
    : params(size), ring(size.n / 2), shares(1), product_words(0), share_words(0) {
    if (size.n < 4 || size.n % 4 != 0 || size.k < 2 || std::uint64_t{size.m} << size.k != 128 * size.n) {
        invalid_function_parameters("qmp::hybrid_ntt::Plan::Plan()");
    }
    while (shares < most_shares && 2 * shares * points_per_share <= size.points()) shares *= 2;
    product_words = (residue_algorithm(size.n).psize(size.n, 1) + 7) / 8;
    // Two residues for the transforms, or a product, its residue and the scratch of the product.
    share_words = round_up(round_up(size.n + ring.residue_words()) + product_words);
}

std::uint64_t Plan::scratch_words() const {
    return std::max(shares * share_words, params.capacity_bits / 64 + shares);
}

void forward_transform(const MultiplyContext& context, const Plan& plan, Word* residues, const void* bytes,
                       std::uint64_t count) {
    const Walk<false> walk(plan, residues);
    const std::uint64_t width = 4 * plan.params.point_words;
    const auto* source = static_cast<const unsigned char*>(bytes);
    walk.for_tasks(context, std::min(context.tds, plan.shares), plan.params.points(),
                   [&](std::uint64_t i, Word*) {
                       Word* const residue = residues + i * plan.ring.residue_words();
                       std::fill(residue, residue + plan.ring.residue_words(), 0);
                       const std::uint64_t at = i * width;
                       if (at < count) std::memcpy(residue, source + at, std::min(width, count - at));
                   });
    walk.run(context);
}

void multiply_and_inverse(const MultiplyContext& context, const Plan& plan, Word* a, const Word* b) {
    const Walk<true> walk(plan, a);
    const std::uint64_t stride = plan.ring.residue_words();
    walk.for_tasks(context, std::min(context.tds, plan.shares), plan.params.points(),
                   [&](std::uint64_t i, Word* spare) {
                       multiply_residues(context, plan, a + i * stride, b + i * stride, spare);
                   });
    walk.run(context);
}

std::uint64_t recombine(const MultiplyContext& context, const Plan& plan, const Word* residues) {
    const std::uint64_t count = plan.params.capacity_bits / 64;
    const std::uint64_t range_words = count / plan.shares;
    const std::uint64_t range_points = plan.params.points() / plan.shares;
    const std::uint64_t w = plan.ring.words();
    Word* const product = context.scratch;
    Word* const carries = context.scratch + count;
    const auto sum_range = [&](std::uint64_t range) {
        Word* const sum = product + range * range_words;
        std::fill(sum, sum + range_words, 0);
        // Every coefficient reaches into the places of the two points above its own, but not beyond them.
        Word carry = 0;
        for (std::int64_t i = -2; i < static_cast<std::int64_t>(range_points); ++i) {
            const std::uint64_t point =
                (range * range_points + static_cast<std::uint64_t>(i)) % plan.params.points();
            const std::int64_t half_words = i * static_cast<std::int64_t>(plan.params.point_words);
            const bool half = half_words % 2 != 0;
            const std::int64_t word = (half_words - (half ? 1 : 0)) / 2;
            const Word* const x = residues + point * plan.ring.residue_words();
            const std::uint64_t begin = word < 0 ? 0 : static_cast<std::uint64_t>(word);
            carry += add_placed(sum + begin, range_words - begin, x, static_cast<std::int64_t>(w),
                                word < 0 ? -word : 0, half);
        }
        carries[range] = carry;
    };
    const BlockCut cut = BlockCut::of(plan.shares, context.tds, 1);
    const auto sum_ranges = [&](std::uint64_t task) {
        for (std::uint64_t i = cut.begin(task); i < cut.end(task, plan.shares); ++i) sum_range(i);
    };
    if (cut.count == 1) {
        sum_ranges(0);
    } else {
        context.run(0, cut.count, sum_ranges);
    }

    for (std::uint64_t range = 0; range < plan.shares; ++range) {
        std::uint64_t at = (range + 1) % plan.shares * range_words;
        for (Word carry = carries[range]; carry != 0; at = at + 1 == count ? 0 : at + 1) {
            product[at] += carry;
            carry = product[at] < carry ? 1 : 0;
        }
    }
    Word largest = 0;
    for (std::uint64_t i = 0; i < plan.params.points(); ++i) {
        const Word* const top = residues + i * plan.ring.residue_words() + w - 1;
        largest = std::max(largest, top[1] != 0 ? ~Word{0} : top[0]);
    }
    return largest;
}

}  // namespace qmp::hybrid_ntt
