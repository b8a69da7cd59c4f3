#include "multiply/fft/transform.h"

#include <bit>

#include "errors/fatal.h"

namespace qmp::fft {
namespace {

// Shorter pieces of a pass take less time than waking the thread that would do them.
constexpr std::uint64_t points_per_task = std::uint64_t{1} << 17;
// Complex numbers in blocks that are taken pass by pass (64 KB). Larger blocks leave the nearest caches,
// smaller ones share their twiddle factors less.
constexpr std::uint64_t cached_length = 4096;
constexpr std::uint64_t points_per_group = 16;
constexpr std::uint64_t points_per_block = 64;
constexpr std::uint32_t shortest_exponent = 4;

// A cut of `count` items of `points` points each, in multiples of `granularity` items.
BlockCut cut_items(ParallelContext parallel, std::uint64_t count, std::uint64_t points,
                   std::uint64_t granularity) {
    const std::uint64_t smallest = points_per_task / points > 1 ? points_per_task / points : 1;
    const BlockCut even = BlockCut::of(count, parallel.tds, smallest);
    const std::uint64_t block = (even.block + granularity - 1) / granularity * granularity;
    return {block, (count + block - 1) / block};
}

template <typename Range>
void for_ranges(ParallelContext parallel, std::uint64_t count, std::uint64_t points,
                std::uint64_t granularity, Range range) {
    if (parallel.tds > 1 && count * points >= 2 * points_per_task) {
        const BlockCut cut = cut_items(parallel, count, points, granularity);
        parallel.run(0, cut.count, [&](std::uint64_t i) { range(cut.begin(i), cut.end(i, count)); });
    } else {
        range(std::uint64_t{0}, count);
    }
}

// The walk over the passes, in one direction. Lengths are r * 2^c complex numbers.
template <bool Inverse>
class Walk {
  public:
    explicit Walk(const Plan& plan)
        : kernels_(*plan.level->kernels),
          table_(*plan.table),
          r_(plan.params.r),
          roots_(plan.level->base_roots[plan.params.r / 2]) {}

    void run(ParallelContext parallel, double* data, int c) const {
        if (length(c) <= cached_length) {
            run_cached(data, c);
            return;
        }
        const int bits = cut_bits(c);
        if constexpr (!Inverse) top_pass(parallel, data, c, bits);
        const std::uint64_t parts = std::uint64_t{1} << bits;
        const std::uint64_t part_doubles = 2 * length(c - bits);
        const BlockCut cut = cut_items(parallel, parts, part_doubles, 1);
        if (cut.count <= 1) {
            for (std::uint64_t i = 0; i < parts; ++i) run(parallel, data + i * part_doubles, c - bits);
        } else {
            const ParallelContext inner = parallel.with_tasks((parallel.tds + cut.count - 1) / cut.count);
            parallel.run(0, cut.count, [&](std::uint64_t task) {
                for (std::uint64_t i = cut.begin(task); i < cut.end(task, parts); ++i) {
                    run(inner, data + i * part_doubles, c - bits);
                }
            });
        }
        if constexpr (Inverse) top_pass(parallel, data, c, bits);
    }

  private:
    std::uint64_t length(int c) const { return std::uint64_t{r_} << c; }

    // How far the next pass cuts blocks of r * 2^c: quarters, or eighths where those come out even.
    int cut_bits(int c) const {
        const int left = c - kernels_.log_lanes;
        if (kernels_.wide_passes) return left % 3 == 0 ? 3 : 2;
        return left == 3 ? 3 : 2;
    }

    void pass(double* data, int c, int bits, std::uint64_t blocks, std::uint64_t begin,
              std::uint64_t end) const {
        // The level of this length; the level below it is that of half the length.
        const std::uint32_t j = static_cast<std::uint32_t>(c) + 2;
        if (bits == 3) {
            (Inverse ? kernels_.inverse8 : kernels_.forward8)(data, length(c), blocks, table_.level(j),
                                                              table_.level(j - 1), begin, end);
        } else {
            (Inverse ? kernels_.inverse4 : kernels_.forward4)(data, length(c), blocks, table_.level(j), begin,
                                                              end);
        }
    }

    void top_pass(ParallelContext parallel, double* data, int c, int bits) const {
        const std::uint64_t positions = length(c) >> bits;
        for_ranges(parallel, positions, std::uint64_t{2} << bits,
                   static_cast<std::uint64_t>(kernels_.lanes()),
                   [&](std::uint64_t begin, std::uint64_t end) { pass(data, c, bits, 1, begin, end); });
    }

    // A block in cache: pass by pass over all of it.
    void run_cached(double* data, int c) const {
        if constexpr (Inverse) base(data, c);
        run_passes(data, c, 1);
        if constexpr (!Inverse) base(data, c);
    }

    void run_passes(double* data, int c, std::uint64_t blocks) const {
        if (c == kernels_.log_lanes) return;
        const int bits = cut_bits(c);
        if constexpr (!Inverse) pass(data, c, bits, blocks, 0, length(c) >> bits);
        run_passes(data, c - bits, blocks << bits);
        if constexpr (Inverse) pass(data, c, bits, blocks, 0, length(c) >> bits);
    }

    void base(double* data, int c) const {
        const std::uint64_t rows = std::uint64_t{1} << (c - 2 * kernels_.log_lanes);
        (Inverse ? kernels_.inverse_base : kernels_.forward_base)[r_ / 2](data, roots_, 0, rows);
    }

    const Kernels& kernels_;
    const TwiddleTable& table_;
    std::uint32_t r_;
    const double* roots_;
};

// log2 of the complex length's power of two.
int complex_exponent(const Plan& plan) {
    return static_cast<int>(plan.params.k) - 1;
}

// The points beyond the last whole block: 16-bit points of lengths below 64, in no table but in the
// kernels' range. Two lanes then (level_for). The carry is at most 2^51, like every coefficient.
void merge_rest(std::uint64_t* words, std::uint64_t* carry, const double* data, std::uint64_t points,
                double scale, double offset) {
    std::uint64_t sum = 0;
    for (std::uint64_t i = 0; i < points; ++i) {
        const double value = data[i / 4 * 4 + i % 4 / 2 + i % 2 * 2] * scale + offset;
        sum += std::bit_cast<std::uint64_t>(value) & ((std::uint64_t{1} << 51) - 1);
        if (i % 4 == 0) words[i / 4] = 0;
        words[i / 4] |= (sum & 0xffff) << (i % 4 * 16);
        sum >>= 16;
    }
    *carry = sum;
}

// Adds to words[at ..), going round at the end. The carry ends where it meets a word that is not all ones,
// and at the latest after one round: then everything was all ones, and the addition has made it one.
void add_cyclic(std::uint64_t* words, std::uint64_t count, std::uint64_t at, std::uint64_t value) {
    while (value != 0) {
        words[at] += value;
        value = words[at] < value ? 1 : 0;
        at = at + 1 == count ? 0 : at + 1;
    }
}

}  // namespace

Plan::Plan(const FftParams& fft_params, const TwiddleTable& twiddles)
    : level(&level_for(fft_params.k)), table(&twiddles), params(fft_params) {
    const std::uint64_t block = kernel_block(params.b);
    const bool known_multiplier = params.r == 1 || params.r == 3 || params.r == 5 || params.r == 7;
    if (params.k < shortest_exponent || !known_multiplier || block == 0 || params.points % block != 0 ||
        table->multiplier() != params.r || table->exponent() < params.k ||
        !pairs_fit(params.b, params.points)) {
        invalid_function_parameters("qmp::fft::Plan::Plan()");
    }
}

void split_points(ParallelContext parallel, const Plan& plan, double* data, const void* bytes,
                  std::uint64_t count) {
    const Split split = plan.level->kernels->split[plan.params.b - smallest_width];
    for_ranges(parallel, plan.params.points / points_per_group, points_per_group, 1,
               [&](std::uint64_t begin, std::uint64_t end) {
                   split(data, static_cast<const unsigned char*>(bytes), count, begin, end);
               });
}

void forward_transform(ParallelContext parallel, const Plan& plan, double* data) {
    Walk<false>(plan).run(parallel, data, complex_exponent(plan));
}

void inverse_transform(ParallelContext parallel, const Plan& plan, double* data) {
    Walk<true>(plan).run(parallel, data, complex_exponent(plan));
}

void pointwise_product(ParallelContext parallel, const Plan& plan, double* a, const double* b) {
    const Kernels& kernels = *plan.level->kernels;
    const std::uint32_t index = plan.params.r / 2;
    const Pointwise product = (a == b ? kernels.square : kernels.multiply)[index];
    const int log_rows = complex_exponent(plan) - 2 * kernels.log_lanes;
    const std::uint64_t pairs = log_rows == 0 ? 1 : std::uint64_t{1} << (log_rows - 1);
    const double* level = plan.table->level(plan.params.k + 1);
    for_ranges(parallel, pairs, plan.params.points / pairs, 1, [&](std::uint64_t begin, std::uint64_t end) {
        product(a, b, plan.level->base_turns[index], level, log_rows, begin, end);
    });
}

double coefficient_shift(const Plan& plan, const double* a, const double* b) {
    // With half = 2^(b-1) and points x = x' + half, y = y' + half, every coefficient of the cyclic product
    // of x and y is that of x' and y' plus half * (sum x' + sum y') + N * half^2. The sums are frequency 0
    // of the transforms (even points in the real part, odd ones in the imaginary part); only additions of
    // integers below 2^53 lead there, so they are exact.
    const int lanes = plan.level->kernels->lanes();
    const double half = static_cast<double>(std::uint64_t{1} << (plan.params.b - 1));
    const double sums = (a[0] + a[lanes]) + (b[0] + b[lanes]);
    return half * (sums + static_cast<double>(plan.params.points) * half);
}

void merge_points(ParallelContext parallel, const Plan& plan, std::uint64_t* words, std::uint64_t* carries,
                  const double* data, double shift) {
    const std::uint64_t b = plan.params.b;
    const std::uint64_t blocks = plan.params.points / points_per_block;
    // Level k + 1 is that of N points; the transforms have N / 2 numbers.
    const double scale = 2.0 * plan.table->scale(64 + plan.params.k + 1);
    const Merge merge = plan.level->kernels->merge[b - smallest_width];
    for_ranges(parallel, blocks, points_per_block, 1, [&](std::uint64_t begin, std::uint64_t end) {
        merge(words, carries, data, scale, 0x1.8p52 + shift, begin, end);
    });
    std::uint64_t last_carry = 0;
    const std::uint64_t rest = plan.params.points % points_per_block;
    if (rest != 0) {
        merge_rest(words + blocks * b, &last_carry, data + blocks * points_per_block, rest, scale,
                   0x1.8p52 + shift);
    }

    // The carries between blocks, when all words are in place.
    const std::uint64_t count = plan.params.capacity_bits / 64;
    for (std::uint64_t block = 0; block < blocks; ++block) {
        const std::uint64_t next = (block + 1) * b;
        add_cyclic(words, count, next == count ? 0 : next, carries[block]);
    }
    add_cyclic(words, count, 0, last_carry);
}

}  // namespace qmp::fft
