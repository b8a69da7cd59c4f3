// A block of a summed series whose value disagrees with the same block taken modulo 2^61 - 1.
#pragma once

#include "errors/exception.h"

namespace kelvara {

class BSRModularCheckFailedException : public qmp::AlgorithmFailedException {
  public:
    // The block's terms are [a, b); `hash` holds one difference of check values per output of the block.
    BSRModularCheckFailedException(std::string function, std::string message, std::uint64_t a,
                                   std::uint64_t b, std::vector<std::uint64_t> hash)
        : qmp::AlgorithmFailedException(std::move(function), std::move(message)),
          a_(a),
          b_(b),
          hash_(std::move(hash)) {}
    QMP_EXCEPTION_OPERATIONS(BSRModularCheckFailedException, "BSRModularCheckFailedException")
    std::string serialize() const override;
    std::uint64_t a() const { return a_; }
    std::uint64_t b() const { return b_; }
    const std::vector<std::uint64_t>& hash() const { return hash_; }

  protected:
    void print_body() const override;
    std::uint64_t a_;
    std::uint64_t b_;
    std::vector<std::uint64_t> hash_;
};

}  // namespace kelvara
