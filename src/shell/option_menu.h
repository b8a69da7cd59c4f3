// A numbered menu of things to run, or to test one after another.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "console/console.h"

namespace kelvara {

struct OptionMenuEntry {
    std::string name;
    qmp::console::Colour colour = 'w';
    // Exactly one of the two. A test returns true on success; an action always succeeds.
    std::function<void()> action;
    std::function<bool()> test;
};

struct OptionMenu {
    std::string title;
    std::vector<OptionMenuEntry> entries;  // in the order shown
};

// Shows the menu once and runs what the user chooses. With `run_all`, number 0 runs every entry in order and
// tells of each failed test; the entries are numbered from 1 then, otherwise from 0. What an entry throws
// escapes, from a run of all as well.
void show_option_menu(const OptionMenu& menu, bool run_all);

}  // namespace kelvara
