#include "platform/toolchain.h"

namespace kelvara {

#if defined(__clang__)
std::string_view compiler_name() {
    return "Clang";
}

std::string compiler_version() {
    return __clang_version__;
}
#else
std::string_view compiler_name() {
    return "GCC";
}

// In numbers: __VERSION__ adds what a distribution calls its build.
std::string compiler_version() {
    return std::to_string(__GNUC__) + "." + std::to_string(__GNUC_MINOR__) + "." +
           std::to_string(__GNUC_PATCHLEVEL__);
}
#endif

std::string_view compile_date() {
    return __DATE__;
}

}  // namespace kelvara
