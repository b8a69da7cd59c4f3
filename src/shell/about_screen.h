// What the program tells of itself.
#pragma once

namespace kelvara {

// The head of the main menu.
void print_banner();
void show_about_screen();
void print_disclaimer();

}  // namespace kelvara
