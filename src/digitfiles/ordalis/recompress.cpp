#include "digitfiles/ordalis/recompress.h"

#include <algorithm>
#include <filesystem>
#include <limits>
#include <system_error>

#include "console/console.h"
#include "digitfiles/ordalis/prompts.h"
#include "digitfiles/qcd_writer.h"
#include "errors/exception.h"
#include "multiply/word.h"
#include "swap/sequential_file.h"

namespace Ordalis {

namespace console = qmp::console;

namespace {

constexpr std::uint64_t largest = std::numeric_limits<std::uint64_t>::max();

// Windows finds nothing of a name that ends in a slash.
std::filesystem::path native_folder(const std::string& folder) {
    const std::filesystem::path path(std::u8string(folder.begin(), folder.end()));
    return path.has_filename() ? path : path.parent_path();
}

bool is_same_folder(const std::string& a, const std::string& b) {
    std::error_code error;
    return std::filesystem::equivalent(native_folder(a), native_folder(b), error) && !error;
}

bool is_empty(const FileRange& range) {
    if (range.start < range.end) return false;
    console::println("\nNo Digits to Recompress.");
    return true;
}

}  // namespace

FileRange range_of_files(const qmp::DigitReader& reader, std::uint64_t digits_per_file, std::uint64_t first,
                         std::uint64_t last) {
    // Nothing is behind the largest position, which is no digit's.
    const auto position = [&](qmp::DoubleWord file) {
        return static_cast<std::uint64_t>(std::min<qmp::DoubleWord>(file * digits_per_file, largest));
    };
    return {position(first), std::min(position(qmp::DoubleWord{last} + 1), last_digit(reader))};
}

std::string result_name(const std::string& common_prefix) {
    const std::string name = common_prefix.substr(0, common_prefix.find_last_not_of(" -") + 1);
    return name.empty() ? default_name : name;
}

void check_destination(const qmp::QCDReader& reader, const CompressedOutput& output) {
    std::string folder = qmp::FileIO::with_trailing_slash(output.folder);
    if (output.digits_per_file != qmp::unlimited_digits_per_file) folder += output.name;
    for (const std::string& source : reader.search_paths()) {
        if (!is_same_folder(folder, source)) continue;
        throw qmp::InvalidParametersException(
            "", "The digits cannot be written into the folder that they are read from.");
    }
}

void run_recompress(qmp::QCDReader& reader) {
    console::println("\n\nRecompress to Partial Compressed File.\n", 'P');
    CompressedOutput output;
    output.digits_per_file = ask_count("Digits per file: ", least_digits_in_file, largest);
    const std::uint64_t first = ask_count("Start ID: ", 0, largest);
    const std::uint64_t last = ask_count("End   ID: ", 0, largest);
    FileRange range = range_of_files(reader, output.digits_per_file, first, last);
    if (is_empty(range)) return;
    if (!reader.check_range(range.start, range.end)) {
        console::newline();
        return print_not_accessible();
    }
    // The files that were opened may have told the total.
    range = range_of_files(reader, output.digits_per_file, first, last);
    if (is_empty(range)) return;
    output.folder = ask_destination_folder();
    output.name = result_name(reader.common_prefix());
    check_destination(reader, output);
    console::newline();
    write_compressed(reader, range.start, range.end, output, first);
}

}  // namespace Ordalis
