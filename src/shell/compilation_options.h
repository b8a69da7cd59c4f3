// The screen that tells how this binary was built and what it is made of.
#pragma once

namespace kelvara {

// Waits for a key below its introduction, then prints all sections.
void show_compilation_options();

}  // namespace kelvara
