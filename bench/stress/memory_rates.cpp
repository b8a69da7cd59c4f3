#include "memory_rates.h"

#include <chrono>
#include <cstring>
#include <vector>

namespace bench {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t array_doubles = std::size_t{1} << 23;  // 64 MiB
constexpr double array_bytes = sizeof(double) * array_doubles;

double seconds_since(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

struct Arrays {
    std::vector<double> a = std::vector<double>(array_doubles, 1.0);
    std::vector<double> b = std::vector<double>(array_doubles, 2.0);
    std::vector<double> c = std::vector<double>(array_doubles, 3.0);
};

void triad(Arrays& x) {
    double* a = x.a.data();
    const double* b = x.b.data();
    const double* c = x.c.data();
    for (std::size_t i = 0; i < array_doubles; ++i) a[i] = b[i] + 0.5 * c[i];
    asm volatile("" : : "r"(a) : "memory");
}

void copy(Arrays& x) {
    std::memcpy(x.a.data(), x.b.data(), sizeof(double) * array_doubles);
    asm volatile("" : : "r"(x.a.data()) : "memory");
}

template <typename Work>
double rate(kelvara::StressThreads& threads, std::vector<Arrays>& arrays, double seconds, double bytes,
            Work work) {
    std::vector<double> rates(arrays.size());
    threads.run(arrays.size(), [&](std::uint64_t i) {
        work(arrays[i]);
        const Clock::time_point start = Clock::now();
        double moved = 0, passed = 0;
        while (passed < seconds) {
            work(arrays[i]);
            moved += bytes;
            passed = seconds_since(start);
        }
        rates[i] = moved / passed;
    });
    double sum = 0;
    for (const double r : rates) sum += r;
    return sum;
}

}  // namespace

MemoryRates measure_memory(kelvara::StressThreads& threads, double seconds) {
    std::vector<Arrays> arrays(threads.count());
    return {rate(threads, arrays, seconds, 3 * array_bytes, triad),
            rate(threads, arrays, seconds, 2 * array_bytes, copy)};
}

}  // namespace bench
