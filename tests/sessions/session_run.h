// A whole session in a folder of its own, and what it leaves.
#pragma once

#include <gtest/gtest.h>

#include <cctype>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

#include "constants/catalogue.h"
#include "sessions/ram_session.h"
#include "sessions/ram_settings.h"
#include "support/folder.h"
#include "support/working_folder.h"

namespace kelvara_test {

struct Algorithm {
    const char* constant;  // key of the catalogue
    const char* keyword;
    const char* file_name;  // of the algorithm, in the digit files' names
    std::uint64_t argument = 0;  // of the constants that have one
};

constexpr Algorithm pi_and_e[] = {
    {"pi", "chudnovsky", "Chudnovsky"},
    {"pi", "ramanujan", "Ramanujan"},
    {"pi", "chudnovsky-reduced", "Chudnovsky"},
    {"pi", "ramanujan-reduced", "Ramanujan"},
    {"e", "exp(1)", "exp(1)"},
    {"e", "exp(-1)", "exp(-1)"},
};

inline void PrintTo(const Algorithm& algorithm, std::ostream* stream) {
    *stream << algorithm.constant << ", " << algorithm.keyword;
}

// "pi_chudnovsky_reduced", for test names.
inline std::string algorithm_test_name(const testing::TestParamInfo<Algorithm>& info) {
    std::string name = std::string(info.param.constant) + "_" + info.param.keyword;
    if (info.param.argument) name += "_" + std::to_string(info.param.argument);
    for (char& c : name) {
        if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
    }
    return name;
}

struct Outcome {
    std::string decimal;  // the contents of the digit files
    std::string hexadecimal;
    qmp::DigitOutput decimal_output;
    qmp::DigitOutput hexadecimal_output;
    std::string log;
    kelvara::SystemInformation system;
    std::uint64_t working_memory;
    std::uint64_t working_memory_peak;
    std::uint64_t twiddle_memory;
    double reserving_seconds;
    double twiddle_seconds;
};

inline std::string file_content(const std::string& path) {
    std::ifstream file(std::filesystem::path(path), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline Outcome run_session(const Algorithm& algorithm, std::uint64_t digits, std::uint64_t tasks,
                           std::string_view framework, qmp::Progress* observer = nullptr) {
    TemporaryFolder folder;
    // The validation file goes where the program is started.
    const WorkingFolder work(folder.path());
    kelvara::RamSettings settings;
    auto constant = kelvara::make_constant(kelvara::constant_id(algorithm.constant));
    if (algorithm.argument) constant->set_argument(algorithm.argument);
    settings.set_constant(std::move(constant));
    settings.set_algorithm(algorithm.keyword);
    settings.set_decimal_digits(digits);
    settings.set_framework(framework);
    settings.set_task_decomposition(tasks);
    settings.output_path = folder.path();
    settings.check();
    kelvara::RamSession session(settings, observer);
    session.run();
    const std::string name = settings.constant().short_name();
    const std::string end = std::string(" - ") + algorithm.file_name + ".txt";
    const kelvara::SessionRecord& record = session.record();
    return {file_content(folder.path(name + " - Dec" + end)),
            file_content(folder.path(name + " - Hex" + end)),
            record.decimal,
            record.hexadecimal,
            record.log.text(),
            record.system,
            record.working_memory,
            record.working_memory_peak,
            record.twiddle_memory,
            record.reserving_seconds,
            record.twiddle_seconds};
}

}  // namespace kelvara_test
