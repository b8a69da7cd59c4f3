// What the program prints, in tests of single functions.
#pragma once

#include <string>

#include "support/standard_streams.h"

namespace kelvara_test {

// The text that the function prints, with plain line feeds.
template <typename Function>
std::string printed_by(Function&& function) {
    CapturedOutput output;
    function();
    std::string text = output.finish();
    std::erase(text, '\r');
    return text;
}

}  // namespace kelvara_test
