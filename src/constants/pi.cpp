#include "constants/catalogue_entries.h"
#include "constants/constant.h"
#include "constants/pi_series.h"

namespace kelvara {

namespace {

class Pi final : public Constant {
  public:
    Pi() : Constant(pi_info) {}
    std::unique_ptr<Constant> clone() const override { return std::make_unique<Pi>(*this); }

  protected:
    std::unique_ptr<RamComputation> make_computation(std::uint64_t tasks) const override {
        return std::make_unique<PiSeries>(size(), tasks, pi_formula(algorithm()));
    }
};

constexpr std::string_view keys[] = {"pi"};
// The menu offers the normal forms only, although its note mentions the others, which configurations reach
// by keyword.
constexpr AlgorithmInfo algorithms[] = {
    {"chudnovsky", "Chudnovsky", "Chudnovsky Formula", "Chudnovsky Formula      (fastest)"},
    {"ramanujan", "Ramanujan", "Ramanujan's Formula", "Ramanujan's Formula     (~40% slower)"},
    {"chudnovsky-reduced", "Chudnovsky", "Chudnovsky Formula (reduced memory)", nullptr},
    {"ramanujan-reduced", "Ramanujan", "Ramanujan's Formula (reduced memory)", nullptr},
};
constexpr const char* note[] = {
    "    Reduced memory algorithms use alternate parameters that require less",
    "    memory at the cost of decreased performance.",
};

std::unique_ptr<Constant> make() {
    return std::make_unique<Pi>();
}

}  // namespace

const ConstantInfo pi_info = {
    3, keys, "Pi", "Pi", moderate_constant, algorithms, note, make,
};

}  // namespace kelvara
