#include "stress/catalogue.h"

#include <array>
#include <cstddef>
#include <memory>
#include <vector>

#include "multiply/algorithm_table.h"
#include "stress/algorithm_stress_test.h"

namespace kelvara {
namespace {

// One text for each level, in the order of qmp::InstructionLevel: AVX-512, AVX2, FMA4, SSE2, scalar.
using LevelTexts = std::array<const char*, qmp::instruction_level_count>;

constexpr LevelTexts fft_texts = {"512-bit AVX-512 + Memory", "256-bit FMA3 + Memory",
                                  "128-bit FMA4 + Memory", "128-bit SSE2 + Memory",
                                  "Scalar Floating-Point + Memory"};
// Below AVX2 the 32-bit transform, below AVX-512 the 64-bit one, has no vector kernels.
constexpr LevelTexts ntt32_texts = {"512-bit AVX-512 Integer", "256-bit AVX2 Integer", "Scalar Integer",
                                    "Scalar Integer", "Scalar Integer"};
constexpr LevelTexts ntt64_texts = {"512-bit AVX-512 Integer", "Scalar Integer", "Scalar Integer",
                                    "Scalar Integer", "Scalar Integer"};
constexpr LevelTexts vst_texts = {"512-bit AVX-512 Floating-Point", "256-bit FMA3 Floating-Point",
                                  "SSE/XOP Floating-Point", "128-bit SSE2 Floating-Point",
                                  "Scalar Floating-Point"};

struct Test {
    const char* code;
    const char* name;
    TwiddleNeed need;
    bool cpu_intensive;
    bool memory_intensive;
};

// The basecase has neither mark: it is in neither of the menu's quick sets.
constexpr Test tests[] = {
    {"BKT", "Basecase + Karatsuba", TwiddleNeed::none, false, false},
    {"FFT", "Floating-Point FFT", TwiddleNeed::floating_point, false, true},
    {"N32", "Classic NTT (32-bit)", TwiddleNeed::covering, true, false},
    {"N64", "Classic NTT (64-bit)", TwiddleNeed::covering, true, false},
    {"HNT", "Hybrid NTT", TwiddleNeed::residues, true, true},
    {"VST", "Vector Transform", TwiddleNeed::covering, true, true},
};

// The entries and the objects that they refer to.
class Catalogue {
  public:
    Catalogue() {
        for (const Test& test : tests) {
            const auto* algorithm =
                static_cast<const qmp::Algorithm64*>(qmp::find_algorithm(test.code, qmp::WordKind::basic64));
            const StressTest* object = nullptr;
            if (algorithm) {
                objects_.push_back(std::make_unique<AlgorithmStressTest>(*algorithm, test.need));
                object = objects_.back().get();
            }
            entries_.push_back({object, test.code, test.name,
                                primary_components(test.code, qmp::current_level()), test.cpu_intensive,
                                test.memory_intensive});
        }
    }
    std::span<const StressTestEntry> entries() const { return entries_; }

  private:
    std::vector<std::unique_ptr<AlgorithmStressTest>> objects_;
    std::vector<StressTestEntry> entries_;
};

}  // namespace

std::span<const StressTestEntry> stress_tests() {
    static const Catalogue catalogue;
    return catalogue.entries();
}

std::string primary_components(std::string_view code, qmp::InstructionLevel level) {
    const auto index = static_cast<std::size_t>(level);
    if (code == "FFT") return fft_texts[index];
    if (code == "N32") return ntt32_texts[index];
    if (code == "N64") return ntt64_texts[index];
    if (code == "VST") return vst_texts[index];
    if (code == "HNT") return "CPU + Cache + Memory";
    return "Scalar Integer";
}

}  // namespace kelvara
