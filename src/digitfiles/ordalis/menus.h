// The menus of the viewer: what a file holds, and what can be done with it. One operation is chosen, runs,
// and that is all; only the search folders of a compressed file are added to before.
#pragma once

#include <string>

#include "digitfiles/qcd_reader.h"

namespace Ordalis {

// `path` is that of the open file.
void run_text_menu(qmp::DigitReader& reader, const std::string& path);
void run_compressed_menu(qmp::QCDReader& reader, const std::string& path);

}  // namespace Ordalis
