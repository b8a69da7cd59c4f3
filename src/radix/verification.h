// The check of a decimal conversion, end to end: the digits and the binary value are hashed apart, and
// the hashes of Floor(f 10^(19 m)) must agree.
#pragma once

#include <cstdint>

#include "numbers/compute_context.h"
#include "radix/decimal_output.h"
#include "radix/fractional_product.h"
#include "radix/radix_power.h"

namespace qmp {

struct DecimalHash {
    std::uint64_t words;  // of all digit words: Floor(f 10^(19 m)) mod M
    std::uint64_t value;  // of the wanted digits and the integer part: Floor(x 10^d) mod M
};

// m digit words (little-endian), of whose 19 m digits the first d are wanted.
DecimalHash hash_decimal(ParallelContext parallel, const Word* digits, std::uint64_t m, std::uint64_t d,
                         Word integer_part);

struct BinaryHash {
    static constexpr std::uint32_t power_hash_mismatch = 0x10000000;

    std::uint32_t status = 0;
    std::uint64_t value = 0;  // Floor(f 10^(19 m)) mod M; of no meaning when the status is not 0
};

// Forms (10^19)^m, checks it against its own hash, and multiplies. `attempt` is for the hooks.
BinaryHash hash_binary(const ComputeContext& context, FractionView f, std::uint64_t m, std::uint64_t attempt,
                       DecimalOutputHooks& hooks);

// Words of the buffers of hash_binary for a fraction of `fraction_words`: the power's, the product's
// (which is also the power's second buffer), and the multiplication's scratch.
struct VerificationWords {
    std::uint64_t power, product, scratch;

    VerificationWords(std::uint64_t fraction_words, std::uint64_t m, std::uint64_t tasks);
};

// Largest product of hash_binary, in words.
std::uint64_t verification_largest_product(std::uint64_t fraction_words, std::uint64_t m);

}  // namespace qmp
