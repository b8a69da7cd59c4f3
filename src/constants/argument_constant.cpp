#include "constants/argument_constant.h"

#include "console/console.h"
#include "console/input.h"
#include "console/parse.h"
#include "errors/exception.h"

namespace kelvara {

namespace console = qmp::console;

std::uint64_t read_argument(const char* prompt, ArgumentRange range) {
    for (;;) {
        console::write(prompt, 'w');
        const std::optional<std::uint64_t> value = console::parse_decimal_that_fits(console::read_line('T'));
        if (value && range.contains(*value)) return *value;
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
