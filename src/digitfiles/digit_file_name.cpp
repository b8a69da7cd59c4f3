#include "digitfiles/digit_file_name.h"

#include "console/console.h"
#include "swap/sequential_file.h"

namespace qmp {

std::string digit_file_name(const std::string& directory, std::string_view constant, std::uint32_t radix,
                            std::string_view algorithm) {
    if (radix != 10 && radix != 16) console::fatal_error("Invalid Base");
    std::string name = directory.empty() ? std::string() : FileIO::with_trailing_slash(directory);
    name += constant;
    name += radix == 10 ? " - Dec - " : " - Hex - ";
    name += algorithm;
    name += ".txt";
    return name;
}

}  // namespace qmp
