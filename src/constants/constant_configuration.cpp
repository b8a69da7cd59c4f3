#include "constants/constant_configuration.h"

#include <string>

#include "config/settings_record.h"
#include "constants/catalogue.h"

namespace kelvara {
namespace {

constexpr std::string_view context = "Constant";

std::string algorithm_keyword(const Constant& constant) {
    const AlgorithmInfo* algorithm = constant.algorithm_info();
    return algorithm ? algorithm->keyword : "";
}

}  // namespace

qmp::notation::Object write_constant(const Constant& constant) {
    qmp::notation::Object object;
    object.insert_string("Constant", std::string(constant.key()));
    if (const auto argument = constant.argument()) {
        object.insert_integer("Argument", static_cast<std::int64_t>(*argument));
    }
    object.insert_string("Algorithm", algorithm_keyword(constant));
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

std::string print_constant(const Constant& constant) {
    qmp::SettingsRecordWriter lines;
    lines.write_string("Constant          :", constant.key());
    if (const auto argument = constant.argument()) {
        lines.write_integer("Argument          :", static_cast<std::int64_t>(*argument));
    }
    return lines.write_string("Algorithm         :", algorithm_keyword(constant)).take();
}

std::unique_ptr<Constant> load_constant(qmp::TextCursor& cursor) {
    std::unique_ptr<Constant> constant = make_constant(constant_id(cursor.read_string_field()));
    if (constant->argument()) {
        constant->set_argument(static_cast<std::uint64_t>(cursor.read_integer_field()));
    }
    constant->set_algorithm_keyword(cursor.read_string_field());
    return constant;
}

}  // namespace kelvara
