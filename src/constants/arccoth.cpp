#include "constants/argument_constant.h"
#include "constants/catalogue_entries.h"

namespace kelvara {

namespace {

// The series works with n^2 in one word, which bounds the argument.
class ArcCoth final : public ArgumentConstant {
  public:
    ArcCoth() : ArgumentConstant(arccoth_info, {2, UINT32_MAX}, "ArcCoth(n)") {}
    std::unique_ptr<Constant> clone() const override { return std::make_unique<ArcCoth>(*this); }
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
