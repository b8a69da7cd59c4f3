#include "constants/arccoth_series.h"
#include "constants/argument_constant.h"
#include "constants/catalogue_entries.h"
#include "series/sum_series.h"

namespace kelvara {

namespace {

class ArcCothTaylor final : public RamComputation {
  public:
    ArcCothTaylor(std::uint64_t precision, std::uint64_t tasks, std::uint64_t x)
        : RamComputation(precision, tasks), x_(x) {
        memory_estimate_ = qmp::memory_estimate(ArcCothSeries(x), precision_, tasks_);
    }

    const char* short_name() const override { return "Taylor"; }
    const char* long_name() const override { return "Taylor Series"; }
    qmp::OwnedBigFloat compute(const qmp::ComputeContext& context) const override {
        return sum_arccoth(context, x_, 1, precision_);
    }
    std::uint64_t largest_product() const override {
        return qmp::sum_largest_product(ArcCothSeries(x_), precision_);
    }

  private:
    std::uint64_t x_;
};

// The series works with n^2 in one word, which bounds the argument.
class ArcCoth final : public ArgumentConstant {
  public:
    ArcCoth() : ArgumentConstant(arccoth_info, {2, UINT32_MAX}, "ArcCoth(n)") {}
    std::unique_ptr<Constant> clone() const override { return std::make_unique<ArcCoth>(*this); }

  protected:
    std::unique_ptr<RamComputation> make_computation(std::uint64_t tasks) const override {
        return std::make_unique<ArcCothTaylor>(size(), tasks, *argument());
    }
};

constexpr std::string_view keys[] = {"arccoth"};
constexpr AlgorithmInfo algorithms[] = {
    {"series", "Taylor", "Taylor Series", "Taylor Series of ArcCoth(x)"},
};
constexpr const char* note[] = {"There are no alternate formulas for this constant."};

std::unique_ptr<Constant> make() {
    return std::make_unique<ArcCoth>();
}

}  // namespace

const ConstantInfo arccoth_info = {
    4, keys, "ArcCoth", "ArcCoth", fast_constant, algorithms, note, make,
};

}  // namespace kelvara
