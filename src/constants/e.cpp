#include "constants/catalogue_entries.h"
#include "constants/constant.h"
#include "constants/e_taylor.h"

namespace kelvara {

namespace {

class E final : public Constant {
  public:
    E() : Constant(e_info) {}
    std::unique_ptr<Constant> clone() const override { return std::make_unique<E>(*this); }

  protected:
    std::unique_ptr<RamComputation> make_computation(std::uint64_t tasks) const override {
        return std::make_unique<ETaylor>(size(), tasks, algorithm() == 1);
    }
};

constexpr std::string_view keys[] = {"e"};
constexpr AlgorithmInfo algorithms[] = {
    {"exp(1)", "exp(1)", "Taylor Series of exp(1)", "Taylor Series of exp(1)"},
    {"exp(-1)", "exp(-1)", "Taylor Series of exp(-1)", "Taylor Series of exp(-1)   (same speed)"},
};

std::unique_ptr<Constant> make() {
    return std::make_unique<E>();
}

}  // namespace

const ConstantInfo e_info = {
    2, keys, "e", "e", moderate_constant, algorithms, {}, make,
};

}  // namespace kelvara
