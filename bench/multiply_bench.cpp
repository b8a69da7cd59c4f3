// Products through the dispatch beside GMP's, same operands, same run: nanoseconds, and their ratio.
//
// Each figure is the median of several rounds; a round repeats the product for some milliseconds. Ours and
// GMP's rounds alternate, so that a change of the processor's clock meets both; times are the process's own
// on the processor, so that other programs disturb them little.
#include <gmp.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <vector>

#include "multiply/multiply.h"
#include "multiply/twiddle_set.h"

namespace {

using Words = std::vector<qmp::Word>;

constexpr int rounds = 9;
constexpr double round_nanoseconds = 3e6;

// 64-byte aligned memory.
class AlignedWords {
  public:
    explicit AlignedWords(std::uint64_t words) : storage_(words + 8) {
        const auto address = reinterpret_cast<std::uintptr_t>(storage_.data());
        data_ = storage_.data() + (64 - address % 64) % 64 / sizeof(qmp::Word);
    }
    qmp::Word* data() const { return data_; }

  private:
    Words storage_;
    qmp::Word* data_;
};

template <typename Run>
double nanoseconds(const Run& run, std::uint64_t repetitions) {
    const std::clock_t start = std::clock();
    for (std::uint64_t i = 0; i < repetitions; ++i) run();
    const auto ticks = static_cast<double>(std::clock() - start);
    return ticks * (1e9 / CLOCKS_PER_SEC) / static_cast<double>(repetitions);
}

// How often to repeat a product in one round.
template <typename Run>
std::uint64_t repetitions_of(const Run& run) {
    std::uint64_t repetitions = 1;
    while (nanoseconds(run, repetitions) * static_cast<double>(repetitions) < round_nanoseconds)
        repetitions *= 2;
    return repetitions;
}

double median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + rounds / 2, values.end());
    return values[rounds / 2];
}

void fill(Words& words, std::uint64_t state) {
    for (auto& word : words) {
        state = state * 6364136223846793005 + 1442695040888963407;
        word = state ^ (state >> 29);
    }
    words.back() |= 1;
}

// One line of the table; false when the products differ.
bool measure(const qmp::TwiddleSet* twiddles, std::uint64_t la, std::uint64_t lb) {
    Words a(la), b(lb), product(la + lb), expected(la + lb);
    fill(a, la);
    fill(b, lb + 1);
    const std::uint64_t scratch_words = qmp::scratch_words_for(la + lb, 1);
    const AlignedWords scratch(scratch_words);
    const qmp::MultiplyContext context(qmp::ParallelContext::sequential(), twiddles, scratch.data(),
                                       scratch_words);
    const auto ours = [&] { qmp::multiply(context, product.data(), a.data(), la, b.data(), lb); };
    const auto gmp = [&] {
        mpn_mul(expected.data(), a.data(), static_cast<mp_size_t>(la), b.data(), static_cast<mp_size_t>(lb));
    };
    const std::uint64_t our_repetitions = repetitions_of(ours);
    const std::uint64_t gmp_repetitions = repetitions_of(gmp);
    std::vector<double> our_times, gmp_times;
    for (int round = 0; round < rounds; ++round) {
        our_times.push_back(nanoseconds(ours, our_repetitions));
        gmp_times.push_back(nanoseconds(gmp, gmp_repetitions));
    }
    const double our_time = median(our_times);
    const double gmp_time = median(gmp_times);
    std::printf("%8llu %8llu  %s %14.1f %14.1f %8.3f\n", static_cast<unsigned long long>(la),
                static_cast<unsigned long long>(lb), qmp::basic_table_64().get_algorithm(la + lb).key,
                our_time, gmp_time, our_time / gmp_time);
    return product == expected;
}

}  // namespace

int main() {
    const std::uint64_t largest = std::min<std::uint64_t>(qmp::basic_table_64().largest_product(), 10240);
    const std::uint64_t twiddle_bytes = qmp::TwiddleSet::bytes_needed(largest);
    const AlignedWords twiddle_memory(twiddle_bytes / sizeof(qmp::Word) + 1);
    const qmp::TwiddleSet twiddles(twiddle_memory.data(), twiddle_bytes, largest,
                                   qmp::ParallelContext::sequential());

    std::printf("Products of LA by LB words, one task. Median of %d rounds.\n", rounds);
    std::printf("      LA       LB  key     Kelvara ns         GMP ns    ratio\n");
    bool correct = true;
    for (std::uint64_t n : {1,  2,   4,   8,   12,  16,  20,   24,   29,   30,   40,
                            64, 100, 160, 256, 400, 640, 1024, 1600, 2560, 4096, 5120}) {
        if (2 * n <= largest) correct &= measure(&twiddles, n, n);
    }
    for (std::uint64_t n : {40, 400, 4000, 8000}) {
        if (n + n / 4 <= largest) correct &= measure(&twiddles, n, n / 4);
    }
    if (!correct) std::printf("Products differ.\n");
    return correct ? 0 : 1;
}
