#include <algorithm>

#include "config/text_file.h"
#include "errors/file_exception.h"
#include "sessions/validation_file.h"

namespace kelvara {
namespace {

constexpr std::string_view file_name = "Username.txt";
constexpr std::string_view tag = "Username:";

bool is_control(char c) {
    return static_cast<unsigned char>(c) < ' ' || c == '\x7f';
}

// The rest of the tag's line, without control characters and blanks around it.
std::string name_in(std::string_view text) {
    const std::size_t place = text.find(tag);
    if (place == std::string_view::npos) return std::string("Tag not found in").append(file_name);
    text.remove_prefix(place + tag.size());
    std::string name(text.substr(0, text.find_first_of("\r\n")));
    std::erase_if(name, is_control);
    const std::size_t first = name.find_first_not_of(' ');
    if (first == std::string::npos) return {};
    return name.substr(first, name.find_last_not_of(' ') - first + 1);
}

}  // namespace

std::string validation_user_name(const std::string& program_directory) {
    for (const char* folder : {"", "../"}) {
        try {
            return name_in(qmp::read_text_file(program_directory + folder + std::string(file_name)).text);
        } catch (const qmp::FileIO::FileException&) {
            // Missing, or not ours to read: either way it is not here.
        }
    }
    return std::string(file_name) + " not found.";
}

}  // namespace kelvara
