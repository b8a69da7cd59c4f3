#include "console/console.h"
#include "constants/argument_constant.h"
#include "constants/catalogue_entries.h"
#include "constants/log_generator.h"
#include "constants/log_machin.h"

namespace kelvara {

namespace console = qmp::console;

namespace {

// The formulas belong to the argument; they are generated when it is asked for or when the size is set, and
// kept from then on.
class Log final : public ArgumentConstant {
  public:
    Log() : ArgumentConstant(log_info, {2, INT32_MAX}, "Log(n)") {}
    std::unique_ptr<Constant> clone() const override { return std::make_unique<Log>(*this); }

    void ask_argument() override {
        ArgumentConstant::ask_argument();
        formulas();
    }
    void set_size(std::uint64_t precision) override {
        Constant::set_size(precision);
        formulas();
    }
    std::string algorithm_name() const override {
        return algorithm_info() ? long_name(formula(algorithm())) : "";
    }

  protected:
    void print_menu_entry(std::uint32_t index) const override {
        console::write("   " + std::to_string(index) + "    ", 'T');
        print_log_formula(*argument(), formula(index), units());
    }
    std::unique_ptr<RamComputation> make_computation(std::uint64_t tasks) const override {
        const LogFormula chosen = formula(algorithm());
        return std::make_unique<LogMachin>(size(), tasks, chosen, algorithm_info()->short_name,
                                           long_name(chosen));
    }

  private:
    double units() const { return log_units(size()); }
    LogFormulas formulas() const { return log_formulas(*argument(), units()); }
    LogFormula formula(std::uint32_t index) const {
        const LogFormulas both = formulas();
        return index == 0 ? both.primary : both.secondary;
    }
    std::string long_name(const LogFormula& formula) const {
        return Constant::algorithm_name() + " (" + std::to_string(formula.count) + " terms)";
    }
};

constexpr std::string_view keys[] = {"log"};
// The menu shows the formulas themselves.
constexpr AlgorithmInfo algorithms[] = {
    {"machin-primary", "Machin (primary)", "Primary Machin-like Formula", ""},
    {"machin-secondary", "Machin (secondary)", "Secondary Machin-like Formula", ""},
};

std::unique_ptr<Constant> make() {
    return std::make_unique<Log>();
}

}  // namespace

const ConstantInfo log_info = {
    5, keys, "Log", "Log", moderate_constant, algorithms, {}, make,
};

}  // namespace kelvara
