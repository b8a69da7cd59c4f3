// Runs conversions with exactly the memory that their plans ask for, between guard words.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "multiply/multiply_context.h"
#include "multiply/twiddle_set.h"
#include "radix/convert.h"
#include "radix/digit_codecs.h"
#include "support/random_words.h"

namespace kelvara_test {

// Words at a 64-byte boundary, garbage at first, with a guard behind them that check() looks at.
class AlignedWords {
  public:
    explicit AlignedWords(std::uint64_t words) : words_(words), storage_(words + 16, garbage) {
        const std::uint64_t address = reinterpret_cast<std::uintptr_t>(storage_.data());
        data_ = storage_.data() + (-address / 8 & 7);
    }
    qmp::Word* data() const { return data_; }
    std::uint64_t words() const { return words_; }
    void check() const {
        const std::uint64_t end = storage_.size() - static_cast<std::uint64_t>(data_ - storage_.data());
        for (std::uint64_t i = words_; i < end; ++i) ASSERT_EQ(data_[i], garbage) << "behind the scratch";
    }

  private:
    std::uint64_t words_;
    std::vector<qmp::Word> storage_;
    qmp::Word* data_;
};

// Twiddle tables for products of up to `product_words`.
class Twiddles {
  public:
    explicit Twiddles(std::uint64_t product_words) {
        const std::uint64_t bytes = qmp::TwiddleSet::bytes_needed(product_words);
        memory_ = std::make_unique<AlignedWords>((bytes + 7) / 8);
        set_ = std::make_unique<qmp::TwiddleSet>(memory_->data(), bytes, product_words,
                                                 qmp::ParallelContext::sequential());
    }
    const qmp::TwiddleSet* get() const { return set_.get(); }

  private:
    std::unique_ptr<AlignedWords> memory_;
    std::unique_ptr<qmp::TwiddleSet> set_;
};

// A populated plan.
class PlannedConversion {
  public:
    PlannedConversion(qmp::Word base, std::uint64_t m, qmp::ParallelContext parallel)
        : plan(base, m, parallel.tds),
          parallel_(parallel),
          twiddles_(2 * plan.fraction_words() + 64),
          tables_(plan.table_words()),
          scratch_(plan.scratch_words()) {
        plan.populate_fft_plans(context(), tables_.data());
        tables_.check();
        scratch_.check();
    }

    qmp::MultiplyContext context() const {
        return {parallel_, twiddles_.get(), scratch_.data(), scratch_.words()};
    }

    // The transformed powers, the lowest level's first.
    qmp::Word* tables() { return tables_.data(); }

    // The digit words, little-endian, and the guard word in front of them.
    std::vector<qmp::Word> convert(const std::vector<qmp::Word>& fraction, bool sequential = true,
                                   qmp::Progress* progress = nullptr) {
        const std::uint64_t m = plan.output_words();
        std::vector<qmp::Word> digits(m + 2, garbage);
        fill_garbage(scratch_.data(), scratch_.words());
        const auto run = sequential ? qmp::convert_L : qmp::qmq_CBRv2_ci_btrf_T;
        result = run(plan, context(), digits.data() + m + 1, m, fraction.data(), fraction.size(), progress,
                     nullptr);
        scratch_.check();
        EXPECT_EQ(digits.back(), garbage);
        EXPECT_EQ(digits.front(), garbage);
        digits.pop_back();
        digits.front() = result.guard;
        return digits;
    }

    qmp::ConvertPlanP plan;
    qmp::ConvertResult result;

  private:
    qmp::ParallelContext parallel_;
    Twiddles twiddles_;
    AlignedWords tables_;
    AlignedWords scratch_;
};

}  // namespace kelvara_test
