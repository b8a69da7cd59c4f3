// What the catalogue prints and asks.
#include <gtest/gtest.h>

#include "constants/catalogue.h"
#include "constants/log_generator.h"
#include "support/console.h"
#include "support/standard_streams.h"

namespace kelvara {
namespace {

using kelvara_test::FedInput;
using kelvara_test::printed_by;

TEST(ConstantMenu, ShowsTheListAndMakesTheChoice) {
    std::unique_ptr<Constant> chosen;
    const std::string text = printed_by([&] {
        FedInput input("10\n-1\n3\n");
        chosen = ask_constant();
    });
    ASSERT_TRUE(chosen);
    EXPECT_EQ(chosen->id(), 3u);
    EXPECT_EQ(text,
              "Compute a Constant: (in ascending order of difficulty to compute)\n\n"
              "#         Constant                      Value        Approximate Difficulty*\n\n"
              "Fast Constants:\n"
              "  0         Sqrt(n)                                         1.42\n"
              "  1         Golden Ratio                = 1.618034...       1.42\n\n"
              "Moderate Constants:\n"
              "  2         e                           = 2.718281...       4.02 / 4.02\n"
              "  3         Pi                          = 3.141592...       12.8 / 19.0\n"
              "  4         ArcCoth(n)                                      6.25 - 72.8\n"
              "  5         Log(n)                                        > 34.2\n"
              "  6         Zeta(3) (Apery's Constant)  = 1.202056...       61.9 / 64.8\n"
              "  7         Lemniscate                  = 5.244115...       121. / 150.\n\n"
              "Slow Constants:\n"
              "  8         Catalan's Constant          = 0.915965...       279. / 313.\n"
              "  9         Euler-Mascheroni Constant   = 0.577215...       355. / 528.\n\n"
              "*Actual numbers will vary. Radix conversion = 1.00\n\n"
              "Enter your choice:\n"
              "option: option: option: \n");
}

TEST(ConstantMenu, AsksForTheArgument) {
    std::unique_ptr<Constant> chosen;
    const std::string text = printed_by([&] {
        FedInput input("4\n1\n4294967296\n239\n");
        chosen = ask_constant();
    });
    EXPECT_EQ(chosen->short_name(), "ArcCoth(239)");
    EXPECT_NE(text.find("option: \nArcCoth(n)\nn = n = n = "), std::string::npos) << text;
}

TEST(ArgumentPrompt, RefusesPerfectSquares) {
    const auto root = make_constant(id_square_root);
    const std::string text = printed_by([&] {
        FedInput input("1\n16\n18446744073709551616\n18446744073709551615\n");
        root->ask_argument();
    });
    EXPECT_EQ(text,
              "Square Root of n\nn = n = This number is a perfect square.\n"
              "Please choose something more interesting :)\nn = n = ");
    EXPECT_EQ(*root->argument(), UINT64_MAX);
}

TEST(ArgumentPrompt, OfTheOthers) {
    const auto brent = make_constant(id_euler_gamma_override);
    EXPECT_EQ(printed_by([&] {
                  FedInput input("64\n12\n");
                  brent->ask_argument();
              }),
              "n = 2^k\nk = k = ");
    EXPECT_EQ(*brent->argument(), 12u);
    const auto pi = make_constant(id_pi);
    EXPECT_EQ(printed_by([&] { pi->ask_argument(); }), "");
}

// The formulas are generated as soon as the argument is known, and shown by the menu.
TEST(ArgumentPrompt, OfLogarithmsGeneratesFormulas) {
    const auto log = make_constant(id_log);
    std::string text = printed_by([&] {
        FedInput input("2147483648\n1\n-5\n1001\n");
        log->ask_argument();
    });
    EXPECT_EQ(text.find("Log(n)\nn = n = n = n = Generating Primary Formula...       "), 0u) << text;
    EXPECT_NE(text.find(" seconds\nGenerating Secondary Formula...     "), std::string::npos) << text;
    EXPECT_EQ(log->full_name(), "Log(1001)");

    const LogFormulas formulas = log_formulas(1001, log_units(100));
    const auto entry = [](const char* number, const LogFormula& formula) {
        return number + printed_by([&] { print_log_formula(1001, formula, log_units(12345)); });
    };
    log->set_size(12345);
    text = printed_by([&] {
        FedInput input("2\n1\n");
        log->ask_algorithm();
    });
    EXPECT_EQ(text, "Select an Algorithm:\n\n" + entry("   0    ", formulas.primary) +
                        entry("   1    ", formulas.secondary) + "\nAlgorithm: Algorithm: ");
    EXPECT_EQ(log->algorithm(), 1u);
}

struct AlgorithmMenu {
    ConstantId id;
    const char* text;
    std::uint32_t highest;
};

TEST(AlgorithmMenus, AreAsTheyRead) {
    const AlgorithmMenu menus[] = {
        {id_square_root,
         "   0    1st order Newton's Method\n\n"
         "There are no alternate formulas for square roots. To verify sqrt(n),\n"
         "compute sqrt(100*n) instead. The digits will be the same, but shifted\n"
         "over by one digit.\n\n",
         0},
        {id_golden_ratio,
         "   0    1st order Newton's Method\n\n"
         "There is no alternate formula for Golden Ratio. However, a verification\n"
         "can be done by computing sqrt(125) instead. The digits will be the same,\n"
         "but shifted over by one digit.\n\n",
         0},
        {id_e, "   0    Taylor Series of exp(1)\n   1    Taylor Series of exp(-1)   (same speed)\n\n", 1},
        // The note mentions what the menu does not offer.
        {id_pi,
         "   0    Chudnovsky Formula      (fastest)\n   1    Ramanujan's Formula     (~40% slower)\n\n"
         "    Reduced memory algorithms use alternate parameters that require less\n"
         "    memory at the cost of decreased performance.\n\n",
         1},
        {id_arccoth,
         "   0    Taylor Series of ArcCoth(x)\n\nThere are no alternate formulas for this constant.\n\n", 0},
        {id_zeta3,
         "   0    Amdeberhan-Zeilberger Formula (long)    (fastest)\n"
         "   1    Amdeberhan-Zeilberger Formula (short)   (slightly slower)\n\n",
         1},
        {id_lemniscate,
         "   0    Gauss Formula       (fastest)\n"
         "        Lemniscate = 8 * ArcSinlemn(1/2) + 4 * ArcSinLemn(7/23)\n"
         "   1    Sebah's Formula     (20% slower)\n"
         "        Lemniscate = 8 * ArcSinlemn(2/3) - 4 * ArcSinLemn(7/137)\n\n",
         1},
        {id_catalan, "   0    Lupas Formula       (fastest)\n   1    Huvent's Formula    (20% slower)\n\n",
         1},
        {id_euler_gamma,
         "   0    Brent-McMillan with Refinement ( n = 2^10 )\n   1    Brent-McMillan ( n = 2^11 )\n\n", 1},
        {id_euler_gamma_override,
         "   0    Brent-McMillan with Refinement ( n = 2^-1 )\n   1    Brent-McMillan ( n = 2^0 )\n\n", 1},
    };
    for (const AlgorithmMenu& menu : menus) {
        const auto constant = make_constant(menu.id);
        const std::string text = printed_by([&] {
            const std::string highest = std::to_string(menu.highest);
            FedInput input(std::to_string(menu.highest + 1) + "\n" + highest + "\n");
            constant->ask_algorithm();
        });
        EXPECT_EQ(text, std::string("Select an Algorithm:\n\n") + menu.text + "Algorithm: Algorithm: ");
        EXPECT_EQ(constant->algorithm(), menu.highest);
    }
}

TEST(AlgorithmMenus, FollowTheSizeOfEulersConstant) {
    const auto gamma = make_constant(id_euler_gamma);
    gamma->set_size(1000);  // x = 11100.35..., k = 14
    std::string text = printed_by([&] {
        FedInput input("0\n");
        gamma->ask_algorithm();
    });
    EXPECT_NE(text.find("( n = 2^13 )\n   1    Brent-McMillan ( n = 2^14 )\n"), std::string::npos) << text;
    // The user's own exponent stays.
    const auto brent = make_constant(id_euler_gamma_override);
    brent->set_argument(20);
    brent->set_size(1000);
    text = printed_by([&] {
        FedInput input("0\n");
        brent->ask_algorithm();
    });
    EXPECT_NE(text.find("( n = 2^19 )\n   1    Brent-McMillan ( n = 2^20 )\n"), std::string::npos) << text;
}

TEST(Settings, ArePrinted) {
    const auto pi = make_constant(id_pi);
    pi->set_algorithm(2);
    EXPECT_EQ(printed_by([&] { pi->print_settings(); }), "Algorithm         : chudnovsky-reduced\n");
    const auto arccoth = make_constant(id_arccoth);
    arccoth->set_argument(57);
    EXPECT_EQ(printed_by([&] { arccoth->print_settings(); }),
              "Argument          : 57\nAlgorithm         : series\n");
}

}  // namespace
}  // namespace kelvara
