#include "digitfiles/ordalis/write_compressed.h"

#include <limits>

#include "console/console.h"
#include "console/input.h"
#include "digitfiles/ordalis/copy_digits.h"
#include "digitfiles/ordalis/prompts.h"
#include "digitfiles/qcd_writer.h"

namespace Ordalis {

namespace console = qmp::console;

namespace {

constexpr std::uint64_t buffer_bytes = 67108864;

std::uint64_t ask_digits_per_file() {
    for (;;) {
        const std::uint64_t digits =
            ask_count("Digits per file (0 for single file): ", 0, std::numeric_limits<std::uint64_t>::max());
        if (digits == 0) return qmp::unlimited_digits_per_file;
        if (digits >= least_digits_in_file) return digits;
        console::println("Must be at least 1,000,000.\n");
    }
}

std::string ask_name() {
    console::println("Enter a name for the digits:", 'w');
    std::string name = console::read_line('T');
    return name.empty() ? default_name : name;
}

}  // namespace

void run_write_compressed(qmp::DigitReader& reader) {
    console::println("\n\nWrite to Compressed File.\n", 'P');
    const std::uint64_t count = ask_count("Digits to Write: ", 1, last_digit(reader));
    console::newline();
    if (!is_accessible(reader, 0, count)) return;
    CompressedOutput output;
    output.digits_per_file = ask_digits_per_file();
    console::newline();
    output.name = ask_name();
    output.folder = ask_destination_folder();
    console::newline();
    write_compressed(reader, 0, count, output, 0);
}

void write_compressed(qmp::DigitReader& reader, std::uint64_t start, std::uint64_t end,
                      const CompressedOutput& output, std::uint64_t first_file) {
    reader.set_raw(true);
    qmp::QCDWriter writer(output.folder, output.name, first_digits(reader), output.digits_per_file,
                          first_file, reader.get_radix(), buffer_bytes);
    copy_digits(reader, start, end, writer);
}

}  // namespace Ordalis
