#include "console/console.h"
#include "console/input.h"
#include "constants/catalogue.h"

namespace kelvara {

namespace console = qmp::console;

namespace {

// Costs are relative to the radix conversion of the result; two figures where there are two algorithms.
void print_menu() {
    console::println("Compute a Constant: (in ascending order of difficulty to compute)", 'w');
    console::newline();
    console::println("#         Constant                      Value        Approximate Difficulty*", ' ');
    console::newline();
    console::println("Fast Constants:", 'w');
    console::println("  0         Sqrt(n)                                         1.42", fast_constant);
    console::println("  1         Golden Ratio                = 1.618034...       1.42", fast_constant);
    console::newline();
    console::println("Moderate Constants:", 'w');
    console::println("  2         e                           = 2.718281...       4.02 / 4.02",
                     moderate_constant);
    console::println("  3         Pi                          = 3.141592...       12.8 / 19.0",
                     moderate_constant);
    console::println("  4         ArcCoth(n)                                      6.25 - 72.8",
                     moderate_constant);
    console::println("  5         Log(n)                                        > 34.2", moderate_constant);
    console::println("  6         Zeta(3) (Apery's Constant)  = 1.202056...       61.9 / 64.8",
                     moderate_constant);
    console::println("  7         Lemniscate                  = 5.244115...       121. / 150.",
                     moderate_constant);
    console::newline();
    console::println("Slow Constants:", 'w');
    console::println("  8         Catalan's Constant          = 0.915965...       279. / 313.",
                     slow_constant);
    console::println("  9         Euler-Mascheroni Constant   = 0.577215...       355. / 528.",
                     slow_constant);
    console::newline();
    console::println("*Actual numbers will vary. Radix conversion = 1.00", 'w');
    console::newline();
}

}  // namespace

std::unique_ptr<Constant> ask_constant() {
    print_menu();
    console::println("Enter your choice:", 'w');
    const std::int64_t choice = console::read_int_in_range("option: ", id_square_root, id_euler_gamma, 'T');
    console::newline();
    std::unique_ptr<Constant> constant = make_constant(static_cast<std::uint32_t>(choice));
    constant->ask_argument();
    return constant;
}

}  // namespace kelvara
