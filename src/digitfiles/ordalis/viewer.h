// Ordalis, the viewer of digit files.
#pragma once

namespace Ordalis {

// Asks for a file, shows what it holds, and does one thing with it. What goes wrong with files escapes as an
// exception.
void run_viewer();

}  // namespace Ordalis
