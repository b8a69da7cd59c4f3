#include "radix/verification.h"

#include <algorithm>
#include <bit>
#include <string>
#include <utility>

#include "multiply/multiply.h"
#include "radix/digit_codecs.h"
#include "radix/hash.h"

namespace qmp {
namespace {

// Digit values, appended to what h hashes.
std::uint64_t hash_values(std::uint64_t h, const char* values, std::uint64_t n) {
    for (std::uint64_t i = 0; i < n; ++i)
        h = check_add(check_mul(h, 10), static_cast<std::uint64_t>(values[i]));
    return h;
}

// The hash of the last k of the digits, k being below 19 times the number of words.
std::uint64_t hash_tail(const Word* digits, std::uint64_t k) {
    std::uint64_t h = 0;
    for (std::uint64_t i = (k + 18) / 19; i-- > 0;) {
        char values[19];
        u64_to_d19(values, digits + i, 1);
        const std::uint64_t wanted = std::min<std::uint64_t>(19, k - 19 * i);
        h = hash_values(h, values + 19 - wanted, wanted);
    }
    return h;
}

void report_power_mismatch(Progress* progress, std::uint64_t expected, std::uint64_t actual) {
    progress->message("Radix Conversion: Power Hash Mismatch", 'R');
    progress->message("Expected: " + std::to_string(expected), 'R');
    progress->message("Actual  : " + std::to_string(actual), 'R');
}

// Floor(f P) mod M, the product being formed in `product`.
std::uint64_t hash_integer_part(const ComputeContext& context, FractionView f, const RadixPower& power,
                                const CheckedWords& product, const CheckedWords& scratch) {
    const std::uint64_t n = f.length + power.length;
    {
        const ScopedLabel label(context.progress, "Multiplying...", 'w');
        multiply(context.multiply(scratch), product.data(), f.words, f.length, power.words, power.length);
    }
    const ScopedLabel label(context.progress, "Hashing Binary...", 'w');
    if (f.length < power.zeros) {
        // An integer that ends in zero words, which were not formed.
        const std::uint64_t h = hash_words(context.parallel, 0, binary_word_radix, product.data(), n);
        return check_mul(h, pow_mod(binary_word_radix, power.zeros - f.length));
    }
    const std::uint64_t point = f.length - power.zeros;
    return hash_words(context.parallel, 0, binary_word_radix, product.data() + point, n - point);
}

}  // namespace

DecimalHash hash_decimal(ParallelContext parallel, const Word* digits, std::uint64_t m, std::uint64_t d,
                         Word integer_part) {
    DecimalHash hash;
    hash.words = hash_words(parallel, 0, decimal_word_radix, digits, m);
    const std::uint64_t removed = 19 * m - d;
    const std::uint64_t without_tail = check_sub(hash.words, hash_tail(digits, removed));
    // 10^(M - 1 - k) is the inverse of 10^k.
    const std::uint64_t fraction = check_mul(without_tail, pow_mod(10, check_modulus - 1 - removed));
    hash.value = check_add(check_mul(check_reduce(integer_part), pow_mod(10, d)), fraction);
    return hash;
}

VerificationWords::VerificationWords(std::uint64_t fraction_words, std::uint64_t m, std::uint64_t tasks) {
    const std::uint64_t length = power_words(decimal_word_base, m);
    power = power_buffer_words(decimal_word_base, m);
    product = std::max(fraction_words + length, power);
    scratch = scratch_words_for(verification_largest_product(fraction_words, m), tasks);
}

std::uint64_t verification_largest_product(std::uint64_t fraction_words, std::uint64_t m) {
    return std::max(fraction_words + power_words(decimal_word_base, m),
                    2 * power_words(decimal_word_base, m / 2));
}

BinaryHash hash_binary(const ComputeContext& context, FractionView f, std::uint64_t m, std::uint64_t attempt,
                       DecimalOutputHooks& hooks) {
    const VerificationWords words(f.length, m, context.parallel.tds);
    const CheckedWords power_buffer = context.allocate(words.power);
    const CheckedWords product = context.allocate(words.product);
    const CheckedWords scratch = context.allocate(words.scratch);
    BinaryHash hash;

    RadixPower power;
    {
        const ScopedLabel label(context.progress, "Powering...", 'w');
        // Every squaring changes the buffer; the last one must not leave the power in the product's.
        const bool even_squarings = std::bit_width(m) % 2 == 1;
        Word* first = even_squarings ? power_buffer.data() : product.data();
        Word* second = even_squarings ? product.data() : power_buffer.data();
        power = form_power(context.multiply(scratch), decimal_word_base, m, first, second);
    }
    hooks.powered(attempt, power);
    const std::uint64_t expected = pow_mod(decimal_word_radix, m);
    const std::uint64_t words_hash =
        hash_words(context.parallel, 0, binary_word_radix, power.words, power.length);
    const std::uint64_t actual =
        check_mul(words_hash, check_word_weight(static_cast<std::int64_t>(power.zeros)));
    if (actual != expected) {
        report_power_mismatch(context.progress, expected, actual);
        hash.status = BinaryHash::power_hash_mismatch;
        return hash;
    }
    if (f.length > 0) hash.value = hash_integer_part(context, f, power, product, scratch);
    hooks.hashed_binary(attempt, hash.value);
    return hash;
}

}  // namespace qmp
