// The list of constants that the program can compute, and the menu that chooses one.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "constants/constant.h"

namespace kelvara {

// Ids run from 0 to constant_count - 1; all but the last one, which only configurations reach, are also
// menu numbers.
constexpr std::uint32_t constant_count = 11;

enum ConstantId : std::uint32_t {
    id_square_root = 0,
    id_golden_ratio = 1,
    id_e = 2,
    id_pi = 3,
    id_arccoth = 4,
    id_log = 5,
    id_zeta3 = 6,
    id_lemniscate = 7,
    id_catalan = 8,
    id_euler_gamma = 9,
    id_euler_gamma_override = 10,
};

// A new object with its default settings; null for an id outside the catalogue.
std::unique_ptr<Constant> make_constant(std::uint32_t id);
// The id of a configuration key. InvalidParametersException ("Invalid Constant: " and the key) when
// unknown.
std::uint32_t constant_id(std::string_view key);
// The key that configurations write for an id; empty outside the catalogue.
std::string_view constant_key(std::uint32_t id);

// The screen "Compute a Constant:"; returns the chosen constant, its argument asked for.
std::unique_ptr<Constant> ask_constant();

}  // namespace kelvara
