#include "console/console.h"

#include <atomic>
#include <cstdlib>

#include "console/output_buffer.h"
#include "platform/os/console_device.h"
#include "platform/os/process.h"
#include "platform/os/unicode.h"

namespace qmp::console {
namespace {

// NO_COLOR is how users ask every program for plain text.
bool colours_are_welcome() {
    const char* refusal = std::getenv("NO_COLOR");
    return refusal == nullptr || *refusal == '\0';
}

std::atomic<bool> colouring{colours_are_welcome()};
std::atomic<std::uint64_t> outputs{0};

constexpr int white_attribute = 7;

// The first `count` characters of a text, in bytes; all of them when it has fewer.
std::size_t length_of_characters(std::string_view text, std::uint64_t count) {
    std::size_t length = 0;
    for (; count > 0 && length < text.size(); --count) length += os::decode_utf8(text.substr(length)).length;
    return length;
}

void append_spaces(OutputBuffer& buffer, std::uint64_t count) {
    for (; count > 0; --count) buffer.append(" ");
}

std::uint64_t finish(OutputBuffer& buffer) {
    buffer.flush();
    outputs.fetch_add(1, std::memory_order_relaxed);
    return buffer.written();
}

// White around a labelled value, unless its colour is ' '.
void set_color_around(Colour colour) {
    if (colour != ' ') reset_color();
}

}  // namespace

int colour_attribute(Colour colour) {
    switch (colour) {
        case 'B':
            return 9;
        case 'G':
            return 10;
        case 'T':
            return 11;
        case 'R':
            return 12;
        case 'P':
            return 13;
        case 'Y':
            return 14;
        case 'b':
            return 1;
        case 'g':
            return 2;
        case 't':
            return 3;
        case 'r':
            return 4;
        case 'p':
            return 5;
        case 'y':
            return 6;
        case ' ':
            return -1;
        default:
            return white_attribute;
    }
}

void enable_colours(bool enabled) {
    colouring.store(enabled);
}
bool colours_enabled() {
    return colouring.load();
}

void set_color(Colour colour) {
    const int attribute = colour_attribute(colour);
    if (attribute < 0 || !colours_enabled() || !os::output_is_console()) return;
    os::set_text_attribute(attribute);
}

void reset_color() {
    set_color('w');
}

std::uint64_t write(std::string_view text, Colour colour) {
    set_color(colour);
    OutputBuffer buffer;
    buffer.append(text);
    return finish(buffer);
}

std::uint64_t println(std::string_view text, Colour colour) {
    set_color(colour);
    OutputBuffer buffer;
    buffer.append(text);
    buffer.append("\n");
    return finish(buffer);
}

std::uint64_t println_wide(std::u16string& text, Colour colour) {
    set_color(colour);
    OutputBuffer buffer;
    buffer.append(text);
    buffer.append("\n");
    text.clear();
    return finish(buffer);
}

void newline() {
    write("\n");
}

void print_warning(std::string_view text, bool keep_colour) {
    newline();
    println(text, 'R');
    if (!keep_colour) reset_color();
}

std::uint64_t print_label(std::string_view label, std::string_view value, Colour colour) {
    set_color_around(colour);
    OutputBuffer buffer;
    buffer.append(label);
    buffer.append(": ");
    std::uint64_t written = finish(buffer);
    written += write(value, colour);
    set_color_around(colour);
    return written;
}

std::uint64_t print_label_line(std::string_view label, std::string_view value, Colour colour) {
    const std::uint64_t written = print_label(label, value, colour);
    newline();
    return written + 1;
}

std::uint64_t print_column(std::uint64_t column, std::string_view label, std::string_view value,
                           Colour colour) {
    set_color_around(colour);
    OutputBuffer buffer;
    if (column > 0) {
        const std::string_view shown = label.substr(0, length_of_characters(label, column - 1));
        buffer.append(shown);
        append_spaces(buffer, column - count_characters(shown));
    }
    std::uint64_t written = finish(buffer);
    written += write(value, colour);
    set_color_around(colour);
    return written;
}

std::uint64_t print_column_line(std::uint64_t column, std::string_view label, std::string_view value,
                                Colour colour) {
    const std::uint64_t written = print_column(column, label, value, colour);
    newline();
    return written + 1;
}

std::uint64_t print_right(std::uint64_t width, std::string_view text, Colour colour) {
    set_color(colour);
    const std::uint64_t characters = count_characters(text);
    OutputBuffer buffer;
    if (characters < width) append_spaces(buffer, width - characters);
    buffer.append(text);
    return finish(buffer);
}

void print_pass_fail(bool passed) {
    write(passed ? "Passed" : "Failed", passed ? 'G' : 'R');
    reset_color();
}

void print_yes_no(bool yes) {
    write(yes ? "Yes" : "No", yes ? 'G' : 'R');
    reset_color();
    newline();
}

void pause(Colour colour) {
    set_color(colour);
    outputs.fetch_add(1, std::memory_order_relaxed);
    if (!os::input_is_console() || !os::output_is_console()) return;
    os::write_console(u"Press any key to continue . . . ");
    os::wait_for_key();
    os::write_console(u"\n");
}

void terminate(int exit_code) {
    reset_color();
    pause(' ');
    os::exit_process(exit_code);
}

void fatal_error(std::string_view text) {
    println("\n");
    println(text, 'R');
    println("\n", 'w');
    terminate(1);
}

bool set_window_size(int width, int height) {
    if (width < 1 || height < 1) return false;
    const os::WindowSize largest = os::largest_window_size();
    if (largest.columns == 0 || largest.rows == 0) return false;
    const int right = width - 1 < largest.columns ? width - 1 : largest.columns;
    const int bottom = height - 1 < largest.rows ? height - 1 : largest.rows;
    return os::set_window_rectangle(right, bottom);
}

std::uint64_t output_counter() {
    return outputs.load(std::memory_order_relaxed);
}

bool can_rewrite_lines() {
    return os::console_rewrites_lines();
}

std::uint64_t window_columns() {
    constexpr int usual_columns = 80;
    const int columns = os::window_size().columns;
    return static_cast<std::uint64_t>(columns > 0 ? columns : usual_columns);
}

std::uint64_t count_characters(std::string_view text) {
    std::uint64_t count = 0;
    for (; !text.empty(); ++count) text.remove_prefix(os::decode_utf8(text).length);
    return count;
}

}  // namespace qmp::console
