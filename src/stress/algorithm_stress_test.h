// A test made of one of the multiplication algorithms.
#pragma once

#include <string_view>

#include "stress/stress_test.h"

namespace kelvara {

// Which twiddle tables an algorithm's products need.
enum class TwiddleNeed {
    none,
    // A set that covers the product, without tables of the floating-point transform.
    covering,
    // Also the floating-point transform's for the residues of the hybrid transform.
    residues,
    // The floating-point transform's up to the product's length.
    floating_point,
};

class AlgorithmStressTest final : public StressTest {
  public:
    AlgorithmStressTest(const qmp::Algorithm64& algorithm, TwiddleNeed need)
        : algorithm_(algorithm), need_(need) {}

    std::uint64_t max_bits() const override;
    std::uint64_t scratch_bytes(std::uint64_t units) const override { return algorithm_.psize(units, 1); }
    TwiddleReach twiddle_reach(std::uint64_t units) const override;
    void square(const qmp::MultiplyContext& context, qmp::Word* product, const qmp::Word* a,
                std::uint64_t n) const override {
        algorithm_.multiply(context, product, a, n, a, n);
    }
    ProductWork work(std::uint64_t n) const override;

  private:
    bool is(std::string_view key) const { return algorithm_.key == key; }

    const qmp::Algorithm64& algorithm_;
    TwiddleNeed need_;
};

}  // namespace kelvara
