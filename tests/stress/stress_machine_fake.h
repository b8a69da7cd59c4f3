// A machine for the stress tester whose clock only moves when it is read, and tests that fail as they are
// told.
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "errors/exception.h"
#include "stress/catalogue.h"
#include "stress/stress_machine.h"
#include "stress/stress_settings.h"

namespace kelvara_test {

// A second passes with every reading. Usable from any thread.
class SteppingClock final : public qmp::ClockSystem {
  public:
    std::optional<std::int64_t> performance_counter() override { return ++seconds_; }
    std::optional<std::int64_t> performance_frequency() override { return 1; }

  private:
    std::atomic<std::int64_t> seconds_ = 0;
};

struct SteppingMachine {
    SteppingMachine() {
        machine.clocks = &clock;
        machine.cores = 4;
        machine.bind_to_core = [this](std::uint64_t core) {
            const std::lock_guard lock(mutex);
            bound.push_back(core);
            return !refuses;
        };
    }

    SteppingClock clock;
    std::vector<std::uint64_t> bound;
    bool refuses = false;
    std::mutex mutex;
    kelvara::StressMachine machine;
};

inline kelvara::StressSettings small_settings(std::uint64_t threads, std::uint64_t memory,
                                              std::uint64_t seconds = 0) {
    kelvara::StressSettings settings;
    settings.allocator = qmp::make_allocator("malloc");
    settings.threads = threads;
    settings.memory = memory;
    settings.seconds_per_test = seconds;
    return settings;
}

// Another test with an error in one of its products.
class FaultyTest final : public kelvara::StressTest {
  public:
    enum class Fault { product, operand, exception };

    // The `at`-th product, from 0, of all threads is the wrong one; `bit` is counted from the lowest of the
    // product or of the operand, modulo its length.
    FaultyTest(const kelvara::StressTest& test, std::uint64_t at, Fault fault, std::uint64_t bit = 0)
        : test_(test), at_(at), fault_(fault), bit_(bit) {}

    std::uint64_t max_bits() const override { return test_.max_bits(); }
    std::uint64_t scratch_bytes(std::uint64_t units) const override { return test_.scratch_bytes(units); }
    kelvara::TwiddleReach twiddle_reach(std::uint64_t units) const override {
        return test_.twiddle_reach(units);
    }
    kelvara::ProductWork work(std::uint64_t n) const override { return test_.work(n); }

    void square(const qmp::MultiplyContext& context, qmp::Word* product, const qmp::Word* a,
                std::uint64_t n) const override {
        const bool now = count_++ == at_;
        // The memory under an operand may lose a bit; that it is const here binds the multiplication only.
        if (now && fault_ == Fault::operand) flip(const_cast<qmp::Word*>(a), n);
        test_.square(context, product, a, n);
        if (now && fault_ == Fault::product) flip(product, 2 * n);
        if (now && fault_ == Fault::exception) throw qmp::AlgorithmFailedException("square()", "Too large.");
    }

  private:
    void flip(qmp::Word* words, std::uint64_t n) const {
        const std::uint64_t bit = bit_ % (64 * n);
        words[bit / 64] ^= qmp::Word{1} << (bit % 64);
    }

    const kelvara::StressTest& test_;
    std::uint64_t at_;
    Fault fault_;
    std::uint64_t bit_;
    mutable std::atomic<std::uint64_t> count_ = 0;
};

// Names a test of this program after the one of the catalogue that it runs with.
inline std::string code_of_test(const testing::TestParamInfo<std::size_t>& parameter) {
    return kelvara::stress_tests()[parameter.param].code;
}

inline kelvara::StressTestEntry with_test(kelvara::StressTestEntry entry, const kelvara::StressTest* test) {
    entry.test = test;
    return entry;
}

}  // namespace kelvara_test
