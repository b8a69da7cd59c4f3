#include "multiply/algorithm_table.h"

#include <gtest/gtest.h>

#include <string>

#include "errors/exception.h"
#include "support/console.h"

namespace {

using qmp::AlgorithmTable;
using qmp::find_algorithm;
using qmp::WordKind;

constexpr WordKind all_kinds[] = {WordKind::basic32, WordKind::basic64, WordKind::swap32, WordKind::swap64};

TEST(AlgorithmRegistry, Basecase) {
    bool known = false;
    EXPECT_STREQ(find_algorithm("BKT", WordKind::basic64, &known)->key, "BKT");
    EXPECT_TRUE(known);
    EXPECT_NE(find_algorithm("BKT", WordKind::basic32), nullptr);
    EXPECT_NE(find_algorithm("BKT", WordKind::basic32), find_algorithm("BKT", WordKind::basic64));
    EXPECT_EQ(find_algorithm("BKT", WordKind::swap32), nullptr);
    EXPECT_EQ(find_algorithm("BKT", WordKind::swap64), nullptr);
}

TEST(AlgorithmRegistry, FloatingPointTransforms) {
    EXPECT_STREQ(find_algorithm("FFT", WordKind::basic64)->key, "FFT");
    EXPECT_STREQ(find_algorithm("FFT", WordKind::basic32)->key, "FFT");
    EXPECT_EQ(find_algorithm("FFT", WordKind::swap32), nullptr);
    EXPECT_EQ(find_algorithm("FFT", WordKind::swap64), nullptr);
}

TEST(AlgorithmRegistry, AKnownKeyMayHaveNoAlgorithm) {
    for (WordKind kind : all_kinds) {
        bool known = false;
        EXPECT_EQ(find_algorithm("C17", kind, &known), nullptr);
        EXPECT_TRUE(known);
    }
}

TEST(AlgorithmRegistry, UnknownKey) {
    for (WordKind kind : all_kinds) {
        bool known = true;
        EXPECT_EQ(find_algorithm("XYZ", kind, &known), nullptr);
        EXPECT_FALSE(known);
    }
}

TEST(AlgorithmTable, TheProgramsTables) {
    EXPECT_EQ(qmp::basic_table_32().name(), "Basic: 32-bit Word");
    EXPECT_EQ(qmp::basic_table_64().name(), "Basic: 64-bit Word");
    EXPECT_EQ(qmp::swap_table_32().name(), "Swap: 32-bit Word");
    EXPECT_EQ(qmp::swap_table_64().name(), "Swap: 64-bit Word");
    EXPECT_EQ(qmp::basic_table_32().word_bits(), 32u);
    EXPECT_EQ(qmp::basic_table_64().word_bits(), 64u);
    EXPECT_EQ(qmp::swap_table_32().word_bits(), 32u);
    EXPECT_EQ(qmp::swap_table_64().word_bits(), 64u);
    // Every entry of the lists made it into the tables, at its bits.
    for (const AlgorithmTable* table : {&qmp::basic_table_32(), &qmp::basic_table_64()}) {
        ASSERT_EQ(table->entries().size(), qmp::basic_algorithm_list().size());
        for (std::size_t i = 0; i < table->entries().size(); ++i) {
            EXPECT_STREQ(table->entries()[i].algorithm->key, qmp::basic_algorithm_list()[i].key);
            EXPECT_EQ(table->entries()[i].threshold,
                      qmp::basic_algorithm_list()[i].bits / table->word_bits());
        }
    }
    EXPECT_EQ(qmp::swap_table_32().entries().size(), qmp::swap_algorithm_list().size());
    EXPECT_EQ(qmp::swap_table_64().entries().size(), qmp::swap_algorithm_list().size());
}

TEST(AlgorithmTable, LookupAtTheEdges) {
    const AlgorithmTable& table = qmp::basic_table_64();
    ASSERT_GE(table.entries().size(), 1u);
    EXPECT_EQ(table.entries()[0].threshold, 58u);
    EXPECT_EQ(qmp::basic_table_32().entries()[0].threshold, 116u);
    EXPECT_STREQ(table.get_algorithm(1).key, "BKT");
    EXPECT_STREQ(table.get_algorithm(58).key, "BKT");
    EXPECT_STREQ(table.get_algorithm(59).key, "FFT");
    EXPECT_STREQ(table.get_algorithm(10240).key, "FFT");
    EXPECT_STREQ(table.get_algorithm(10241).key, "VST");
    EXPECT_STREQ(table.get_algorithm(5153960755200).key, "VST");
    EXPECT_EQ(table.largest_product(), table.entries().back().threshold);
    for (std::size_t i = 0; i + 1 < table.entries().size(); ++i) {
        EXPECT_EQ(&table.get_algorithm(table.entries()[i].threshold), table.entries()[i].algorithm);
        EXPECT_EQ(&table.get_algorithm(table.entries()[i].threshold + 1), table.entries()[i + 1].algorithm);
    }
}

template <typename Run>
void expect_limit_exceeded(const char* function, std::uint64_t attempted, Run run) {
    try {
        run();
        ADD_FAILURE() << function;
    } catch (const qmp::LimitExceededException& exception) {
        EXPECT_EQ(exception.function(), function);
        EXPECT_EQ(exception.limit(), 0u);
        EXPECT_EQ(exception.attempted(), attempted);
    }
}

TEST(AlgorithmTable, BeyondTheLastEntry) {
    const AlgorithmTable& table = qmp::basic_table_64();
    const std::uint64_t n = table.largest_product() + 1;
    expect_limit_exceeded("AlgorithmTable::get_algorithm()", n, [&] { table.get_algorithm(n); });
    expect_limit_exceeded("AlgorithmTableB::iPsize()", n, [&] { table.iPsize(n, 1); });
    const AlgorithmTable empty("Empty", WordKind::swap64, {});
    EXPECT_EQ(empty.largest_product(), 0u);
    expect_limit_exceeded("AlgorithmTable::get_algorithm()", 1, [&] { empty.get_algorithm(1); });
    expect_limit_exceeded("AlgorithmTableS::iPsize()", 1, [&] { empty.iPsize(1, 1); });
}

TEST(AlgorithmTable, UnknownKeysAreSkipped) {
    const std::string text = kelvara_test::printed_by([] {
        const AlgorithmTable table("Some table", WordKind::basic64, {{"XYZ", 64}, {"BKT", 128}});
        ASSERT_EQ(table.entries().size(), 1u);
        EXPECT_EQ(table.entries()[0].threshold, 2u);
    });
    EXPECT_EQ(text, "\nSkipping unknown algorithm: XYZ\n");
}

TEST(AlgorithmTable, UnsupportedWordKindsAreSkipped) {
    const std::string text = kelvara_test::printed_by([] {
        const AlgorithmTable table("Swap: 64-bit Word", WordKind::swap64, {{"BKT", 3712}, {"C17", 4096}});
        EXPECT_TRUE(table.entries().empty());
    });
    EXPECT_EQ(text,
              "\nWarning: BKT does not support: \"Swap: 64-bit Word\"\n"
              "\nWarning: C17 does not support: \"Swap: 64-bit Word\"\n");
}

template <typename Run>
void expect_refused(const char* message, Run run) {
    try {
        run();
        ADD_FAILURE() << message;
    } catch (const qmp::StringException& exception) {
        EXPECT_EQ(exception.function(), "AlgorithmTable::add()");
        EXPECT_EQ(exception.message(), message);
    }
}

TEST(AlgorithmTable, ThresholdsMustIncrease) {
    const char* message = "Thresholds must be increasing.";
    expect_refused(message, [] { AlgorithmTable("T", WordKind::basic64, {{"BKT", 3712}, {"BKT", 3712}}); });
    expect_refused(message, [] { AlgorithmTable("T", WordKind::basic64, {{"BKT", 3712}, {"BKT", 3711}}); });
    // The same number of words, too.
    expect_refused(message, [] { AlgorithmTable("T", WordKind::basic64, {{"BKT", 3712}, {"BKT", 3775}}); });
    const AlgorithmTable increasing("T", WordKind::basic64, {{"BKT", 3712}, {"BKT", 3776}});
    EXPECT_EQ(increasing.entries().size(), 2u);
}

TEST(AlgorithmTable, ThresholdsWithinTheAlgorithmsMaximum) {
    const char* message = "Thresholds is larger than maximum size.";
    expect_refused(message, [] { AlgorithmTable("T", WordKind::basic64, {{"BKT", 65600}}); });
    expect_refused(message, [] { AlgorithmTable("T", WordKind::basic32, {{"BKT", 65568}}); });
    EXPECT_EQ(AlgorithmTable("T", WordKind::basic64, {{"BKT", 65536}}).largest_product(), 1024u);
    // Bits that would not fit in 64.
    AlgorithmTable table("T", WordKind::basic64, {});
    expect_refused(message,
                   [&] { table.add(std::uint64_t{1} << 58, find_algorithm("BKT", WordKind::basic64)); });
    table.add(10, nullptr);
    EXPECT_TRUE(table.entries().empty());
}

TEST(AlgorithmTable, ScratchNeverDecreasesAndServesSmallerEntries) {
    // The second entry alone would need less just above the first one's threshold.
    const AlgorithmTable& table = qmp::basic_table_64();
    for (std::uint64_t tasks : {1, 8}) {
        std::uint64_t previous = 0;
        for (std::uint64_t n = 1; n <= table.largest_product(); n += n < 300 ? 1 : std::max<std::uint64_t>(13, n / 50)) {
            const std::uint64_t bytes = table.iPsize(n, tasks);
            ASSERT_GE(bytes, previous) << n;
            ASSERT_GE(bytes, table.get_algorithm(n).psize(n, tasks)) << n;
            previous = bytes;
        }
        for (const AlgorithmTable::Entry& entry : table.entries()) {
            EXPECT_GE(table.iPsize(table.largest_product(), tasks),
                      entry.algorithm->psize(entry.threshold, tasks));
        }
    }
}

// Two algorithms of made-up needs show which lengths are asked.
class MadeUp final : public qmp::Algorithm {
  public:
    MadeUp(std::uint64_t constant, std::uint64_t factor)
        : Algorithm(1 << 20, "MAD", "Made Up", "1", ""), constant_(constant), factor_(factor) {}
    std::uint64_t psize(std::uint64_t n, std::uint64_t tasks) const override {
        return constant_ + factor_ * n * tasks;
    }
    std::uint64_t psize_halved(std::uint64_t n, std::uint64_t tasks) const override {
        return psize(n, tasks) + (n == 77 ? 1 : 0);
    }

  private:
    std::uint64_t constant_;
    std::uint64_t factor_;
};

TEST(AlgorithmTable, ScratchIsTheMaximumOfTheEntriesBelowAtTheirThresholds) {
    const MadeUp hungry(1000, 10);
    const MadeUp frugal(0, 11);
    const MadeUp unused(1000000, 0);
    AlgorithmTable table("T", WordKind::basic64, {});
    table.add(50, &hungry);
    table.add(200, &frugal);
    table.add(300, &unused);
    EXPECT_EQ(table.iPsize(50, 1), 1500u);
    EXPECT_EQ(table.iPsize(51, 1), 1500u);
    EXPECT_EQ(table.iPsize(77, 1), 1500u);
    EXPECT_EQ(table.iPsize(200, 1), 2200u);
    EXPECT_EQ(table.iPsize(200, 2), 4400u);
    EXPECT_EQ(table.iPsize(77, 2), 2000u);
    EXPECT_EQ(table.iPsize(77, 3), 11u * 77 * 3 + 1);
}

}  // namespace
