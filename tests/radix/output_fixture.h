// Runs the output drivers in a region of exactly the size that they announce.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "numbers/check_value.h"
#include "radix/convert_fixture.h"
#include "radix/decimal_output.h"
#include "radix/recording.h"

namespace kelvara_test {

struct Output {
    qmp::DigitOutput digits;
    std::string text;  // "3.1415"
    std::vector<std::string> lines;
    std::vector<std::string> messages;
};

// A number made of fractional words (little-endian) and an integer part.
class Number {
  public:
    explicit Number(std::vector<qmp::Word> fraction, qmp::Word integer = 0) : words_(std::move(fraction)) {
        exponent_ = -static_cast<std::int64_t>(words_.size());
        words_.push_back(integer);
        while (!words_.empty() && words_.back() == 0) words_.pop_back();
    }
    qmp::BigFloatView view() const {
        return {words_.data(), words_.size(), words_.empty() ? 0 : exponent_, 1};
    }

  private:
    std::vector<qmp::Word> words_;
    std::int64_t exponent_;
};

class Session {
  public:
    Session(qmp::ParallelContext parallel, std::uint64_t bytes, std::uint64_t product_words)
        : memory_((bytes + 7) / 8),
          region_(memory_.data(), bytes / 8 * 8),
          twiddles_(product_words),
          context{parallel, twiddles_.get(), &region_, &progress} {}

    static Session decimal(qmp::ParallelContext parallel, std::uint64_t digits) {
        return Session(parallel, qmp::decimal_output_bytes(digits, parallel.tds),
                       qmp::decimal_output_largest_product(digits));
    }
    static Session hexadecimal(qmp::ParallelContext parallel, std::uint64_t digits) {
        return Session(parallel, qmp::hexadecimal_output_bytes(digits, parallel.tds), 1);
    }

    Output write_decimal(qmp::BigFloatView x, std::uint64_t digits, qmp::DecimalOutputHooks& hooks) {
        Output output;
        output.digits = qmp::write_decimal(context, x, digits, recording_sink(output.text, &progress), hooks);
        return finish(std::move(output));
    }
    Output write_decimal(qmp::BigFloatView x, std::uint64_t digits) {
        qmp::DecimalOutputHooks none;
        return write_decimal(x, digits, none);
    }
    Output write_hexadecimal(qmp::BigFloatView x, std::uint64_t digits) {
        Output output;
        output.digits = qmp::write_hexadecimal(context, x, digits, recording_sink(output.text, &progress));
        return finish(std::move(output));
    }

  private:
    Output finish(Output output) {
        output.lines = progress.lines;
        output.messages = progress.messages();
        EXPECT_EQ(progress.depth, 0) << "labels left behind";
        EXPECT_EQ(region_.count(), 0u) << "blocks left behind";
        memory_.check();
        return output;
    }

    AlignedWords memory_;
    qmp::RegionAllocator region_;
    Twiddles twiddles_;

  public:
    RecordingProgress progress;
    qmp::ComputeContext context;
};

// Checks counts, last digits and hash of an output against its own text.
inline void expect_consistent(const Output& output, std::uint64_t digits, std::uint32_t radix) {
    const std::size_t point = output.text.find('.');
    ASSERT_NE(point, std::string::npos);
    const std::string fraction = output.text.substr(point + 1);
    EXPECT_EQ(fraction.size(), digits);
    EXPECT_EQ(output.digits.digits, digits);
    EXPECT_EQ(output.digits.last_digits, fraction.substr(digits > 100 ? digits - 100 : 0));
    qmp::DoubleWord hash = 0;
    std::array<std::uint64_t, 16> counts{};
    for (const char c : output.text) {
        if (c == '.') continue;
        const std::uint64_t v = static_cast<std::uint64_t>(c <= '9' ? c - '0' : c - 'a' + 10);
        hash = (hash * radix + v) % qmp::check_modulus;
    }
    for (const char c : fraction) ++counts[static_cast<std::size_t>(c <= '9' ? c - '0' : c - 'a' + 10)];
    EXPECT_EQ(output.digits.hash, static_cast<std::uint64_t>(hash));
    EXPECT_EQ(output.digits.counts, counts);
}

}  // namespace kelvara_test
