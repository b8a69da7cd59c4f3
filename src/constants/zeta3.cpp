#include "constants/catalogue_entries.h"
#include "constants/constant.h"

namespace kelvara {

namespace {

class Zeta3 final : public Constant {
  public:
    Zeta3() : Constant(zeta3_info) {}
    std::unique_ptr<Constant> clone() const override { return std::make_unique<Zeta3>(*this); }
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
