#include "constants/argument_constant.h"
#include "constants/catalogue_entries.h"
#include "errors/exception.h"

namespace kelvara {

namespace {

class Log final : public ArgumentConstant {
  public:
    Log() : ArgumentConstant(log_info, {2, INT32_MAX}, "Log(n)") {}
    std::unique_ptr<Constant> clone() const override { return std::make_unique<Log>(*this); }

    // The menu shows the Machin-like formulas of the argument, which this build does not generate.
    void ask_algorithm() override {
        throw qmp::InvalidParametersException("", full_name() + " is not available in this build yet.");
    }
};

constexpr std::string_view keys[] = {"log"};
constexpr AlgorithmInfo algorithms[] = {
    {"machin-primary", "Machin (primary)", "Primary Machin-like Formula", nullptr},
    {"machin-secondary", "Machin (secondary)", "Secondary Machin-like Formula", nullptr},
};

std::unique_ptr<Constant> make() {
    return std::make_unique<Log>();
}

}  // namespace

const ConstantInfo log_info = {
    5, keys, "Log", "Log", moderate_constant, algorithms, {}, make,
};

}  // namespace kelvara
