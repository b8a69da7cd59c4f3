#include "digitfiles/ordalis/count.h"

#include <algorithm>
#include <span>
#include <string>

#include "console/console.h"
#include "console/format.h"
#include "digitfiles/ordalis/prompts.h"
#include "radix/digit_counting.h"

namespace Ordalis {

namespace console = qmp::console;

namespace {

std::string to_text(std::span<const std::uint64_t> counts) {
    std::string text = "{";
    for (const std::uint64_t count : counts) {
        if (text.size() > 1) text += ',';
        text += console::format_int(count);
    }
    return text + "}";
}

}  // namespace

void run_count(qmp::DigitReader& reader) {
    console::newline();
    const std::uint64_t first = ask_starting_digit(reader);
    const std::uint64_t last = ask_count("Ending Digit:   ", first, last_digit(reader));
    console::newline();
    if (is_accessible(reader, first - 1, last)) count_digits(reader, first - 1, last);
}

void count_digits(qmp::DigitReader& reader, std::uint64_t start, std::uint64_t end,
                  std::uint64_t line_digits) {
    reader.set_pos(start);
    reader.set_raw(true);
    const std::uint32_t radix = reader.get_radix();
    qmp::radix::DigitCounts counts{};
    while (reader.position() < end) {
        const std::uint64_t line_end = reader.position() + std::min(line_digits, end - reader.position());
        while (reader.position() < line_end) {
            const std::span<const char> values = reader.take(line_end - reader.position());
            qmp::radix::count_digits(counts, values.data(), values.size(), radix);
        }
        console::write(console::format_int(start + 1) + " - " + console::format_int(line_end) + " :\t", 'w');
        console::println(to_text(std::span(counts).first(radix)), 'Y');
        console::reset_color();
    }
}

}  // namespace Ordalis
