#include "digitfiles/ordalis/viewer.h"

#include "console/console.h"
#include "console/input.h"
#include "digitfiles/open_digit_file.h"
#include "digitfiles/ordalis/menus.h"

namespace Ordalis {

namespace console = qmp::console;

namespace {

constexpr std::uint64_t buffer_bytes = 67108864;

}  // namespace

void run_viewer() {
    console::newline();
    console::println("Kelvara Ordalis v2.3.308", 'G');
    console::reset_color();
    console::newline();
    console::println("Enter the path of the file (include .txt or .qcd extensions):");
    const std::string path = console::read_line('T');
    const std::unique_ptr<qmp::DigitReader> reader = qmp::OpenDigitFile(path, false, buffer_bytes);
    if (auto* compressed = dynamic_cast<qmp::QCDReader*>(reader.get())) {
        run_compressed_menu(*compressed, path);
    } else {
        run_text_menu(*reader, path);
    }
}

}  // namespace Ordalis
