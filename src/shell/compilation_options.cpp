#include "shell/compilation_options.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "console/console.h"
#include "constants/bbp/levels.h"
#include "multiply/algorithm_table.h"
#include "multiply/kernel_listing.h"
#include "multiply/word.h"
#include "numbers/big_float.h"
#include "numbers/exact_float.h"
#include "platform/build_identity.h"
#include "platform/os/process.h"
#include "platform/toolchain.h"
#include "radix/digit_codecs.h"

namespace kelvara {
namespace {

namespace console = qmp::console;

constexpr std::uint64_t feature_column = 40;
constexpr std::uint64_t usual_column = 24;
constexpr std::uint64_t bbp_column = 32;
// Bytes, of every buffer that kernels work on.
constexpr std::uint64_t data_alignment = 64;
// Words that numbers on disk add to their buffers in memory.
constexpr std::uint64_t swap_float_malloc_extra = 4;

constexpr console::Colour text_colour = 'T';
constexpr console::Colour number_colour = 'Y';
constexpr console::Colour kernel_colour = 'P';

void begin_section(std::string_view heading) {
    console::newline();
    console::println(std::string(64, '='), 'T');
    console::println(heading, 'Y');
    console::println("", 'w');
}

void print_switch(std::uint64_t column, std::string_view label, bool enabled) {
    console::print_column_line(column, label, enabled ? "Enabled" : "Disabled", enabled ? 'G' : 'R');
}

void print_text(std::string_view label, std::string_view value, console::Colour colour = text_colour) {
    console::print_column_line(usual_column, label, value, colour);
}

void print_count(std::uint64_t column, std::string_view label, std::uint64_t count, std::string_view unit) {
    console::print_column_line(column, label, std::to_string(count) + " " + std::string(unit), number_colour);
}

struct Switch {
    std::string_view name;
    bool enabled;
};

constexpr Switch assertions[] = {
    {"Array Overrun Detection", true},
    {"Parameter Assertions", false},
    {"Result Assertions", true},
    {"Alignment Assertions", false},
};

constexpr Switch developer_switches[] = {
    {"Developer Toolbox", false},
    {"Crash Debugging", false},
    {"Catch Exceptions", true},
    {"Allocation Heap Failure Dumps", false},
    {"Swap File Safety Buffer", true},
    {"Print All The Things!!!", false},
    {"Show Memory Breakdowns", false},
    {"Show Disk Usage", false},
    {"Allow Checkpoint Hashfails", false},
    {"Swap Mode without Permissions", false},
    {"Enable SRTv2 Fixup Printing", false},
};

constexpr Switch toggleable_features[] = {
    {"HWBOT Data Files", false},
    {"Integrity Check", true},
    {"Double-Double Float Indexing", false},
    {"Pi - Reduced Memory Mode", false},
    {"EulerGamma Parameter Override", false},
    {"Legacy x86", true},
    {"07-PNR ~ Ombra", false},
    {"08-NHM ~ Pelt", true},
    {"14-BDW ~ Tarn", true},
    {"16-KNL", true},
    {"17-SKX ~ Quill", true},
    {"18-CNL", false},
};

void print_switches(std::string_view heading, std::span<const Switch> switches) {
    console::println(heading);
    for (const Switch& entry : switches) {
        print_switch(feature_column, "    " + std::string(entry.name), entry.enabled);
    }
}

void print_feature_controls() {
    begin_section("Global Feature Controls");
    print_switches("Assertions:", assertions);
    console::newline();
    print_switches("Developer:", developer_switches);
    console::newline();
    print_switches("Toggleable Features*:", toggleable_features);
    console::newline();
    console::println("*Includes experimental, incomplete, and deprecated features.\n");
}

void print_platform_libraries() {
    begin_section("Public Library");
    for (const char* module : {"Console IO", "Time", "File IO"}) {
        print_text(module, qmp::os::system_interface_name());
    }
    begin_section("Internal Libraries");
    print_text("RaidFile", qmp::os::system_interface_name());
}

void print_dependencies() {
    begin_section("External Dependencies and Bundled Apps");
    console::println("Ordalis:");
    for (const qmp::DigitCodec& codec : qmp::digit_codecs()) {
        print_text("    " + std::string(codec.name), codec.instruction_set);
    }
    console::newline();
    console::println("BBP Digit Extractor:");
    std::string_view label = "    Primary Algorithm";
    for (const std::string& kernel : bbp::kernel_names()) {
        console::print_column_line(bbp_column, label, kernel, kernel_colour);
        label = "";
    }
}

void print_program() {
    begin_section("Kelvara");
    print_text("Compilation Mode", "Single Module");
    print_text("Modules Library", "Statically Linked");
    print_switch(usual_column, "InvSqrt Purturb", true);
    print_switch(usual_column, "Reciprocal Purturb", true);
    console::newline();
    console::println("Word Sizes");
    print_count(usual_column, "    cdi Binary Size", 8 * sizeof(qmp::Word), "bits");
    print_count(usual_column, "    cdi Decimal Size", qmp::decimal_digits_per_decimal_word, "digits");
}

void print_algorithm_table(const qmp::AlgorithmTable& table) {
    if (table.entries().empty()) return;
    console::newline();
    console::println(table.name() + ":");
    for (const qmp::AlgorithmTable::Entry& entry : table.entries()) {
        print_count(usual_column, "    " + std::string(entry.algorithm->name), entry.threshold, "words");
    }
}

void print_kernels(const qmp::KernelFamily& family) {
    console::newline();
    console::println(family.name + ":");
    std::string_view label = "    Kernels";
    for (const std::string& kernel : family.kernels) {
        print_text(label, kernel, kernel_colour);
        label = "";
    }
    if (family.specialised_limit_table) print_text("    Sizes", "Specialized Limit Table");
}

void print_basecase() {
    console::newline();
    console::println("MULB_ci:");
    print_text("    Kernels", "x64 Native", kernel_colour);
    for (const qmp::BasecaseKernel& kernel : qmp::basecase_kernels()) {
        print_text("    " + std::string(kernel.entry), kernel.kernel, kernel_colour);
    }
}

void print_multiplication() {
    for (const qmp::AlgorithmTable* table :
         {&qmp::basic_table_32(), &qmp::basic_table_64(), &qmp::swap_table_32(), &qmp::swap_table_64()}) {
        print_algorithm_table(*table);
    }
    print_basecase();
    for (const qmp::KernelFamily& family : qmp::kernel_families()) print_kernels(family);
    console::newline();
    console::println("MULv3:");
    for (const qmp::BasecaseThreshold& threshold : qmp::basecase_thresholds()) {
        print_count(feature_column, "    " + std::string(threshold.name), threshold.words, "iwords");
    }
}

void print_modules_library() {
    begin_section("Modules Library");
    print_text("Build Version", build_version());
    print_text("Target Machine", build_target());
    print_text("Compiler", compiler_name());
    print_text("Version", compiler_version());
    print_text("Compile Date", compile_date());
    console::newline();
    print_count(usual_column, "Pointer Size:", 8 * sizeof(void*), "bits");
    print_count(usual_column, "Index Size:", 8 * sizeof(std::uint64_t), "bits");
    print_count(usual_column, "Data Alignment:", data_alignment, "bytes");
    print_switch(usual_column, "Uber-Tier Algorithms:", true);
    print_multiplication();
}

void print_objects_library() {
    begin_section("Objects Library");
    print_switch(usual_column, "Verbose Status", false);
    console::newline();
    console::println("ExactFloat:");
    print_count(usual_column, "    Basecase clen", qmp::exact_float_basecase_length, "words");
    console::newline();
    console::println("BigFloat:");
    print_count(usual_column, "    Extra Precision", qmp::big_float_extra_precision, "words");
    print_count(usual_column, "    Addition Buffer", qmp::big_float_addition_buffer, "words");
    console::newline();
    console::println("SwapFloat:");
    print_count(usual_column, "    Malloc Extra", swap_float_malloc_extra, "words");
}

}  // namespace

void show_compilation_options() {
    console::println("Like any other program, Kelvara is highly configurable at compile-time.");
    console::println("Below is a partial list of compilation options used for this binary.\n");
    console::reset_color();
    console::pause();
    console::newline();

    print_feature_controls();
    print_platform_libraries();
    print_dependencies();
    print_program();
    print_modules_library();
    print_objects_library();
}

}  // namespace kelvara
