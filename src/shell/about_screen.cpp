#include "shell/about_screen.h"

#include "console/console.h"
#include "platform/build_identity.h"

namespace kelvara {
namespace {

namespace console = qmp::console;

void print_authors() {
    console::write("Written by", 't');
    console::println(": The Kelvara Developers");
}

}  // namespace

void print_banner() {
    console::write("Kelvara v", 'g');
    console::print_column_line(console::default_column, version_with_build(), "( see README.md )");
    print_authors();
    console::newline();
    console::println("Distribute Freely - Please report any bugs.", 'w');
    console::newline();
    console::print_label("Tuning", " " + build_target(), 'G');
    console::write("  -  ", 'w');
    console::println(build_identity().tuning, 'P');
    console::newline();
}

void show_about_screen() {
    console::newline();
    console::println("Kelvara - Euler's Constant to the eXtReMe", 'G');
    console::newline();

    console::set_color('g');
    console::print_label_line("Version", version_with_build());
    print_authors();
    console::newline();

    console::println("Kelvara computes various mathematical constants to as many digits as the", 'w');
    console::println("computer holds.");
    console::newline();
    console::println("It began as a small program specialised for the Euler-Mascheroni constant.");
    console::println("It has since gained the ability to compute other constants.");
    console::newline();
    console::println("For all overclockers:");
    console::println("Kelvara is a multi-threaded Pi benchmark written by a");
    console::println("computer-enthusiast just like you. Enjoy :)");
    console::newline();

    print_disclaimer();
}

void print_disclaimer() {
    console::println("Disclaimer:", 'G');
    console::println("Performing large multi-threaded computations using this program may");
    console::println("subject your computer to extremely high levels of stress for extended");
    console::println("periods of time. To protect your computer, MAKE SURE that your hardware");
    console::println("is stable and fit before performing large computations. I will take");
    console::println("absolutely no responsibility for any damage that may be caused by this");
    console::println("program.");
    console::newline();
    console::println("This software is provided \"as is\", without any guarantee made to its");
    console::println("suitability or fitness for any particular use. It may contain bugs so use");
    console::println("of this program is at your own risk. I take no responsibility for any");
    console::println("damage that may unintentionally be caused through its use.");
    console::reset_color();
}

}  // namespace kelvara
