#include "digitfiles/ordalis/write_text.h"

#include "console/console.h"
#include "console/input.h"
#include "digitfiles/ordalis/copy_digits.h"
#include "digitfiles/ordalis/prompts.h"
#include "digitfiles/text_writer.h"

namespace Ordalis {

namespace console = qmp::console;

void run_write_text(qmp::DigitReader& reader) {
    console::println("\n\nWrite to Text File.\n", 'P');
    const std::uint64_t first = ask_starting_digit(reader);
    const std::uint64_t last = last_digit(reader);
    const std::uint64_t start = first - 1;
    const std::uint64_t count = ask_count("Digits to Write: ", 1, last - start);
    console::newline();
    if (!is_accessible(reader, start, start + count)) return;
    console::println("Enter the path of the destination file:", 'w');
    std::string path = console::read_line('T');
    if (!path.ends_with(".txt")) path += ".txt";
    console::newline();
    write_text(reader, start, start + count, path);
}

void write_text(qmp::DigitReader& reader, std::uint64_t start, std::uint64_t end, const std::string& path) {
    reader.set_raw(false);
    qmp::TextWriter writer(path, start == 0 ? first_digits(reader) : "", false, reader.get_radix());
    copy_digits(reader, start, end, writer);
}

}  // namespace Ordalis
