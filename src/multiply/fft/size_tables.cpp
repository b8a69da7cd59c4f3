#include "multiply/fft/size_tables.h"

#include "multiply/fft/kernels/kernels.h"

namespace qmp::fft {
namespace {

// Capacities as they stand, against r * 2^k * b: a slip of the pen does not compile.
constexpr FftParams row(std::uint64_t capacity, std::uint32_t r, std::uint32_t k, std::uint64_t b) {
    const FftParams params = make_params(r, k, b);
    return params.capacity_bits == capacity ? params : throw "capacity and length disagree";
}

}  // namespace

// clang-format off
constexpr std::array<FftParams, size_table_rows> size_table = {{
    row(2048, 1, 7, 16), row(2560, 1, 7, 20), row(4096, 1, 8, 16),
    row(5120, 1, 8, 20), row(6144, 3, 7, 16), row(7680, 3, 7, 20),
    row(8192, 1, 9, 16), row(9216, 1, 9, 18), row(9728, 1, 9, 19),
    row(10240, 5, 7, 16), row(11520, 5, 7, 18), row(12160, 5, 7, 19),
    row(12288, 3, 8, 16), row(13824, 3, 8, 18), row(14592, 3, 8, 19),
    row(18432, 1, 10, 18), row(19456, 1, 10, 19), row(20480, 5, 8, 16),
    row(23040, 5, 8, 18), row(24320, 5, 8, 19), row(24576, 3, 9, 16),
    row(27648, 3, 9, 18), row(29184, 3, 9, 19), row(32768, 1, 11, 16),
    row(36864, 1, 11, 18), row(38912, 1, 11, 19), row(40960, 5, 9, 16),
    row(46080, 5, 9, 18), row(49152, 3, 10, 16), row(55296, 3, 10, 18),
    row(65536, 1, 12, 16), row(73728, 1, 12, 18), row(81920, 5, 10, 16),
    row(87040, 5, 10, 17), row(98304, 3, 11, 16), row(104448, 3, 11, 17),
    row(131072, 1, 13, 16), row(139264, 1, 13, 17), row(163840, 5, 11, 16),
    row(174080, 5, 11, 17), row(196608, 3, 12, 16), row(208896, 3, 12, 17),
    row(262144, 1, 14, 16), row(278528, 1, 14, 17), row(327680, 5, 12, 16),
    row(348160, 5, 12, 17), row(393216, 3, 13, 16), row(417792, 3, 13, 17),
    row(524288, 1, 15, 16), row(655360, 5, 13, 16), row(786432, 3, 14, 16),
    row(983040, 1, 16, 15), row(1048576, 1, 16, 16), row(1146880, 5, 14, 14),
    row(1228800, 5, 14, 15), row(1376256, 3, 15, 14), row(1474560, 3, 15, 15),
    row(1572864, 1, 17, 12), row(1835008, 1, 17, 14), row(1966080, 1, 17, 15),
    row(2129920, 5, 15, 13), row(2457600, 5, 15, 15), row(2555904, 3, 16, 13),
    row(2752512, 3, 16, 14), row(2949120, 3, 16, 15), row(3145728, 1, 18, 12),
    row(3670016, 1, 18, 14), row(3932160, 1, 18, 15), row(4259840, 5, 16, 13),
    row(4587520, 5, 16, 14), row(5505024, 3, 17, 14), row(5767168, 1, 19, 11),
    row(6815744, 1, 19, 13), row(7340032, 1, 19, 14), row(8519680, 5, 17, 13),
    row(9175040, 5, 17, 14), row(10223616, 3, 18, 13), row(11010048, 3, 18, 14),
    row(11534336, 1, 20, 11), row(13631488, 1, 20, 13), row(14680064, 1, 20, 14),
    row(17039360, 5, 18, 13), row(20447232, 3, 19, 13), row(27262976, 1, 21, 13),
    row(28835840, 5, 19, 11), row(34078720, 5, 19, 13), row(40894464, 3, 20, 13),
    row(50331648, 1, 22, 12), row(52428800, 5, 20, 10), row(57671680, 5, 20, 11),
    row(62914560, 5, 20, 12), row(69206016, 3, 21, 11), row(75497472, 3, 21, 12),
    row(92274688, 1, 23, 11), row(100663296, 1, 23, 12),
}};
// clang-format on

namespace {

constexpr bool strictly_increasing(const FftParams* rows, std::size_t count) {
    for (std::size_t i = 1; i < count; ++i) {
        if (rows[i].capacity_bits <= rows[i - 1].capacity_bits) return false;
    }
    return true;
}
static_assert(strictly_increasing(size_table.data(), size_table_rows));

// However irregular the point sizes: a larger capacity never has a shorter transform, so the memory that
// products need grows with them.
constexpr bool points_never_shrink() {
    for (std::size_t i = 1; i < size_table_rows; ++i) {
        if (size_table[i].points < size_table[i - 1].points) return false;
    }
    return true;
}
static_assert(points_never_shrink());

// What the rounding rests on (NUMERICS.md): coefficients below 2^51, and N * 2^(2b - 2), the bound of a
// coefficient of centred points, at most 2^47. And what the merge counts on.
constexpr bool within_precision(const FftParams* rows, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        if (rows[i].points << (2 * rows[i].b - 2) > std::uint64_t{1} << 47) return false;
        if (!pairs_fit(rows[i].b, rows[i].points)) return false;
    }
    return true;
}
static_assert(within_precision(size_table.data(), size_table_rows));

// The widest point that the size table has for a length, 0 for a length that is not in it.
constexpr std::uint64_t widest_point(std::uint32_t r, std::uint32_t k) {
    std::uint64_t widest = 0;
    for (const FftParams& params : size_table) {
        if (params.r == r && params.k == k && params.b > widest) widest = params.b;
    }
    return widest;
}

// Every capacity, each with the shortest transform that has it. Insertion keeps the rows in order.
struct ExactSizes {
    std::array<FftParams, 512> rows{};
    std::size_t count = 0;

    constexpr void insert(FftParams params) {
        std::size_t i = count;
        while (i > 0 && rows[i - 1].capacity_bits > params.capacity_bits) --i;
        if (i > 0 && rows[i - 1].capacity_bits == params.capacity_bits) {
            if (params.points < rows[i - 1].points) rows[i - 1] = params;
            return;
        }
        for (std::size_t j = count; j > i; --j) rows[j] = rows[j - 1];
        rows[i] = params;
        ++count;
    }
};

constexpr ExactSizes all_exact_sizes() {
    ExactSizes sizes;
    for (std::uint32_t r : {1u, 3u, 5u}) {
        for (std::uint32_t k = 7; k <= 22; ++k) {
            const std::uint64_t widest = widest_point(r, k + 1);
            for (std::uint64_t b = 9; b <= widest; ++b) sizes.insert(make_params(r, k, b));
        }
    }
    return sizes;
}

constexpr std::array<FftParams, exact_size_table_rows> checked_exact_sizes() {
    constexpr ExactSizes sizes = all_exact_sizes();
    static_assert(sizes.count == exact_size_table_rows);
    static_assert(strictly_increasing(sizes.rows.data(), sizes.count));
    std::array<FftParams, exact_size_table_rows> rows{};
    for (std::size_t i = 0; i < rows.size(); ++i) rows[i] = sizes.rows[i];
    return rows;
}

}  // namespace

constexpr std::array<FftParams, exact_size_table_rows> exact_size_table = checked_exact_sizes();
static_assert(within_precision(exact_size_table.data(), exact_size_table_rows));
static_assert(exact_size_table.front() == make_params(1, 7, 9));
static_assert(exact_size_table.back() == make_params(1, 22, 12));

}  // namespace qmp::fft
