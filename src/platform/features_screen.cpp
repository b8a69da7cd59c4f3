#include "platform/features_screen.h"

#include <span>
#include <string>
#include <string_view>

#include "console/console.h"

namespace qmp {
namespace {

struct Line {
    std::string_view name;
    bool used;  // by the program's builds
    bool ProcessorFeatures::*present;
};

using F = ProcessorFeatures;

constexpr Line vendors[] = {
    {"AMD", false, &F::amd},
    {"Intel", false, &F::intel},
};
constexpr Line system_features[] = {
    {"64-bit", true, &F::os_64bit},
    {"OS AVX", true, &F::os_avx},
    {"OS AVX512", true, &F::os_avx512},
};
constexpr Line general_features[] = {
    {"MMX", false, &F::mmx},
    {"x64", true, &F::x64},
    {"ABM", true, &F::abm},
    {"RDRAND", false, &F::rdrand},
    {"RDSEED", false, &F::rdseed},
    {"BMI1", false, &F::bmi1},
    {"BMI2", true, &F::bmi2},
    {"ADX", true, &F::adx},
    {"MPX", false, &F::mpx},
    {"PREFETCHW", false, &F::prefetchw},
    {"PREFETCHWT1", false, &F::prefetchwt1},
};
constexpr Line features_of_128_bits[] = {
    {"SSE", true, &F::sse},      {"SSE2", true, &F::sse2},    {"SSE3", true, &F::sse3},
    {"SSSE3", true, &F::ssse3},  {"SSE4a", false, &F::sse4a}, {"SSE4.1", true, &F::sse41},
    {"SSE4.2", true, &F::sse42}, {"AES-NI", false, &F::aes},  {"SHA", false, &F::sha},
};
constexpr Line features_of_256_bits[] = {
    {"AVX", true, &F::avx},   {"XOP", true, &F::xop},   {"FMA3", true, &F::fma3},
    {"FMA4", true, &F::fma4}, {"AVX2", true, &F::avx2},
};
constexpr Line features_of_512_bits[] = {
    {"AVX512-F", true, &F::avx512f},       {"AVX512-CD", false, &F::avx512cd},
    {"AVX512-PF", false, &F::avx512pf},    {"AVX512-ER", false, &F::avx512er},
    {"AVX512-VL", true, &F::avx512vl},     {"AVX512-BW", true, &F::avx512bw},
    {"AVX512-DQ", true, &F::avx512dq},     {"AVX512-IFMA", true, &F::avx512ifma},
    {"AVX512-VBMI", true, &F::avx512vbmi},
};

constexpr std::size_t name_width = 12;

void print_section(std::string_view heading, std::span<const Line> lines, const ProcessorFeatures& features) {
    console::println(heading);
    for (const Line& line : lines) {
        std::string label = line.used ? "  * " : "    ";
        label += line.name;
        label.append(name_width - line.name.size(), ' ');
        console::write(label + "= ");
        console::print_yes_no(features.*line.present);
    }
}

}  // namespace

void print_features(const ProcessorFeatures& features) {
    print_section("CPU Vendor:", vendors, features);
    print_section("OS Features:", system_features, features);
    print_section("Hardware Features:", general_features, features);
    print_section("SIMD: 128-bit", features_of_128_bits, features);
    print_section("SIMD: 256-bit", features_of_256_bits, features);
    print_section("SIMD: 512-bit", features_of_512_bits, features);
}

void print_features() {
    print_features(processor_features());
}

}  // namespace qmp
