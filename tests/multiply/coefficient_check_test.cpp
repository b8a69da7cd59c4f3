#include "multiply/coefficient_check.h"

#include <gtest/gtest.h>
#include <xmmintrin.h>

#include <cstdint>
#include <string>

#include "errors/convolution_exceptions.h"

namespace {

// The calling thread's floating-point control state, put back at the end.
class ControlState {
  public:
    ControlState() : vector_(_mm_getcsr()) { asm volatile("fnstcw %0" : "=m"(x87_)); }
    ~ControlState() {
        _mm_setcsr(vector_);
        set_x87(x87_);
    }
    static void set_x87(std::uint16_t control) { asm volatile("fldcw %0" : : "m"(control)); }
    std::uint16_t x87() const { return x87_; }
    unsigned vector() const { return vector_; }

  private:
    unsigned vector_;
    std::uint16_t x87_ = 0;
};

// What a failing check prints, and its exception.
std::string failing_check(std::uint64_t limit, std::uint64_t found) {
    testing::internal::CaptureStdout();
    try {
        qmp::check_coefficients("Transform::inverse()", limit, found);
        ADD_FAILURE() << "nothing thrown";
    } catch (const qmp::ConvolutionFailedException& e) {
        EXPECT_EQ(e.function(), "Transform::inverse()");
        EXPECT_EQ(e.message(), "Coefficient is too large.");
        EXPECT_EQ(e.limit(), limit);
        EXPECT_EQ(e.found(), found);
    }
    return testing::internal::GetCapturedStdout();
}

bool warns(const std::string& output) {
    return output.find("The FPU Control Word has been corrupted.") != std::string::npos;
}

TEST(CoefficientCheck, Bound) {
    qmp::check_coefficients("Transform::inverse()", 5, 4);
    qmp::check_coefficients("Transform::inverse()", 1, 0);
    EXPECT_TRUE(qmp::floating_point_state_is_default());
    EXPECT_EQ(failing_check(5, 5), "");
    EXPECT_EQ(failing_check(5, ~std::uint64_t{0}), "");
}

TEST(CoefficientCheck, WarnsOfAControlState) {
    const ControlState state;
    for (unsigned change : {0x6000u, 0x8000u, 0x0040u, 0x0080u}) {  // rounding, flush, subnormals, a mask
        _mm_setcsr(state.vector() ^ change);
        EXPECT_FALSE(qmp::floating_point_state_is_default());
        EXPECT_TRUE(change == 0x0080u || warns(failing_check(5, 5))) << change;
        _mm_setcsr(state.vector());
    }
    _mm_setcsr(state.vector() | 0x3f);  // flags of past operations are no control
    EXPECT_TRUE(qmp::floating_point_state_is_default());
    _mm_setcsr(state.vector());
    for (int precision : {0x0000, 0x0100, 0x0200, 0x0300}) {
        ControlState::set_x87(static_cast<std::uint16_t>((state.x87() & ~0x0300) | precision));
        const bool fine = qmp::floating_point_state_is_default();
        const std::string output = failing_check(7, 8);
        EXPECT_EQ(fine, precision >= 0x0200);
        EXPECT_EQ(warns(output), precision < 0x0200);
    }
    ControlState::set_x87(state.x87());
    EXPECT_TRUE(qmp::floating_point_state_is_default());
}

// A state that fails no check says nothing.
TEST(CoefficientCheck, SilentBelowTheBound) {
    const ControlState state;
    ControlState::set_x87(static_cast<std::uint16_t>(state.x87() & ~0x0300));
    testing::internal::CaptureStdout();
    qmp::check_coefficients("Transform::inverse()", 5, 4);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

}  // namespace
