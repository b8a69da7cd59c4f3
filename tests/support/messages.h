// What an operation throws.
#pragma once

#include <string>

namespace kelvara_test {

// The message of the exception of that class, or a remark that nothing was thrown.
template <typename Exception, typename Function>
std::string message_of(Function&& function) {
    try {
        function();
    } catch (const Exception& exception) {
        return exception.message();
    }
    return "nothing was thrown";
}

}  // namespace kelvara_test
