#include "constants/square_root.h"

#include <cmath>

#include "console/console.h"
#include "constants/argument_constant.h"
#include "constants/catalogue_entries.h"
#include "constants/newton_root.h"
#include "errors/exception.h"

namespace kelvara {

namespace console = qmp::console;

// The square root of a perfect square k^2 < 2^64, taken in double precision, is off by less than one half,
// so rounding finds k. The square of a root rounded up to 2^32 wraps to 0, which is no argument.
bool is_perfect_square(std::uint64_t n) {
    const auto root = static_cast<std::uint64_t>(std::llround(std::sqrt(static_cast<double>(n))));
    return root * root == n;
}

namespace {

class SquareRoot final : public ArgumentConstant {
  public:
    SquareRoot() : ArgumentConstant(square_root_info, {2, UINT64_MAX}, "Square Root of n") {}
    std::unique_ptr<Constant> clone() const override { return std::make_unique<SquareRoot>(*this); }

    void set_argument(std::uint64_t value) override {
        if (range().contains(value) && is_perfect_square(value)) {
            throw qmp::InvalidParametersException("", std::to_string(value) + " is a perfect square.");
        }
        ArgumentConstant::set_argument(value);
    }

    void ask_argument() override {
        console::println(heading(), 'w');
        for (;;) {
            const std::uint64_t value = read_argument("n = ", range());
            if (!is_perfect_square(value)) {
                store(value);
                return;
            }
            console::println("This number is a perfect square.", 'w');
            console::println("Please choose something more interesting :)", 'w');
        }
    }

  protected:
    std::unique_ptr<RamComputation> make_computation(std::uint64_t tasks) const override {
        return std::make_unique<SquareRootNewton>(size(), tasks, *argument());
    }
};

constexpr std::string_view keys[] = {"sqrt"};
constexpr AlgorithmInfo algorithms[] = {
    {"newton", "Newton", "Newton's Method", "1st order Newton's Method"},
};
constexpr const char* note[] = {
    "There are no alternate formulas for square roots. To verify sqrt(n),",
    "compute sqrt(100*n) instead. The digits will be the same, but shifted",
    "over by one digit.",
};

std::unique_ptr<Constant> make() {
    return std::make_unique<SquareRoot>();
}

}  // namespace

const ConstantInfo square_root_info = {
    0, keys, "Sqrt", "Sqrt", fast_constant, algorithms, note, make,
};

}  // namespace kelvara
