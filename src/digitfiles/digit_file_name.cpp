#include "digitfiles/digit_file_name.h"

#include "console/console.h"
#include "swap/sequential_file.h"

namespace qmp {

std::string digits_name(std::string_view constant, std::uint32_t radix, std::string_view algorithm) {
    if (radix != 10 && radix != 16) console::fatal_error("Invalid Base");
    std::string name(constant);
    name += radix == 10 ? " - Dec - " : " - Hex - ";
    name += algorithm;
    return name;
}

std::string digit_file_name(const std::string& directory, std::string_view constant, std::uint32_t radix,
                            std::string_view algorithm) {
    const std::string name = digits_name(constant, radix, algorithm) + ".txt";
    return directory.empty() ? name : FileIO::with_trailing_slash(directory) + name;
}

}  // namespace qmp
