#include "constants/catalogue_entries.h"
#include "constants/constant.h"
#include "constants/newton_root.h"

namespace kelvara {

namespace {

class GoldenRatio final : public Constant {
  public:
    GoldenRatio() : Constant(golden_ratio_info) {}
    std::unique_ptr<Constant> clone() const override { return std::make_unique<GoldenRatio>(*this); }

  protected:
    std::unique_ptr<RamComputation> make_computation(std::uint64_t tasks) const override {
        return std::make_unique<GoldenRatioNewton>(size(), tasks);
    }
};

constexpr std::string_view keys[] = {"phi", "goldenratio"};
constexpr AlgorithmInfo algorithms[] = {
    {"newton", "Newton", "Newton's Method", "1st order Newton's Method"},
};
constexpr const char* note[] = {
    "There is no alternate formula for Golden Ratio. However, a verification",
    "can be done by computing sqrt(125) instead. The digits will be the same,",
    "but shifted over by one digit.",
};

std::unique_ptr<Constant> make() {
    return std::make_unique<GoldenRatio>();
}

}  // namespace

const ConstantInfo golden_ratio_info = {
    1, keys, "Golden Ratio", "Golden Ratio", fast_constant, algorithms, note, make,
};

}  // namespace kelvara
