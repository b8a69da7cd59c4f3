#include "console/input.h"

#include <algorithm>

#include "console/format.h"
#include "console/parse.h"
#include "platform/os/console_device.h"
#include "platform/os/process.h"
#include "platform/os/unicode.h"

namespace qmp::console {
namespace {

// Strips control characters from the end of a chunk; true when a line feed was among them.
template <typename Text>
bool strip_line_end(Text& chunk) {
    bool complete = false;
    while (!chunk.empty()) {
        using Unsigned = std::make_unsigned_t<typename Text::value_type>;
        const auto last = static_cast<Unsigned>(chunk.back());
        if (last >= 32) break;
        complete = complete || last == '\n';
        chunk.pop_back();
    }
    return complete;
}

// Chunks up to the end of the line; nothing when the input ended before the first of them.
template <typename Text>
std::optional<Text> collect_line(std::optional<Text> (*read_chunk)()) {
    std::optional<Text> chunk = read_chunk();
    if (!chunk) return std::nullopt;
    Text line;
    for (; chunk; chunk = read_chunk()) {
        const bool complete = strip_line_end(*chunk);
        line += *chunk;
        if (complete) break;
    }
    return line;
}

// A file's byte-order mark is not part of what it says.
void drop_byte_order_mark(std::string& line) {
    constexpr std::string_view mark = "\xef\xbb\xbf";
    if (line.compare(0, mark.size(), mark) == 0) line.erase(0, mark.size());
}

[[noreturn]] void end_without_input() {
    println("\n");
    println("There is no more input: the program ends here.", 'R');
    reset_color();
    os::exit_process(1);
}

// The prompt in white while the answer has a colour of its own.
void write_prompt(std::string_view prompt, Colour colour) {
    write(prompt, colour == ' ' ? ' ' : 'w');
}

}  // namespace

std::optional<std::string> read_line_or_end(Colour colour) {
    set_color(colour);
    std::optional<std::string> line;
    if (os::input_is_console()) {
        const auto typed = collect_line<std::u16string>(os::read_console);
        if (typed) line = os::to_utf8(*typed);
    } else {
        line = collect_line<std::string>(os::read_bytes);
        // Through UTF-16 and back, malformed bytes become replacement characters as on a console.
        if (line) line = os::to_utf8(os::to_utf16(*line));
        if (line) drop_byte_order_mark(*line);
    }
    if (colour != ' ') reset_color();
    return line;
}

std::string read_line(Colour colour) {
    std::optional<std::string> line = read_line_or_end(colour);
    if (!line) end_without_input();
    return *std::move(line);
}

std::string read_labelled_line(std::string_view label, Colour colour) {
    write_prompt(std::string(label) + ": ", colour);
    return read_line(colour);
}

std::int64_t read_int(Colour colour) {
    return parse_signed(read_line(colour));
}

std::int64_t read_int_in_range(std::string_view prompt, std::int64_t low, std::int64_t high, Colour colour) {
    for (;;) {
        write_prompt(prompt, colour);
        const std::int64_t value = read_int(colour);
        if (low <= value && value <= high) return value;
    }
}

std::uint64_t read_digit_count_in_range(std::string_view prompt, std::uint64_t low, std::uint64_t high,
                                        Colour colour) {
    for (;;) {
        write_prompt(prompt, colour);
        const std::optional<std::uint64_t> value = parse_unsigned_digit_count(read_line(colour));
        if (value && low <= *value && *value <= high) return *value;
    }
}

std::uint64_t read_bytes(Colour colour) {
    return parse_bytes(read_line(colour));
}

std::uint64_t ask_digit_count(std::string_view prompt, std::uint64_t low, std::uint64_t high) {
    println("Enter the number of digits: (e.g. \"1000000\", \"25m\", \"10b\")\n", 'G');
    println("Suffixes:", 'w');
    println("    m = 1,000,000         ( 10^6 )");
    println("    b = 1,000,000,000     ( 10^9 )");
    println("    t = 1,000,000,000,000 ( 10^12 )");
    println("    K = 1,024             ( 2^10 )");
    println("    M = 1,048,576         ( 2^20 )");
    println("    G = 1,073,741,824     ( 2^30 )");
    println("    T = 1,099,511,627,776 ( 2^40 )");
    newline();
    return read_digit_count_in_range(prompt, low, high, 'T');
}

std::uint64_t ask_memory_cap() {
    println("Please Select a Memory Cap:\n");
    println("Enter a memory limit: (e.g. 768MB, 2.5GB, etc...)");
    write("Bytes: ");
    return std::min(read_bytes('T'), largest_memory_cap);
}

}  // namespace qmp::console
