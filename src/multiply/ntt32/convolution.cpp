#include "multiply/ntt32/convolution.h"

#include <algorithm>

#include "errors/fatal.h"
#include "multiply/instruction_levels.h"
#include "multiply/ntt32/modular.h"

namespace qmp::ntt32 {
namespace {

// Blocks of 2^15 residues (128 KB) are transformed by one task, in a cache of its own.
constexpr std::uint32_t log_cached = 15;
// Columns of a pass over longer blocks that a task takes at a time.
constexpr std::uint64_t pass_columns = 128;
constexpr std::uint64_t split_columns = 256;
// Columns whose carry is kept apart.
constexpr std::uint64_t recombined_columns = 512;
constexpr std::uint64_t carry_words = sizeof(RecombineResult) / sizeof(Word);
// Less than this is not worth another task: residues, each through all passes.
constexpr std::uint64_t residues_per_task = std::uint64_t{1} << 14;

// The table of the current level, or of the next lower one that has one.
const Kernels& current_kernels() {
    switch (current_level()) {
        case InstructionLevel::avx512:
            return kernels_avx512;
        case InstructionLevel::avx2:
            return kernels_avx2;
        default:
            return kernels_scalar;
    }
}

// run(i) for every i < count; each takes `residues` residues through some passes.
template <typename Run>
void for_each(ParallelContext parallel, std::uint64_t count, std::uint64_t residues, const Run& run) {
    const BlockCut cut =
        BlockCut::of(count, parallel.tds, std::max<std::uint64_t>(1, residues_per_task / residues));
    const auto run_block = [&](std::uint64_t block) {
        for (std::uint64_t i = cut.begin(block); i < cut.end(block, count); ++i) run(i);
    };
    if (cut.count <= 1) {
        if (cut.count == 1) run_block(0);
        return;
    }
    parallel.run(0, cut.count, run_block);
}

// The depths [depth, depth + bits) of a row at the columns [begin, begin + pass_columns) of each of the
// 2^bits parts that the block falls into, bits <= 4: two steps whose data stays in the nearest cache.
template <bool Inverse>
void pass_over_columns(const Plan& plan, const Roots& roots, std::uint32_t* block, int log_length, int bits,
                       std::uint64_t node, std::uint64_t begin) {
    const Kernels& kernels = *plan.kernels;
    const auto step = [&](std::uint32_t* part, int log_part, int step_bits, std::uint64_t part_node,
                          std::uint64_t first) {
        const ColumnsPass pass = step_bits == 2 ? (Inverse ? kernels.inverse4 : kernels.forward4)
                                                : (Inverse ? kernels.inverse2 : kernels.forward2);
        pass(part, log_part, part_node, roots, first, first + pass_columns);
    };
    const int upper = (bits + 1) / 2, lower = bits - upper;
    const auto upper_step = [&] {
        for (std::uint64_t i = 0; i < std::uint64_t{1} << lower; ++i) {
            step(block, log_length, upper, node, begin + (i << (log_length - bits)));
        }
    };
    const auto lower_step = [&] {
        for (std::uint64_t i = 0; lower != 0 && i < std::uint64_t{1} << upper; ++i) {
            step(block + (i << (log_length - upper)), log_length - upper, lower, (node << upper) + i, begin);
        }
    };
    if constexpr (Inverse) {
        lower_step();
        upper_step();
    } else {
        upper_step();
        lower_step();
    }
}

// The pass from the nodes at `depth` of all rows to those at depth + bits.
template <bool Inverse>
void pass_over_rows(ParallelContext parallel, const Plan& plan, std::uint32_t* rows, std::uint32_t depth,
                    std::uint32_t bits) {
    const std::uint32_t log_length = plan.params.exponent - depth;
    const std::uint64_t blocks = std::uint64_t{1} << depth;
    const std::uint64_t ranges = (std::uint64_t{1} << (log_length - bits)) / pass_columns;
    for_each(parallel, plan.rows() * blocks * ranges, pass_columns << bits, [&](std::uint64_t i) {
        const std::uint64_t range = i % ranges, node = i / ranges % blocks, row = i / ranges / blocks;
        const std::uint64_t prime = row / plan.params.multiplier;
        const Roots& roots = (Inverse ? plan.roots->inverse : plan.roots->forward)[prime];
        pass_over_columns<Inverse>(plan, roots, rows + plan.row_stride() * row + (node << log_length),
                                   static_cast<int>(log_length), static_cast<int>(bits), node,
                                   range * pass_columns);
    });
}

// How the depths above blocks in cache are divided into passes of up to four.
struct TopPasses {
    std::uint32_t depths;
    std::uint32_t count;

    explicit TopPasses(std::uint32_t exponent)
        : depths(exponent > log_cached ? exponent - log_cached : 0), count((depths + 3) / 4) {}
    std::uint32_t depth(std::uint32_t pass) const { return depths * pass / count; }
    std::uint32_t bits(std::uint32_t pass) const { return depth(pass + 1) - depth(pass); }
};

void split_operand(ParallelContext parallel, const Plan& plan, std::uint32_t* rows, const void* bytes,
                   std::uint64_t count) {
    const SplitJob job{static_cast<const unsigned char*>(bytes),
                       count,
                       rows,
                       plan.row_stride(),
                       plan.params.multiplier,
                       plan.roots->moduli,
                       plan.constants->chunk_weights};
    const auto split = plan.kernels->split[plan.params.primes - fewest_primes];
    for_each(parallel, plan.row_length() / split_columns, split_columns * plan.rows(),
             [&](std::uint64_t i) { split(job, i * split_columns, (i + 1) * split_columns); });
}

// What makes residues of multiply_and_inverse() the y(i) of the remainder theorem: divided by
// 2^(exponent - 32) and by P / p(i).
void make_scales(const Plan& plan, Factor (&scales)[most_primes]) {
    for (std::uint32_t i = 0; i < plan.params.primes; ++i) {
        const Modulus& modulus = plan.roots->moduli[i];
        const std::uint32_t power = power_modulo(2, 32 - plan.params.exponent, modulus.prime);
        scales[i] = make_factor(std::uint64_t{power} * plan.constants->inverse_cofactors[i], modulus);
    }
}

// Adds to words[at ..), going round at the end.
void add_cyclic(Word* words, std::uint64_t count, std::uint64_t at, const Word (&carry)[3]) {
    Word carried = 0;
    for (std::uint64_t i = 0; i < 3 || carried != 0; ++i) {
        const DoubleWord sum = DoubleWord{words[at]} + (i < 3 ? carry[i] : 0) + carried;
        words[at] = low_word(sum);
        carried = high_word(sum);
        at = at + 1 == count ? 0 : at + 1;
    }
}

}  // namespace

Plan::Plan(const SizeParams& size)
    : params(size),
      kernels(&current_kernels()),
      roots(&root_tables(prime_set(size.exponent), kernels->log_lanes)),
      constants(&recombination(prime_set(size.exponent), size.primes)) {
    if (params.points() > constants->most_points || row_length() < recombined_columns) {
        invalid_function_parameters("qmp::ntt32::Plan::Plan()");
    }
}

std::uint64_t transformed_words(const SizeParams& size) {
    return size.primes * size.multiplier * ((std::uint64_t{1} << size.exponent) + column_group) / 2;
}

std::uint64_t scratch_words_of(const SizeParams& size) {
    return size.capacity_bits / 64 + (std::uint64_t{1} << size.exponent) / recombined_columns * carry_words;
}

void forward_transform(ParallelContext parallel, const Plan& plan, std::uint32_t* rows, const void* bytes,
                       std::uint64_t count) {
    split_operand(parallel, plan, rows, bytes, count);
    const TopPasses top(plan.params.exponent);
    for (std::uint32_t pass = 0; pass < top.count; ++pass) {
        pass_over_rows<false>(parallel, plan, rows, top.depth(pass), top.bits(pass));
    }
    const std::uint32_t log_block = plan.params.exponent - top.depths;
    for_each(parallel, plan.rows() << top.depths, std::uint64_t{1} << log_block, [&](std::uint64_t i) {
        const std::uint64_t row = i >> top.depths, node = i & ((std::uint64_t{1} << top.depths) - 1);
        plan.kernels->forward(rows + plan.row_stride() * row + (node << log_block),
                              static_cast<int>(log_block), node,
                              plan.roots->forward[row / plan.params.multiplier]);
    });
}

void multiply_and_inverse(ParallelContext parallel, const Plan& plan, std::uint32_t* a,
                          const std::uint32_t* b) {
    const TopPasses top(plan.params.exponent);
    const std::uint32_t log_block = plan.params.exponent - top.depths;
    const std::uint64_t block_tiles = std::uint64_t{1} << (log_block - 2 * plan.kernels->log_lanes);
    const std::uint64_t multiplier = plan.params.multiplier, stride = plan.row_stride();
    const Pointwise product = plan.kernels->pointwise[multiplier / 2];
    // The same block of a prime's rows, from the leaves up.
    for_each(parallel, std::uint64_t{plan.params.primes} << top.depths, multiplier << log_block,
             [&](std::uint64_t i) {
                 const std::uint64_t prime = i >> top.depths,
                                     node = i & ((std::uint64_t{1} << top.depths) - 1);
                 const std::uint64_t first = prime * multiplier * stride;
                 product(a + first, b + first, stride, plan.roots->forward[prime], node * block_tiles,
                         (node + 1) * block_tiles);
                 for (std::uint64_t j = 0; j < multiplier; ++j) {
                     plan.kernels->inverse(a + first + j * stride + (node << log_block),
                                           static_cast<int>(log_block), node, plan.roots->inverse[prime]);
                 }
             });
    for (std::uint32_t pass = top.count; pass-- > 0;) {
        pass_over_rows<true>(parallel, plan, a, top.depth(pass), top.bits(pass));
    }
}

std::uint64_t recombine(ParallelContext parallel, const Plan& plan, Word* scratch,
                        const std::uint32_t* rows) {
    Factor scales[most_primes];
    make_scales(plan, scales);
    const RecombineJob job{rows,
                           plan.row_stride(),
                           plan.params.multiplier,
                           plan.roots->moduli,
                           scales,
                           plan.constants->cofactors,
                           plan.constants->reciprocals,
                           plan.constants->complement,
                           reinterpret_cast<unsigned char*>(scratch)};
    const std::uint64_t count = plan.params.capacity_bits / 64;
    const std::uint64_t blocks = plan.row_length() / recombined_columns;
    auto* results = reinterpret_cast<RecombineResult*>(scratch + count);
    const auto run = plan.kernels->recombine[plan.params.primes - fewest_primes];
    for_each(parallel, blocks, recombined_columns * plan.rows(), [&](std::uint64_t i) {
        results[i] = run(job, i * recombined_columns, (i + 1) * recombined_columns);
    });

    std::uint64_t largest = 0;
    const std::uint64_t block_words = count / blocks;
    for (std::uint64_t i = 0; i < blocks; ++i) {
        largest = std::max(largest, results[i].largest);
        add_cyclic(scratch, count, i + 1 == blocks ? 0 : (i + 1) * block_words, results[i].carry);
    }
    return largest;
}

}  // namespace qmp::ntt32
