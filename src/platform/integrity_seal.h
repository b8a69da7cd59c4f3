// The seal behind the content of an executable file: what the build appends and the integrity check reads.
//
// A seal is the mark and 64 hexadecimal digits, nothing behind them. The digits are the SHA-256 digest of the
// key and the digits of the content's own SHA-256 digest, one after the other. The content is everything
// before the seal. cmake/SealProgram.cmake reads both texts out of this file.
#pragma once

#include <cstddef>
#include <string_view>

namespace kelvara {

inline constexpr std::string_view seal_mark = "Kelvara seal 1: ";
inline constexpr std::string_view seal_key = "6d7c0a8f41be4e5f9b0b5a3d2f7e11c8";

inline constexpr std::size_t seal_size = seal_mark.size() + 64;

}  // namespace kelvara
