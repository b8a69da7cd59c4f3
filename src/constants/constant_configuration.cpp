#include "constants/constant_configuration.h"

#include <string>

#include "constants/catalogue.h"

namespace kelvara {
namespace {

constexpr std::string_view context = "Constant";

}  // namespace

qmp::notation::Object write_constant(const Constant& constant) {
    qmp::notation::Object object;
    object.insert_string("Constant", std::string(constant.key()));
    if (const auto argument = constant.argument()) {
        object.insert_integer("Argument", static_cast<std::int64_t>(*argument));
    }
    const AlgorithmInfo* algorithm = constant.algorithm_info();
    object.insert_string("Algorithm", algorithm ? algorithm->keyword : "");
    return object;
}

std::unique_ptr<Constant> read_constant(const qmp::notation::Object& object) {
    std::unique_ptr<Constant> constant = make_constant(constant_id(object.get_string("Constant", context)));
    if (constant->argument()) {
        constant->set_argument(static_cast<std::uint64_t>(object.get_integer("Argument", context)));
    }
    constant->set_algorithm_keyword(object.get_string("Algorithm", context));
    return constant;
}

}  // namespace kelvara
