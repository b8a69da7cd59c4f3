#include "constants/catalogue.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "errors/exception.h"

namespace kelvara {
namespace {

template <typename Call>
std::string refusal(Call&& call) {
    try {
        call();
    } catch (const qmp::InvalidParametersException& e) {
        return e.message();
    }
    return "";
}

TEST(Catalogue, HasAnObjectForEveryId) {
    for (std::uint32_t id = 0; id < constant_count; id++) {
        const auto constant = make_constant(id);
        ASSERT_TRUE(constant);
        EXPECT_EQ(constant->id(), id);
        EXPECT_EQ(constant->key(), constant_key(id));
        EXPECT_EQ(constant_id(constant->key()), id);
        EXPECT_EQ(constant->max_digits(), 1000000000000050u);
        EXPECT_EQ(constant->size(), 100u);
        EXPECT_EQ(constant->algorithm(), 0u);
    }
    EXPECT_FALSE(make_constant(constant_count));
    EXPECT_FALSE(make_constant(UINT32_MAX));
    EXPECT_EQ(constant_key(constant_count), "");
}

TEST(Catalogue, ReadsAndWritesKeys) {
    const std::vector<std::string> written = {"sqrt",    "goldenratio", "e",       "pi",    "arccoth", "log",
                                              "zeta(3)", "lemniscate",  "catalan", "gamma", "brent"};
    for (std::uint32_t id = 0; id < constant_count; id++) EXPECT_EQ(constant_key(id), written[id]);
    for (const char* key : {"zeta3", "zeta(3)", "apery"}) EXPECT_EQ(constant_id(key), 6u);
    for (const char* key : {"phi", "goldenratio"}) EXPECT_EQ(constant_id(key), 1u);
    EXPECT_EQ(refusal([] { constant_id("tau"); }), "Invalid Constant: tau");
    EXPECT_EQ(refusal([] { constant_id("Pi"); }), "Invalid Constant: Pi");
    EXPECT_EQ(refusal([] { constant_id(""); }), "Invalid Constant: ");
}

TEST(Catalogue, NamesAndColours) {
    struct Row {
        const char* short_name;
        const char* full_name;
        int colour;
    };
    const Row rows[] = {
        {"Sqrt(2)", "Sqrt(2)", 80},
        {"Golden Ratio", "Golden Ratio", 80},
        {"e", "e", 71},
        {"Pi", "Pi", 71},
        {"ArcCoth(2)", "ArcCoth(2)", 80},
        {"Log(2)", "Log(2)", 71},
        {"Zeta(3)", "Zeta(3) - Apery's Constant", 71},
        {"Lemniscate", "Lemniscate Constant", 71},
        {"Catalan", "Catalan's Constant", 66},
        {"Euler's Constant", "Euler-Mascheroni Constant", 66},
        {"Euler's Constant", "Euler-Mascheroni Constant (parameter override)", 66},
    };
    for (std::uint32_t id = 0; id < constant_count; id++) {
        const auto constant = make_constant(id);
        EXPECT_EQ(constant->short_name(), rows[id].short_name);
        EXPECT_EQ(constant->full_name(), rows[id].full_name);
        EXPECT_EQ(constant->colour(), rows[id].colour);
    }
}

TEST(Catalogue, AlgorithmsByKeyword) {
    struct Row {
        std::uint32_t id;
        std::uint32_t index;
        const char* keyword;
        const char* short_name;
        const char* long_name;
    };
    const Row rows[] = {
        {0, 0, "newton", "Newton", "Newton's Method"},
        {1, 0, "newton", "Newton", "Newton's Method"},
        {2, 0, "exp(1)", "exp(1)", "Taylor Series of exp(1)"},
        {2, 1, "exp(-1)", "exp(-1)", "Taylor Series of exp(-1)"},
        {3, 0, "chudnovsky", "Chudnovsky", "Chudnovsky Formula"},
        {3, 1, "ramanujan", "Ramanujan", "Ramanujan's Formula"},
        {3, 2, "chudnovsky-reduced", "Chudnovsky", "Chudnovsky Formula (reduced memory)"},
        {3, 3, "ramanujan-reduced", "Ramanujan", "Ramanujan's Formula (reduced memory)"},
        {4, 0, "series", "Taylor", "Taylor Series"},
        {5, 0, "machin-primary", "Machin (primary)", nullptr},
        {5, 1, "machin-secondary", "Machin (secondary)", nullptr},
        {6, 0, "az-long", "AZ (long)", "Amdeberhan-Zeilberger (long)"},
        {6, 1, "az-short", "AZ (short)", "Amdeberhan-Zeilberger (short)"},
        {7, 0, "gauss", "Gauss", "Gauss Formula"},
        {7, 1, "sebah", "Sebah", "Sebah's formula"},
        {8, 0, "lupas", "Lupas", "Lupas Formula"},
        {8, 1, "huvent", "Huvent", "Huvent's Formula"},
        {9, 0, "brent-refined", "Brent-McMillan (refined)", "Brent-McMillan with Refinement"},
        {9, 1, "brent-original", "Brent-McMillan", "Brent-McMillan"},
        {10, 0, "brent-refined", "Brent-McMillan (refined)", "Brent-McMillan with Refinement"},
        {10, 1, "brent-original", "Brent-McMillan", "Brent-McMillan"},
    };
    std::vector<std::uint32_t> counts(constant_count);
    for (const Row& row : rows) {
        const auto constant = make_constant(row.id);
        constant->set_algorithm_keyword(row.keyword);
        EXPECT_EQ(constant->algorithm(), row.index);
        ASSERT_TRUE(constant->algorithm_info());
        EXPECT_STREQ(constant->algorithm_info()->keyword, row.keyword);
        EXPECT_STREQ(constant->algorithm_info()->short_name, row.short_name);
        if (row.long_name) {
            EXPECT_STREQ(constant->algorithm_info()->long_name, row.long_name);
        }
        counts[row.id]++;
    }
    for (std::uint32_t id = 0; id < constant_count; id++) {
        EXPECT_EQ(make_constant(id)->info().algorithms.size(), counts[id]);
    }
}

TEST(Catalogue, AlgorithmsByDigitAreTheFirstTwoOnly) {
    for (std::uint32_t id = 0; id < constant_count; id++) {
        const auto constant = make_constant(id);
        const bool second = constant->info().algorithms.size() > 1;
        if (second) {
            constant->set_algorithm_keyword("1");
            EXPECT_EQ(constant->algorithm(), 1u);
        } else {
            EXPECT_EQ(refusal([&] { constant->set_algorithm_keyword("1"); }), "Invalid Algorithm: 1");
        }
        constant->set_algorithm_keyword("0");
        EXPECT_EQ(constant->algorithm(), 0u);
        for (const char* keyword : {"2", "3", "00", "", "Newton", "taylor"}) {
            EXPECT_EQ(refusal([&] { constant->set_algorithm_keyword(keyword); }),
                      "Invalid Algorithm: " + std::string(keyword));
        }
        EXPECT_EQ(constant->algorithm(), 0u);  // a refusal changes nothing
    }
    const auto pi = make_constant(id_pi);
    pi->set_algorithm_keyword("chudnovsky-reduced");
    EXPECT_EQ(pi->algorithm(), 2u);
}

TEST(Catalogue, ArgumentRanges) {
    const auto root = make_constant(id_square_root);
    EXPECT_EQ(refusal([&] { root->set_argument(1); }), "1 is out of range.");
    EXPECT_EQ(refusal([&] { root->set_argument(0); }), "0 is out of range.");
    EXPECT_EQ(refusal([&] { root->set_argument(16); }), "16 is a perfect square.");
    EXPECT_EQ(refusal([&] { root->set_argument(18446744065119617025u); }),
              "18446744065119617025 is a perfect square.");
    EXPECT_EQ(*root->argument(), 2u);
    root->set_argument(15);
    EXPECT_EQ(root->short_name(), "Sqrt(15)");
    root->set_argument(UINT64_MAX);
    EXPECT_EQ(root->full_name(), "Sqrt(18446744073709551615)");

    const auto arccoth = make_constant(id_arccoth);
    arccoth->set_argument(4294967295u);
    EXPECT_EQ(arccoth->short_name(), "ArcCoth(4294967295)");
    EXPECT_EQ(refusal([&] { arccoth->set_argument(4294967296u); }), "4294967296 is out of range.");
    EXPECT_EQ(refusal([&] { arccoth->set_argument(1); }), "1 is out of range.");

    const auto log = make_constant(id_log);
    log->set_argument(2147483647u);
    EXPECT_EQ(log->short_name(), "Log(2147483647)");
    EXPECT_EQ(refusal([&] { log->set_argument(2147483648u); }), "2147483648 is out of range.");

    const auto brent = make_constant(id_euler_gamma_override);
    brent->set_argument(63);
    EXPECT_EQ(*brent->argument(), 63u);
    brent->set_argument(0);
    EXPECT_EQ(refusal([&] { brent->set_argument(64); }), "64 is a out of range.");
    EXPECT_EQ(*brent->argument(), 0u);

    const auto pi = make_constant(id_pi);
    pi->set_argument(7);
    EXPECT_FALSE(pi->argument());
}

TEST(Catalogue, ClonesAreIndependent) {
    for (std::uint32_t id = 0; id < constant_count; id++) {
        const auto original = make_constant(id);
        original->set_size(12345);
        original->set_algorithm(1);
        original->set_argument(7);
        const auto copy = original->clone();
        EXPECT_EQ(copy->id(), id);
        EXPECT_EQ(copy->size(), 12345u);
        EXPECT_EQ(copy->algorithm(), 1u);
        EXPECT_EQ(copy->argument(), original->argument());
        copy->set_argument(11);
        copy->set_algorithm(0);
        EXPECT_EQ(original->algorithm(), 1u);
        if (original->argument()) {
            EXPECT_EQ(*original->argument(), 7u);
        }
    }
}

TEST(Catalogue, AnAlgorithmOutOfRangeMakesNoComputation) {
    for (std::uint32_t id = 0; id < constant_count; id++) {
        const auto constant = make_constant(id);
        constant->set_algorithm(static_cast<std::uint32_t>(constant->info().algorithms.size()));
        EXPECT_FALSE(constant->make_ram_computation(1));
        EXPECT_FALSE(constant->algorithm_info());
    }
}

}  // namespace
}  // namespace kelvara
