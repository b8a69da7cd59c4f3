// Plain products of word vectors, and buffers whose surroundings are watched.
#pragma once

#include <cstdint>
#include <vector>

#include "multiply/multiply_context.h"
#include "multiply/twiddle_set.h"
#include "multiply/word.h"
#include "support/twiddle_memory.h"

namespace kelvara_test {

// By the schoolbook method, one word at a time.
std::vector<qmp::Word> reference_product(const std::vector<qmp::Word>& a, const std::vector<qmp::Word>& b);

// n words of garbage, 64-byte aligned, with guard words after them.
class GuardedWords {
  public:
    explicit GuardedWords(std::uint64_t n);
    qmp::Word* data() { return data_; }
    std::uint64_t size() const { return n_; }
    std::vector<qmp::Word> value() const { return {data_, data_ + n_}; }
    bool guards_intact() const;

  private:
    std::uint64_t n_;
    std::vector<qmp::Word> storage_;
    qmp::Word* data_;
};

// A context on the calling thread with this scratch and the shared twiddle factors.
inline qmp::MultiplyContext sequential_context(GuardedWords& scratch) {
    return {qmp::ParallelContext::sequential(), &shared_twiddles(), scratch.data(), scratch.size()};
}

}  // namespace kelvara_test
