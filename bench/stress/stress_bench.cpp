// How much of the machine the stress tester's tests keep busy, as tables (--help).
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <memory>
#include <stdexcept>

#include "errors/exception.h"
#include "memory_rates.h"
#include "multiply/instruction_levels.h"
#include "options.h"
#include "platform/topology.h"
#include "stress/catalogue.h"
#include "stress/floating_point_peak.h"
#include "stress/stress_threads.h"
#include "stress/workloads.h"
#include "support/machine.h"

namespace {

using Clock = std::chrono::steady_clock;

struct Measured {
    double products = 0;
    double seconds = 0;
};

struct Peaks {
    double operations;
    bench::MemoryRates memory;
};

// All threads, for at least so long; every product is checked.
Measured measure(const kelvara::StressTest& test, const kelvara::StressTestSize& size,
                 const kelvara::StressSettings& settings, kelvara::StressThreads& threads, double seconds) {
    const std::unique_ptr<qmp::HeapBlock> heap = settings.allocator->create_heap(settings.memory, nullptr, 1);
    if (!heap->base) throw std::runtime_error("there is not so much memory");
    kelvara::StressWorkloads work(test, size, settings, {static_cast<std::byte*>(heap->base), heap->size});
    std::atomic<std::uint64_t> products = 0;
    std::atomic<bool> wrong = false;
    threads.run(settings.threads, [&](std::uint64_t i) {
        work.prepare(i);
        if (!work.step(i)) wrong = true;
    });
    const Clock::time_point start = Clock::now();
    const auto passed = [&] { return std::chrono::duration<double>(Clock::now() - start).count(); };
    threads.run(settings.threads, [&](std::uint64_t i) {
        do {
            if (!work.step(i)) wrong = true;
            ++products;
        } while (passed() < seconds);
    });
    if (wrong) throw std::runtime_error("a product is wrong");
    return {static_cast<double>(products), passed()};
}

void print_line(const kelvara::StressTestEntry& entry, const kelvara::StressSettings& settings,
                kelvara::StressThreads& threads, const Peaks& peaks, double seconds) {
    const kelvara::StressTestSize size = kelvara::stress_test_size(*entry.test, settings);
    if (size.operand_words() == 0) {
        std::printf("%-4s %12s\n", entry.code, "-");
        return;
    }
    const Measured measured = measure(*entry.test, size, settings, threads, seconds);
    const kelvara::ProductWork work = entry.test->work(size.operand_words());
    const double rate = measured.products / measured.seconds;
    const double words = static_cast<double>(size.product_words());
    std::printf("%-4s %12.0f %10.0f %10.2f", entry.code, words, measured.products, 1e-6 * rate * words);
    std::printf(" %10.2f %8.1f", 1e-9 * rate * work.bytes, 100 * rate * work.bytes / peaks.memory.triad);
    if (work.operations > 0) {
        std::printf(" %10.2f %8.1f", 1e-9 * rate * work.operations,
                    100 * rate * work.operations / peaks.operations);
    }
    std::printf("\n");
    std::fflush(stdout);
}

void print_table(const bench::Options& options, std::uint64_t thread_count) {
    kelvara::StressSettings settings;
    settings.threads = thread_count;
    const kelvara::StressMachine machine;
    kelvara::StressThreads threads(machine, settings);
    const Peaks peaks = {kelvara::measure_floating_point_peak(machine, threads),
                         bench::measure_memory(threads, std::min(options.seconds, 1.0))};
    std::printf("\n%s, %llu threads: %.2f G multiply-adds/s, triad %.2f GB/s, copy %.2f GB/s\n",
                qmp::name_of(qmp::current_level()), static_cast<unsigned long long>(thread_count),
                1e-9 * peaks.operations, 1e-9 * peaks.memory.triad, 1e-9 * peaks.memory.copy);
    for (const std::uint64_t mebibytes : options.memory) {
        settings.memory = mebibytes << 20;
        std::printf("\n%llu MiB\n%-4s %12s %10s %10s %10s %8s %10s %8s\n",
                    static_cast<unsigned long long>(mebibytes), "", "words", "products", "Mwords/s",
                    "GB/s >=", "% triad", "G op/s est", "% peak");
        for (const kelvara::StressTestEntry& entry : kelvara::stress_tests()) {
            for (const std::string& code : options.tests) {
                if (code == entry.code) print_line(entry, settings, threads, peaks, options.seconds);
            }
        }
    }
}

void print_tables(const bench::Options& options) {
    bench::print_processor();
    std::printf(
        "Words:      of a product; products are squares, all of them checked\n"
        "GB/s:       at the least, by the length of the transforms: operand, product, its hash, and each\n"
        "            transformed operand written and read twice. From caches where the operands fit those\n"
        "G op/s:     of double precision, a fused multiply-add being one; estimated by the length\n");
    for (const std::string& level : options.levels) {
        qmp::force_level(level);
        for (const std::uint64_t threads : options.threads) print_table(options, threads);
    }
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const bench::Options options = bench::parse_options(argc, argv);
        if (options.help) {
            bench::print_help();
            return 0;
        }
        qmp::numa_table();  // prints what it finds, which would stand in the middle of a table
        print_tables(options);
        return 0;
    } catch (const std::logic_error& e) {  // of the options
        std::fprintf(stderr, "stress_bench: %s\n", e.what());
        return 2;
    } catch (const std::runtime_error& e) {  // of the memory, or of a product
        std::fprintf(stderr, "stress_bench: %s\n", e.what());
        return 1;
    } catch (const qmp::Exception& e) {
        e.print();
        return 1;
    }
}
