// Byte shuffle control for two neighbouring fields of a point.
#pragma once

namespace {

// Bytes 0 .. FirstBytes - 1 to the lower eight bytes of a 16-byte unit, bytes 6 .. 5 + SecondBytes to the
// upper eight; zeros elsewhere.
template <int FirstBytes, int SecondBytes>
struct FieldBytes {
    alignas(16) signed char bytes[16];

    constexpr FieldBytes() : bytes() {
        for (int i = 0; i < 8; ++i) {
            bytes[i] = static_cast<signed char>(i < FirstBytes ? i : -1);
            bytes[8 + i] = static_cast<signed char>(i < SecondBytes ? 6 + i : -1);
        }
    }
};

}  // namespace
