#include "config/text_file.h"

#include <cstddef>
#include <cstdint>
#include <utility>

#include "errors/file_exception.h"
#include "platform/os/error_codes.h"
#include "platform/os/file.h"
#include "platform/os/unicode.h"

namespace qmp {
namespace {

constexpr std::string_view utf8_mark = "\xef\xbb\xbf";
constexpr std::string_view little_endian_mark = "\xff\xfe";
constexpr std::string_view big_endian_mark = "\xfe\xff";

// `low` is where the low byte of a unit stands: 0 or 1.
std::string from_utf16(std::string_view bytes, std::size_t low) {
    std::u16string units;
    units.reserve(bytes.size() / 2 + 1);
    std::size_t i = 0;
    for (; i + 1 < bytes.size(); i += 2) {
        const auto low_byte = static_cast<std::uint8_t>(bytes[i + low]);
        const auto high_byte = static_cast<std::uint8_t>(bytes[i + 1 - low]);
        units += static_cast<char16_t>(low_byte | high_byte << 8);
    }
    if (i < bytes.size()) units += u'\xfffd';
    return os::to_utf8(units);
}

}  // namespace

DecodedText decode_text(std::string bytes) {
    const std::string_view view = bytes;
    if (view.starts_with(little_endian_mark))
        return {from_utf16(view.substr(2), 0), "UTF-16 (Little Endian)"};
    if (view.starts_with(big_endian_mark)) return {from_utf16(view.substr(2), 1), "UTF-16 (Big Endian)"};
    if (view.starts_with(utf8_mark)) bytes.erase(0, utf8_mark.size());
    return {std::move(bytes), "UTF-8"};
}

std::string read_file_bytes(const std::string& path) {
    constexpr std::size_t block = std::size_t{1} << 16;
    os::File file;
    const os::ErrorCode open_error = file.open(path);
    if (open_error != os::no_error)
        throw FileIO::FileException("read_file_bytes()", "Unable to open file.", path, open_error);
    // To the end, whatever size the file claims to have.
    std::string bytes;
    for (;;) {
        const std::size_t done = bytes.size();
        bytes.resize(done + block);
        const os::Transfer transfer = file.read(bytes.data() + done, block);
        if (transfer.error != os::no_error)
            throw FileIO::FileException("read_file_bytes()", "Unable to read file.", path, transfer.error);
        bytes.resize(done + transfer.bytes);
        if (bytes.size() > largest_text_file)
            throw FileIO::FileException("read_file_bytes()", "Unable to read file.", path,
                                        os::file_too_large);
        if (transfer.bytes < block) return bytes;
    }
}

DecodedText read_text_file(const std::string& path) {
    return decode_text(read_file_bytes(path));
}

}  // namespace qmp
