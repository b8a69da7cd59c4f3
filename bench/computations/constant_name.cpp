#include "constant_name.h"

#include "console/parse.h"
#include "constants/catalogue.h"

namespace bench {

std::unique_ptr<kelvara::Constant> make_constant(const std::string& name) {
    const std::size_t colon = name.find(':');
    auto constant = kelvara::make_constant(kelvara::constant_id(name.substr(0, colon)));
    if (colon != std::string::npos) {
        constant->set_argument(qmp::console::parse_decimal(name.substr(colon + 1)));
    }
    return constant;
}

std::vector<std::string> algorithms_of(const std::string& name) {
    std::vector<std::string> keywords;
    const auto constant = make_constant(name);
    for (const kelvara::AlgorithmInfo& info : constant->info().algorithms) keywords.push_back(info.keyword);
    return keywords;
}

std::vector<std::string> every_constant() {
    return {"sqrt:2", "goldenratio", "e",          "pi",      "arccoth:2", "log:2",
            "log:10", "zeta(3)",     "lemniscate", "catalan", "gamma"};
}

}  // namespace bench
