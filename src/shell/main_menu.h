// The menus that find one's way through the program.
#pragma once

namespace kelvara {

// The banner, the numbered list of what the program does, and the user's choice, which is run. Shown once.
void run_main_menu();

// Rarely used things, as an option menu.
void run_advanced_options_menu();

}  // namespace kelvara
