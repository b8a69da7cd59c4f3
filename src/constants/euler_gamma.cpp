#include "constants/euler_gamma.h"

#include <cmath>

#include "console/console.h"
#include "console/input.h"
#include "constants/brent_mcmillan.h"
#include "constants/catalogue_entries.h"
#include "constants/constant.h"
#include "errors/exception.h"
#include "series/series_constants.h"

namespace kelvara {

namespace console = qmp::console;

std::uint32_t brent_mcmillan_exponent(std::uint64_t precision) {
    const double x = static_cast<double>(precision) * qmp::series_constants().ln_word / 4 + 10;
    if (x <= 4) return 2;
    std::uint32_t k = 3;
    while (std::ldexp(1.0, static_cast<int>(k)) < x) k++;
    return k;
}

namespace {

constexpr std::uint32_t largest_exponent = 63;

class EulerGamma : public Constant {
  public:
    EulerGamma() : EulerGamma(euler_gamma_info, brent_mcmillan_exponent(100)) {}
    std::unique_ptr<Constant> clone() const override { return std::make_unique<EulerGamma>(*this); }

    void set_size(std::uint64_t precision) override {
        Constant::set_size(precision);
        exponent_ = brent_mcmillan_exponent(precision);
    }

  protected:
    EulerGamma(const ConstantInfo& info, std::uint32_t exponent) : Constant(info), exponent_(exponent) {}

    // The refined method reaches the same accuracy with half the n.
    std::string menu_label(std::uint32_t index) const override {
        const std::int64_t shown = static_cast<std::int64_t>(exponent_) - (index == 0 ? 1 : 0);
        return Constant::menu_label(index) + " ( n = 2^" + std::to_string(shown) + " )";
    }

    std::unique_ptr<RamComputation> make_computation(std::uint64_t tasks) const override {
        const bool refined = algorithm() == 0;
        const auto exponent = static_cast<std::int32_t>(exponent_) - (refined ? 1 : 0);
        return std::make_unique<BrentMcMillan>(size(), tasks, exponent, refined, *algorithm_info());
    }

    std::uint32_t exponent_;
};

// The exponent is the user's, whatever the size.
class EulerGammaOverride final : public EulerGamma {
  public:
    EulerGammaOverride() : EulerGamma(euler_gamma_override_info, 0) {}
    std::unique_ptr<Constant> clone() const override { return std::make_unique<EulerGammaOverride>(*this); }

    std::optional<std::uint64_t> argument() const override { return exponent_; }
    // "is a out of range" is how this message reads.
    void set_argument(std::uint64_t value) override {
        if (value > largest_exponent) {
            throw qmp::InvalidParametersException("", std::to_string(value) + " is a out of range.");
        }
        exponent_ = static_cast<std::uint32_t>(value);
    }
    void ask_argument() override {
        console::println("n = 2^k", 'w');
        exponent_ = static_cast<std::uint32_t>(console::read_int_in_range("k = ", 0, largest_exponent, 'T'));
    }
    void set_size(std::uint64_t precision) override { Constant::set_size(precision); }
};

constexpr std::string_view keys[] = {"gamma"};
constexpr std::string_view override_keys[] = {"brent"};
constexpr AlgorithmInfo algorithms[] = {
    {"brent-refined", "Brent-McMillan (refined)", "Brent-McMillan with Refinement",
     "Brent-McMillan with Refinement"},
    {"brent-original", "Brent-McMillan", "Brent-McMillan", "Brent-McMillan"},
};

std::unique_ptr<Constant> make() {
    return std::make_unique<EulerGamma>();
}
std::unique_ptr<Constant> make_override() {
    return std::make_unique<EulerGammaOverride>();
}

}  // namespace

const ConstantInfo euler_gamma_info = {
    9, keys, "Euler's Constant", "Euler-Mascheroni Constant", slow_constant, algorithms, {}, make,
};

const ConstantInfo euler_gamma_override_info = {
    10,
    override_keys,
    "Euler's Constant",
    "Euler-Mascheroni Constant (parameter override)",
    slow_constant,
    algorithms,
    {},
    make_override,
};

}  // namespace kelvara
