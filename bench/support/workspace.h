// Operands, results and what the engine needs for products up to one length.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "multiply/multiply_context.h"
#include "multiply/twiddle_set.h"

namespace bench {

using Words = std::vector<qmp::Word>;

// 64-byte aligned memory, left as the system gives it.
class AlignedWords {
  public:
    explicit AlignedWords(std::uint64_t words);
    qmp::Word* data() const { return data_.get(); }

  private:
    struct Free {
        void operator()(qmp::Word* words) const;
    };
    std::unique_ptr<qmp::Word, Free> data_;
};

// Reproducible words that are no round numbers; the highest bit is set.
Words random_words(std::uint64_t n, std::uint64_t seed);

// The longest product that the dispatch reaches, in words.
std::uint64_t reach();

// Twiddle tables and scratch for products of up to `product_words` words with `tasks` tasks, at the current
// level.
class Workspace {
  public:
    Workspace(std::uint64_t product_words, std::uint64_t tasks);

    const qmp::MultiplyContext& context() const { return context_; }
    std::uint64_t scratch_words() const { return context_.scratch_words; }

  private:
    qmp::ParallelContext parallel_;
    AlignedWords twiddle_memory_;
    qmp::TwiddleSet twiddles_;
    AlignedWords scratch_;
    qmp::MultiplyContext context_;
};

}  // namespace bench
