// Whole sessions against reference digits: every algorithm of a constant, exact files.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "constants/catalogue.h"
#include "platform/sha256.h"
#include "sessions/ram_session.h"
#include "sessions/ram_settings.h"
#include "support/folder.h"
#include "support/reference_digits.h"

namespace kelvara {
namespace {

using kelvara_test::TemporaryFolder;

struct Algorithm {
    const char* constant;
    const char* keyword;
    const char* file_name;  // between the constant's name and the radix, and the end
};

constexpr Algorithm algorithms[] = {
    {"pi", "chudnovsky", "Chudnovsky"},
    {"pi", "ramanujan", "Ramanujan"},
    {"pi", "chudnovsky-reduced", "Chudnovsky"},
    {"pi", "ramanujan-reduced", "Ramanujan"},
    {"e", "exp(1)", "exp(1)"},
    {"e", "exp(-1)", "exp(-1)"},
};

std::string file_content(const std::string& path) {
    std::ifstream file(std::filesystem::path(path), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

struct Outcome {
    std::string decimal;
    std::string hexadecimal;
    qmp::DigitOutput decimal_output;
    qmp::DigitOutput hexadecimal_output;
};

Outcome run_session(const Algorithm& algorithm, std::uint64_t digits, std::uint64_t tasks,
                    const char* framework) {
    TemporaryFolder folder;
    RamSettings settings;
    settings.set_constant(make_constant(constant_id(algorithm.constant)));
    settings.set_algorithm(algorithm.keyword);
    settings.set_decimal_digits(digits);
    settings.set_framework(framework);
    settings.set_task_decomposition(tasks);
    settings.output_path = folder.path();
    settings.check();
    RamSession session(settings);
    session.run();
    const std::string name = settings.constant().short_name();
    const std::string end = std::string(" - ") + algorithm.file_name + ".txt";
    return {file_content(folder.path(name + " - Dec" + end)),
            file_content(folder.path(name + " - Hex" + end)), session.record().decimal,
            session.record().hexadecimal};
}

std::string sha256_of(const std::string& text) {
    qmp::Sha256 digest;
    digest.append({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
    return qmp::to_hexadecimal(digest.finish());
}

class GoldenDigits : public testing::TestWithParam<Algorithm> {};

TEST_P(GoldenDigits, FilesMatchTheReference) {
    for (const std::uint64_t digits : {100, 1000, 10000, 100000, 1000000}) {
        SCOPED_TRACE(digits);
        const auto reference = kelvara_test::reference_digits(GetParam().constant, digits);
        const Outcome result = run_session(GetParam(), digits, 2, "pushpool");
        EXPECT_EQ(sha256_of(result.decimal), reference.sha256);
        EXPECT_EQ(sha256_of(result.hexadecimal), reference.hex_sha256);
        EXPECT_EQ(result.decimal_output.hash, reference.hash);
        EXPECT_EQ(result.hexadecimal_output.digits, reference.hex_digits);
        const std::string& last = result.decimal_output.last_digits;
        EXPECT_EQ(last.substr(last.size() - 50), reference.last50);
        std::string counts;
        for (int digit = 0; digit < 10; ++digit) {
            counts += (digit ? " " : "") + std::to_string(result.decimal_output.counts[digit]);
        }
        EXPECT_EQ(counts, reference.digit_counts);
    }
}

INSTANTIATE_TEST_SUITE_P(EveryAlgorithm, GoldenDigits, testing::ValuesIn(algorithms), [](const auto& test) {
    std::string name = std::string(test.param.constant) + "_" + test.param.keyword;
    for (char& c : name) {
        if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
    }
    return name;
});

TEST(SessionDigits, DoNotDependOnTasksOrFramework) {
    const Algorithm pi = algorithms[0];
    const Algorithm e = algorithms[4];
    for (const Algorithm& algorithm : {pi, e}) {
        const Outcome first = run_session(algorithm, 20000, 1, "none");
        for (const char* framework : {"none", "pushpool"}) {
            for (const std::uint64_t tasks : {1, 2, 7, 64}) {
                SCOPED_TRACE(testing::Message() << algorithm.constant << " " << framework << " " << tasks);
                const Outcome other = run_session(algorithm, 20000, tasks, framework);
                EXPECT_TRUE(other.decimal == first.decimal);
                EXPECT_TRUE(other.hexadecimal == first.hexadecimal);
            }
        }
    }
}

TEST(SessionDigits, TwoAlgorithmsAgreeAtFiftyThousandDigits) {
    const Outcome chudnovsky = run_session(algorithms[0], 50000, 2, "pushpool");
    const Outcome ramanujan = run_session(algorithms[1], 50000, 2, "pushpool");
    EXPECT_EQ(chudnovsky.decimal.size(), 50002u);
    EXPECT_TRUE(chudnovsky.decimal == ramanujan.decimal);
    EXPECT_TRUE(chudnovsky.hexadecimal == ramanujan.hexadecimal);
    const Outcome plus = run_session(algorithms[4], 50000, 2, "pushpool");
    const Outcome minus = run_session(algorithms[5], 50000, 2, "pushpool");
    EXPECT_TRUE(plus.decimal == minus.decimal);
}

}  // namespace
}  // namespace kelvara
