#include "console/format.h"

#include <cmath>
#include <cstdio>

namespace qmp::console {
namespace {

constexpr const char* units[] = {" bytes", " KiB", " MiB", " GiB", " TiB", " PiB", " EiB"};

// The magnitude of a signed value; the most negative one has no counterpart among the signed.
std::uint64_t magnitude(std::int64_t value) {
    const auto bits = static_cast<std::uint64_t>(value);
    return value < 0 ? 0 - bits : bits;
}

std::string two_digits(std::uint64_t value) {
    return (value < 10 ? "0" : "") + std::to_string(value);
}

// `thousandths` of a unit with three significant digits, and the unit, which rounding can raise.
std::string format_thousandths(std::uint64_t thousandths, int unit) {
    const std::uint64_t t = thousandths;
    if (t < 1'000) {
        return (t >= 995 ? std::string("1.00") : "0." + std::to_string((t + 5) / 10)) + units[unit];
    }
    if (t < 10'000) {
        const std::uint64_t hundredths = (t + 5) / 10;
        if (hundredths == 1'000) return std::string("10.0") + units[unit];
        return std::to_string(hundredths / 100) + "." + two_digits(hundredths % 100) + units[unit];
    }
    if (t < 100'000) {
        const std::uint64_t tenths = (t + 50) / 100;
        if (tenths == 1'000) return std::string(" 100") + units[unit];
        return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + units[unit];
    }
    if (t >= 999'500) return std::string("0.98") + units[unit + 1];
    return " " + std::to_string((t + 500) / 1'000) + units[unit];
}

}  // namespace

std::string format_int(std::uint64_t value, IntegerStyle style) {
    switch (style) {
        case IntegerStyle::separated:
            return format_separated(value);
        case IntegerStyle::bytes:
            return format_bytes(value);
        case IntegerStyle::separated_bytes:
            return format_separated_bytes(value);
        default:
            return std::to_string(value);
    }
}

std::string format_signed(std::int64_t value, IntegerStyle style) {
    return (value < 0 ? "-" : "") + format_int(magnitude(value), style);
}

std::string format_separated(std::uint64_t value) {
    const std::string digits = std::to_string(value);
    std::string result;
    result.reserve(digits.size() + digits.size() / 3);
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (i > 0 && (digits.size() - i) % 3 == 0) result += ',';
        result += digits[i];
    }
    return result;
}

std::string format_signed_separated(std::int64_t value) {
    return format_signed(value, IntegerStyle::separated);
}

std::string format_bytes(std::uint64_t bytes) {
    if (bytes < 1'000) return (bytes < 10 ? " " : "") + std::to_string(bytes) + units[0];
    int unit = 1;
    for (; bytes >= 1'024'000; ++unit) bytes >>= 10;
    return format_thousandths(bytes * 1'000 / 1'024, unit);
}

std::string format_separated_bytes(std::uint64_t bytes) {
    return format_separated(bytes) + " (" + format_bytes(bytes) + ")";
}

std::string format_fixed(double value, int decimals) {
    if (decimals < 0) decimals = 0;
    const int length = std::snprintf(nullptr, 0, "%.*f", decimals, value);
    std::string text(static_cast<std::size_t>(length), '\0');
    std::snprintf(text.data(), text.size() + 1, "%.*f", decimals, value);
    return text;
}

std::string format_time(double seconds) {
    constexpr double minute = 60, hour = 3'600, day = 86'400;
    const double absolute = std::fabs(seconds);
    const std::string start = format_fixed(seconds, 3) + " seconds  ( ";
    if (absolute < 2 * hour) return start + format_fixed(seconds / minute, 3) + " minutes )";
    if (absolute < 2 * day) return start + format_fixed(seconds / hour, 3) + " hours )";
    return start + format_fixed(seconds / day, 3) + " days )";
}

}  // namespace qmp::console
