#include "constants/argument_constant.h"

#include <algorithm>

#include "console/console.h"
#include "console/input.h"
#include "console/parse.h"
#include "errors/exception.h"

namespace kelvara {

namespace console = qmp::console;

namespace {

// The parser saturates, so the largest 64-bit value also stands for everything above it.
bool saturated(std::uint64_t value, const std::string& text) {
    if (value != UINT64_MAX) return false;
    const std::size_t start = std::min(text.find_first_not_of('0'), text.size());
    const std::size_t end = std::min(text.find_first_not_of("0123456789", start), text.size());
    return text.compare(start, end - start, std::to_string(UINT64_MAX)) != 0;
}

}  // namespace

std::uint64_t read_argument(const char* prompt, ArgumentRange range) {
    for (;;) {
        console::write(prompt, 'w');
        const std::string line = console::read_line('T');
        const std::uint64_t value = console::parse_decimal(line);
        if (range.contains(value) && !saturated(value, line)) return value;
    }
}

void ArgumentConstant::set_argument(std::uint64_t value) {
    if (!range_.contains(value)) {
        throw qmp::InvalidParametersException("", std::to_string(value) + " is out of range.");
    }
    argument_ = value;
}

void ArgumentConstant::ask_argument() {
    console::println(heading_, 'w');
    argument_ = read_argument("n = ", range_);
}

}  // namespace kelvara
