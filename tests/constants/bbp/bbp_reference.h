// The digits of sums of terms by plain integer arithmetic.
#pragma once

#include <cstdint>
#include <vector>

#include "constants/bbp/fraction.h"
#include "constants/bbp/kernels/kernels.h"

namespace kelvara_test {

inline std::uint64_t power_of_two_modulo(std::uint64_t exponent, std::uint64_t modulus) {
    __extension__ using Wide = unsigned __int128;
    std::uint64_t power = 1 % modulus;
    for (int bit = 63; bit >= 0; --bit) {
        power = static_cast<std::uint64_t>(Wide{power} * power % modulus);
        if ((exponent >> bit) & 1) power = static_cast<std::uint64_t>(Wide{2} * power % modulus);
    }
    return power;
}

// Sums of digits of 48 bits, modulo 1.
class ReferenceSum {
  public:
    explicit ReferenceSum(std::uint64_t chunks) : chunks_(chunks) {}

    // 2^exponent / modulus modulo 1, cut behind the last chunk.
    void add(std::int64_t exponent, std::uint64_t modulus) {
        __extension__ using Wide = unsigned __int128;
        const std::uint64_t zero_bits = exponent < 1 ? static_cast<std::uint64_t>(-exponent) : 0;
        const std::uint64_t zero_chunks = zero_bits / 48;
        std::uint64_t rest = exponent < 1
                                 ? std::uint64_t{1}
                                 : power_of_two_modulo(static_cast<std::uint64_t>(exponent), modulus);
        for (std::uint64_t i = zero_chunks; i < chunks_.size(); ++i) {
            const Wide scaled = Wide{rest} << (i == zero_chunks ? 48 - zero_bits % 48 : 48);
            chunks_[i] += static_cast<std::uint64_t>(scaled / modulus);
            rest = static_cast<std::uint64_t>(scaled % modulus);
        }
        carry();
    }

    std::vector<std::uint64_t> digits() const { return chunks_; }

  private:
    void carry() {
        std::uint64_t over = 0;
        for (std::uint64_t i = chunks_.size(); i-- > 0;) {
            chunks_[i] += over;
            over = chunks_[i] >> 48;
            chunks_[i] &= (std::uint64_t{1} << 48) - 1;
        }
    }

    std::vector<std::uint64_t> chunks_;
};

inline std::vector<std::uint64_t> digits_of(const kelvara::bbp::ChunkFraction& fraction) {
    std::vector<std::uint64_t> digits;
    for (std::uint64_t i = 0; i < fraction.chunks(); ++i) digits.push_back(fraction.chunk(i));
    return digits;
}

}  // namespace kelvara_test
