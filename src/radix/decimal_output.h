// The decimal driver with places to interfere, so that tests can see what it does when the hardware
// fails.
#pragma once

#include <cstdint>

#include "multiply/word.h"
#include "radix/halves.h"
#include "radix/output_driver.h"
#include "radix/radix_power.h"

namespace qmp {

// Called with the results of the steps that are repeated when they fail, and the number of the attempt, from
// 0.
class DecimalOutputHooks : public ConvertHooks {
  public:
    virtual void converted(std::uint64_t, ConvertResult&, Word* /*digits*/, std::uint64_t /*m*/) {}
    virtual void powered(std::uint64_t, RadixPower&) {}
    virtual void hashed_binary(std::uint64_t, std::uint64_t& /*hash*/) {}
};

// write_decimal() of output_driver.h.
DigitOutput write_decimal(const ComputeContext& context, BigFloatView x, std::uint64_t digits,
                          const OpenSink& open, DecimalOutputHooks& hooks);

}  // namespace qmp
