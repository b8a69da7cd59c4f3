#include "radix/decimal_output.h"

#include <algorithm>
#include <string>

#include "errors/recovered_errors.h"
#include "radix/convert.h"
#include "radix/digit_codecs.h"
#include "radix/digit_stream.h"
#include "radix/split_number.h"
#include "radix/verification.h"

namespace qmp {
namespace {

// Digit words beyond the wanted digits. They keep whatever the last words may be short of away from the
// digits that are written; the verification covers them as well.
constexpr std::uint64_t extra_words = 3;

std::uint64_t digit_words(std::uint64_t digits) {
    return digits / decimal_digits_per_decimal_word + extra_words;
}

class DecimalDriver {
  public:
    DecimalDriver(const ComputeContext& context, std::uint64_t digits, DecimalOutputHooks& hooks)
        : context_(context), digits_(digits), m_(digit_words(digits)), hooks_(hooks) {}

    DigitOutput run(BigFloatView x, const OpenSink& open) {
        progress().begin_step("Base Converting:", "Base Converting");
        const SplitNumber number(context_, x, ConvertPlanP(decimal_word_base, m_, 1).fraction_words());
        words_ = context_.allocate(m_);
        convert(number.fraction);
        progress().end_step();

        progress().begin_step("Writing Decimal Digits:   ", "Writing Decimal Digits");
        const std::unique_ptr<DigitSink> sink = open(std::to_string(number.integer) + ".");
        DigitOutput output = write(*sink);
        progress().end_step();

        progress().begin_step("Verifying Base Conversion...", "Verifying Base Conversion");
        output.hash = verify(number);
        sink->finish();
        progress().end_step();
        return output;
    }

  private:
    Progress& progress() const { return *context_.progress; }

    void convert(FractionView f) {
        for (std::uint64_t attempt = 0;; ++attempt) {
            ConvertResult result = attempt_conversion(f);
            hooks_.converted(attempt, result, words_.data(), m_);
            if (result.status == 0) {
                count_recovered_errors(attempt);
                return;
            }
            progress().message("Radix Conversion Failed - Reattempting...", 'R');
        }
    }

    // The powers are formed anew by every attempt: they may be what is wrong.
    ConvertResult attempt_conversion(FractionView f) {
        ConvertPlanP plan(decimal_word_base, m_, context_.parallel.tds);
        const CheckedWords tables = context_.allocate(plan.table_words());
        const CheckedWords scratch = context_.allocate(plan.scratch_words());
        const MultiplyContext multiply = context_.multiply(scratch);
        {
            const ScopedLabel label(context_.progress, "Squaring...    ", 'w');
            plan.populate_fft_plans(multiply, tables.data());
        }
        const ScopedLabel label(context_.progress, "Converting...  ", 'w');
        const auto run = context_.parallel.tds > 1 ? qmq_CBRv2_ci_btrf_T : convert_L;
        return run(plan, multiply, words_.data() + m_, m_, f.words, f.length, context_.progress, &hooks_);
    }

    DigitOutput write(DigitSink& sink) const {
        DigitStream stream(context_, 10, digits_, sink);
        const std::uint64_t most = DigitStream::block_words(10, digits_);
        // The words that hold wanted digits, from the top.
        std::uint64_t left = (digits_ + 18) / 19;
        const Word* end = words_.data() + m_;
        while (left > 0) {
            const std::uint64_t n = std::min(left, most);
            stream.write(end - n, n);
            end -= n;
            left -= n;
        }
        return stream.finish();
    }

    // H(x, d). The binary side is repeated once when it does not agree.
    std::uint64_t verify(const SplitNumber& number) {
        const DecimalHash decimal = hash_decimal_digits(number.integer);
        const auto agrees = [&](const BinaryHash& binary) {
            return binary.status == 0 && binary.value == decimal.words;
        };
        BinaryHash binary = hash_binary(context_, number.fraction, m_, 0, hooks_);
        if (!agrees(binary)) {
            progress().message("Verification Failed - Reattempting...", 'R');
            binary = hash_binary(context_, number.fraction, m_, 1, hooks_);
            if (agrees(binary)) count_recovered_errors(1);
        }
        if (!agrees(binary)) {
            progress().message("R = " + std::to_string(decimal.words), 'R');
            if (binary.status == 0) progress().message("B = " + std::to_string(binary.value), 'R');
            console::fatal_error("Base Conversion Failed: Checksum Mismatch");
        }
        return decimal.value;
    }

    DecimalHash hash_decimal_digits(Word integer) const {
        const ScopedLabel label(context_.progress, "Hashing Decimal...  ", 'w');
        return hash_decimal(context_.parallel, words_.data(), m_, digits_, integer);
    }

    const ComputeContext& context_;
    std::uint64_t digits_;
    std::uint64_t m_;
    DecimalOutputHooks& hooks_;
    CheckedWords words_;  // the digit words, little-endian
};

std::uint64_t array_bytes(std::uint64_t words) {
    return 8 * words + checked_array_overhead(64);
}

}  // namespace

DigitOutput write_decimal(const ComputeContext& context, BigFloatView x, std::uint64_t digits,
                          const OpenSink& open, DecimalOutputHooks& hooks) {
    return DecimalDriver(context, digits, hooks).run(x, open);
}

DigitOutput write_decimal(const ComputeContext& context, BigFloatView x, std::uint64_t digits,
                          const OpenSink& open) {
    DecimalOutputHooks none;
    return write_decimal(context, x, digits, open, none);
}

std::uint64_t decimal_output_bytes(std::uint64_t digits, std::uint64_t tasks) {
    const std::uint64_t m = digit_words(digits);
    const ConvertPlanP plan(decimal_word_base, m, tasks);
    const std::uint64_t conversion = array_bytes(plan.table_words()) + array_bytes(plan.scratch_words());
    const std::uint64_t writing = array_bytes(DigitStream::buffer_words(10, digits, tasks));
    const VerificationWords words(plan.fraction_words(), m, tasks);
    const std::uint64_t verification =
        array_bytes(words.power) + array_bytes(words.product) + array_bytes(words.scratch);
    return array_bytes(plan.fraction_words()) + array_bytes(m) +
           std::max({conversion, writing, verification});
}

std::uint64_t decimal_output_largest_product(std::uint64_t digits) {
    const std::uint64_t m = digit_words(digits);
    return verification_largest_product(ConvertPlanP(decimal_word_base, m, 1).fraction_words(), m);
}

}  // namespace qmp
