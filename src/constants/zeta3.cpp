#include "constants/catalogue_entries.h"
#include "constants/constant.h"
#include "constants/zeta3_series.h"

namespace kelvara {

namespace {

class Zeta3 final : public Constant {
  public:
    Zeta3() : Constant(zeta3_info) {}
    std::unique_ptr<Constant> clone() const override { return std::make_unique<Zeta3>(*this); }

  protected:
    std::unique_ptr<RamComputation> make_computation(std::uint64_t tasks) const override {
        return std::make_unique<SeriesComputation>(size(), tasks, zeta3_formula(algorithm()),
                                                   *algorithm_info());
    }
};

constexpr std::string_view keys[] = {"apery", "zeta3", "zeta(3)"};
constexpr AlgorithmInfo algorithms[] = {
    {"az-long", "AZ (long)", "Amdeberhan-Zeilberger (long)",
     "Amdeberhan-Zeilberger Formula (long)    (fastest)"},
    {"az-short", "AZ (short)", "Amdeberhan-Zeilberger (short)",
     "Amdeberhan-Zeilberger Formula (short)   (slightly slower)"},
};

std::unique_ptr<Constant> make() {
    return std::make_unique<Zeta3>();
}

}  // namespace

const ConstantInfo zeta3_info = {
    6, keys, "Zeta(3)", "Zeta(3) - Apery's Constant", moderate_constant, algorithms, {}, make,
};

}  // namespace kelvara
