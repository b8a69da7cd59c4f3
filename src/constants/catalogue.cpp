#include "constants/catalogue.h"

#include <algorithm>
#include <string>

#include "constants/catalogue_entries.h"
#include "errors/exception.h"

namespace kelvara {

namespace {

constexpr const ConstantInfo* catalogue[constant_count] = {
    &square_root_info,
    &golden_ratio_info,
    &e_info,
    &pi_info,
    &arccoth_info,
    &log_info,
    &zeta3_info,
    &lemniscate_info,
    &catalan_info,
    &euler_gamma_info,
    &euler_gamma_override_info,
};

}  // namespace

std::unique_ptr<Constant> make_constant(std::uint32_t id) {
    return id < constant_count ? catalogue[id]->make() : nullptr;
}

std::uint32_t constant_id(std::string_view key) {
    for (const ConstantInfo* info : catalogue) {
        if (std::find(info->keys.begin(), info->keys.end(), key) != info->keys.end()) return info->id;
    }
    throw qmp::InvalidParametersException("", "Invalid Constant: " + std::string(key));
}

std::string_view constant_key(std::uint32_t id) {
    return id < constant_count ? catalogue[id]->written_key() : std::string_view();
}

}  // namespace kelvara
