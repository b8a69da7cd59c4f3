#include "constants/catalan_huvent.h"
#include "constants/catalan_lupas.h"
#include "constants/catalogue_entries.h"
#include "constants/constant.h"

namespace kelvara {

namespace {

class Catalan final : public Constant {
  public:
    Catalan() : Constant(catalan_info) {}
    std::unique_ptr<Constant> clone() const override { return std::make_unique<Catalan>(*this); }

  protected:
    std::unique_ptr<RamComputation> make_computation(std::uint64_t tasks) const override {
        if (algorithm() == 1) return std::make_unique<CatalanHuvent>(size(), tasks);
        return std::make_unique<SeriesComputation>(size(), tasks, catalan_lupas_formula(), *algorithm_info());
    }
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
