// The build's secret that validation files are sealed with.
//
// The build system generates it (cmake/ValidationKey.cmake) and leaves three shares of it in the program. A
// single share is random; the key is put together only while a seal is made. This keeps the key out of a
// listing of the program's constants, not from somebody who follows the program in a debugger.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace kelvara {

constexpr std::size_t validation_key_size = 64;
using ValidationKey = std::array<std::uint8_t, validation_key_size>;

// Volatile: a compiler that sees all shares must not put them together by itself.
extern const volatile std::uint8_t validation_key_shares[3][validation_key_size];

ValidationKey validation_key();

}  // namespace kelvara
