#include "digitfiles/ordalis/copy_digits.h"

#include <algorithm>
#include <memory>
#include <string>

#include "console/console.h"
#include "console/format.h"

namespace Ordalis {

namespace console = qmp::console;

void copy_digits(qmp::DigitReader& reader, std::uint64_t start, std::uint64_t end, qmp::DigitSink& sink,
                 std::uint64_t block_digits) {
    const auto buffer = std::make_unique_for_overwrite<char[]>(std::min(block_digits, end - start));
    const char* line_start = "";
    for (std::uint64_t position = start; position < end;) {
        const std::uint64_t count = std::min(block_digits, end - position);
        reader.read(position, buffer.get(), count);
        sink.write(buffer.get(), count);
        position += count;
        if (position < end && !console::can_rewrite_lines()) continue;
        console::write(line_start, 'w');
        console::write("Streaming:  " + console::format_separated(position - start) + "  digits written");
        line_start = "\r";
    }
    console::newline();
    sink.finish();
}

}  // namespace Ordalis
