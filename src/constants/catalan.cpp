#include "constants/catalogue_entries.h"
#include "constants/constant.h"

namespace kelvara {

namespace {

class Catalan final : public Constant {
  public:
    Catalan() : Constant(catalan_info) {}
    std::unique_ptr<Constant> clone() const override { return std::make_unique<Catalan>(*this); }
};

constexpr std::string_view keys[] = {"catalan"};
constexpr AlgorithmInfo algorithms[] = {
    {"lupas", "Lupas", "Lupas Formula", "Lupas Formula       (fastest)"},
    {"huvent", "Huvent", "Huvent's Formula", "Huvent's Formula    (20% slower)"},
};

std::unique_ptr<Constant> make() {
    return std::make_unique<Catalan>();
}

}  // namespace

const ConstantInfo catalan_info = {
    8, keys, "Catalan", "Catalan's Constant", slow_constant, algorithms, {}, make,
};

}  // namespace kelvara
