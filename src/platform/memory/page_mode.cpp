#include "platform/memory/page_mode.h"

#include "errors/exception.h"
#include "platform/menu_layout.h"

namespace qmp {

std::string mode_to_string(PageMode mode) {
    switch (mode) {
        case PageMode::disabled:
            return "disabled";
        case PageMode::attempt:
            return "attempt";
        case PageMode::forced:
            return "forced";
    }
    throw InvalidParametersException("mode_to_string", "Invalid Mode");
}

PageMode string_to_mode(std::string_view text) {
    for (const PageMode mode : {PageMode::disabled, PageMode::attempt, PageMode::forced}) {
        if (text == mode_to_string(mode)) return mode;
    }
    throw InvalidParametersException("string_to_mode", "Invalid Mode: " + std::string(text));
}

PageMode next_mode(PageMode mode) {
    switch (mode) {
        case PageMode::attempt:
            return PageMode::forced;
        case PageMode::forced:
            return PageMode::disabled;
        default:
            return PageMode::attempt;
    }
}

void print_mode_option(std::string_view label, PageMode mode) {
    switch (mode) {
        case PageMode::disabled:
            menu::print_option(label, "Disabled", 'R');
            break;
        case PageMode::attempt:
            menu::print_option(label, "Attempt", 'Y');
            break;
        case PageMode::forced:
            menu::print_option(label, "Forced", 'G');
            break;
        default:
            menu::print_option(label, std::to_string(static_cast<std::int32_t>(mode)), 'w');
    }
}

}  // namespace qmp
