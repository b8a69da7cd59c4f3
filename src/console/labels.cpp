#include "console/labels.h"

namespace qmp::console {

void print_label_signed(std::string_view label, std::int64_t value, Colour colour) {
    print_label_line(label, format_signed(value), colour);
}

void print_label_signed_separated(std::string_view label, std::int64_t value, Colour colour) {
    print_label_line(label, format_signed_separated(value), colour);
}

void print_label_separated(std::string_view label, std::uint64_t value, Colour colour) {
    print_label_line(label, format_separated(value), colour);
}

void print_label_bytes(std::string_view label, std::uint64_t bytes, Colour colour) {
    print_label_line(label, format_bytes(bytes), colour);
}

void print_label_separated_bytes(std::string_view label, std::uint64_t bytes, Colour colour) {
    print_label_line(label, format_separated_bytes(bytes), colour);
}

void print_label_fixed(std::string_view label, double value, int decimals, Colour colour) {
    print_label_line(label, format_fixed(value, decimals), colour);
}

void print_label_time(std::string_view label, double seconds, Colour colour) {
    print_label_line(label, format_time(seconds), colour);
}

void print_column_signed(std::uint64_t column, std::string_view label, std::int64_t value, Colour colour) {
    print_column_line(column, label, format_signed(value), colour);
}

void print_column_signed_separated(std::uint64_t column, std::string_view label, std::int64_t value,
                                   Colour colour) {
    print_column_line(column, label, format_signed_separated(value), colour);
}

void print_column_separated(std::uint64_t column, std::string_view label, std::uint64_t value,
                            Colour colour) {
    print_column_line(column, label, format_separated(value), colour);
}

void print_column_bytes(std::uint64_t column, std::string_view label, std::uint64_t bytes, Colour colour) {
    print_column_line(column, label, format_bytes(bytes), colour);
}

void print_column_separated_bytes(std::uint64_t column, std::string_view label, std::uint64_t bytes,
                                  Colour colour) {
    print_column_line(column, label, format_separated_bytes(bytes), colour);
}

void print_column_fixed(std::uint64_t column, std::string_view label, double value, int decimals,
                        Colour colour) {
    print_column_line(column, label, format_fixed(value, decimals), colour);
}

void print_column_time(std::uint64_t column, std::string_view label, double seconds, Colour colour) {
    print_column_line(column, label, format_time(seconds), colour);
}

}  // namespace qmp::console
