// The tests and what is said of them.
#include "stress/catalogue.h"

#include <gtest/gtest.h>

#include "multiply/ntt64/levels.h"
#include "platform/os/memory.h"
#include "platform/os/threads.h"
#include "stress/stress_settings.h"

namespace kelvara {
namespace {

using qmp::InstructionLevel;

TEST(StressCatalogue, HasSixTestsThatRunHere) {
    struct Row {
        const char* code;
        const char* name;
        bool cpu, memory;
    };
    constexpr Row rows[] = {
        {"BKT", "Basecase + Karatsuba", false, false},
        {"FFT", "Floating-Point FFT", false, true},
        {"N32", "Classic NTT (32-bit)", true, false},
        {"N64", "Classic NTT (64-bit)", true, false},
        {"HNT", "Hybrid NTT", true, true},
        {"VST", "Vector Transform", true, true},
    };
    ASSERT_EQ(stress_tests().size(), std::size(rows));
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        const StressTestEntry& entry = stress_tests()[i];
        EXPECT_STREQ(entry.code, rows[i].code);
        EXPECT_STREQ(entry.name, rows[i].name);
        EXPECT_EQ(entry.cpu_intensive, rows[i].cpu) << entry.code;
        EXPECT_EQ(entry.memory_intensive, rows[i].memory) << entry.code;
        EXPECT_NE(entry.test, nullptr) << entry.code;
        EXPECT_EQ(entry.components, primary_components(entry.code, qmp::current_level()));
    }
}

TEST(PrimaryComponents, NameTheInstructionsThatRun) {
    EXPECT_EQ(primary_components("FFT", InstructionLevel::fma4), "128-bit FMA4 + Memory");
    EXPECT_EQ(primary_components("VST", InstructionLevel::fma4), "SSE/XOP Floating-Point");
    EXPECT_EQ(primary_components("FFT", InstructionLevel::avx2), "256-bit FMA3 + Memory");
    EXPECT_EQ(primary_components("N32", InstructionLevel::avx2), "256-bit AVX2 Integer");
    // There are no vector kernels of the number-theoretic transforms for these.
    EXPECT_EQ(primary_components("N32", InstructionLevel::fma4), "Scalar Integer");
    EXPECT_EQ(primary_components("N64", InstructionLevel::avx2), "Scalar Integer");
    EXPECT_EQ(primary_components("N64", InstructionLevel::avx512), "512-bit AVX-512 Integer");
    for (std::size_t i = 0; i < qmp::instruction_level_count; ++i) {
        EXPECT_EQ(primary_components("BKT", static_cast<InstructionLevel>(i)), "Scalar Integer");
        EXPECT_EQ(primary_components("HNT", static_cast<InstructionLevel>(i)), "CPU + Cache + Memory");
    }
}

TEST(PrimaryComponents, AreThoseOfTheKernelsChosen) {
    for (std::size_t i = 0; i < qmp::instruction_level_count; ++i) {
        const auto level = static_cast<InstructionLevel>(i);
        if (!qmp::supported(level)) continue;
        qmp::force_level(qmp::name_of(level));
        const bool vectors = &qmp::ntt64::current_kernels() == &qmp::ntt64::kernels_avx512;
        EXPECT_EQ(primary_components("N64", level).find("AVX-512") != std::string::npos, vectors);
    }
    qmp::force_level("");
}

TEST(StressSettings, StartFromTheSystem) {
    const StressSettings settings;
    EXPECT_EQ(settings.mode, StressMode::local);
    EXPECT_EQ(settings.threads, std::max<std::uint64_t>(qmp::os::active_processors(), 1));
    EXPECT_EQ(settings.seconds_per_test, 120u);
    EXPECT_TRUE(settings.stop_on_error);
    EXPECT_EQ(settings.enabled, std::vector<bool>(6, true));
    EXPECT_STREQ(settings.allocator->get_type_name(), qmp::make_default_allocator()->get_type_name());
    EXPECT_EQ(settings.memory % 15, 0u);
    EXPECT_LE(settings.memory, qmp::os::total_physical_memory());
    EXPECT_EQ(settings.memory == 0, qmp::os::available_physical_memory() == 0);
}

}  // namespace
}  // namespace kelvara
