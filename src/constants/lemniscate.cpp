#include "constants/catalogue_entries.h"
#include "constants/constant.h"
#include "constants/lemniscate_sum.h"

namespace kelvara {

namespace {

class Lemniscate final : public Constant {
  public:
    Lemniscate() : Constant(lemniscate_info) {}
    std::unique_ptr<Constant> clone() const override { return std::make_unique<Lemniscate>(*this); }

  protected:
    std::unique_ptr<RamComputation> make_computation(std::uint64_t tasks) const override {
        return std::make_unique<LemniscateSum>(size(), tasks, lemniscate_formula(algorithm()),
                                               *algorithm_info());
    }
};

constexpr std::string_view keys[] = {"lemniscate"};
// The two spellings of the inverse function, and the one lower-case "formula", are how these texts read.
constexpr AlgorithmInfo algorithms[] = {
    {"gauss", "Gauss", "Gauss Formula", "Gauss Formula       (fastest)",
     "Lemniscate = 8 * ArcSinlemn(1/2) + 4 * ArcSinLemn(7/23)"},
    {"sebah", "Sebah", "Sebah's formula", "Sebah's Formula     (20% slower)",
     "Lemniscate = 8 * ArcSinlemn(2/3) - 4 * ArcSinLemn(7/137)"},
};

std::unique_ptr<Constant> make() {
    return std::make_unique<Lemniscate>();
}

}  // namespace

const ConstantInfo lemniscate_info = {
    7, keys, "Lemniscate", "Lemniscate Constant", moderate_constant, algorithms, {}, make,
};

}  // namespace kelvara
