// One entry per constant, each defined in the constant's own unit. A new constant adds a line here and
// one to the catalogue's list.
#pragma once

#include "constants/constant_info.h"

namespace kelvara {

extern const ConstantInfo square_root_info;
extern const ConstantInfo golden_ratio_info;
extern const ConstantInfo e_info;
extern const ConstantInfo pi_info;
extern const ConstantInfo arccoth_info;
extern const ConstantInfo log_info;
extern const ConstantInfo zeta3_info;
extern const ConstantInfo lemniscate_info;
extern const ConstantInfo catalan_info;
extern const ConstantInfo euler_gamma_info;
extern const ConstantInfo euler_gamma_override_info;

}  // namespace kelvara
