#include "shell/leading_flags.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <map>
#include <string_view>

#include "console/console.h"
#include "console/parse.h"
#include "platform/startup_state.h"

namespace kelvara {
namespace {

namespace console = qmp::console;

std::int32_t to_int32(std::int64_t value) {
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, Limits::min(), Limits::max()));
}

void set_pause_mode(std::int64_t value) {
    startup_state().pause_mode = to_int32(value);
}

void set_colours(std::int64_t value) {
    console::enable_colours(value > 0);
}

void set_personal_data(std::int64_t value) {
    if (value != 0) startup_state().personal_data_shown = value > 0;
}

void set_height(std::int64_t value) {
    console::set_window_size(80, to_int32(value));
}

void set_skip_warnings(std::int64_t) {
    startup_state().skip_warnings = true;
}

using Handler = void (*)(std::int64_t value);

const std::map<std::string_view, Handler> leading_flags = {
    {"pause", set_pause_mode},
    {"colors", set_colours},
    {"PII", set_personal_data},
    {"height", set_height},
    {"skip-warnings", set_skip_warnings},
};

}  // namespace

void parse_leading_flags(CommandLine& command_line) {
    while (command_line.has_more()) {
        const auto flag = leading_flags.find(command_line.current_key());
        if (flag == leading_flags.end()) return;
        flag->second(console::parse_signed_with_suffix(command_line.take_pair().second));
    }
}

}  // namespace kelvara
