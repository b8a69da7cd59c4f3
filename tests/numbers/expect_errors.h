// Expectations of the arithmetic's exceptions: type, function, and text or sizes.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "errors/exception.h"

namespace kelvara_test {

template <typename Statement>
void expect_buffer_too_small(Statement statement, const std::string& function, std::uint64_t present,
                             std::uint64_t needed) {
    try {
        statement();
        ADD_FAILURE() << function << " did not throw";
    } catch (const qmp::BufferTooSmallException& e) {
        EXPECT_EQ(e.function(), function);
        EXPECT_EQ(e.buffer_size(), present);
        EXPECT_EQ(e.required_size(), needed);
    }
}

template <typename ExceptionType, typename Statement>
void expect_exception(Statement statement, const std::string& function, const std::string& message) {
    try {
        statement();
        ADD_FAILURE() << function << " did not throw";
    } catch (const ExceptionType& e) {
        EXPECT_EQ(e.function(), function);
        EXPECT_EQ(e.message(), message);
    }
}

}  // namespace kelvara_test
