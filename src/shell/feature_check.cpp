#include "shell/feature_check.h"

#include "console/console.h"
#include "platform/startup_state.h"

namespace kelvara {
namespace {

namespace console = qmp::console;

void warn_of_missing_features() {
    console::print_warning("Warning:", true);
    console::println("  This computer does not have all the processor or operating system");
    console::println("  features that are necessary to run this binary.\n");
    console::println("  Proceeding may cause the program to crash.");
    console::newline();
    console::println("  Command line users can skip this message by passing, \"skip-warnings\"", 'g');
    console::println("  as the first parameter.");
    console::newline();
    if (!startup_state().skip_warnings) console::pause('w');
    console::println("");
    console::println("", 'w');
}

}  // namespace

void check_processor_features(const BuildIdentity& identity, const qmp::ProcessorFeatures& features) {
    console::println("\nChecking processor/OS features...\n");
    console::println("Required Features:");
    console::println("    " + required_feature_list(identity), 'T');
    console::newline();
    if (has_required_features(identity, features)) {
        console::println("", 'w');
    } else {
        warn_of_missing_features();
    }
}

void check_processor_features() {
    check_processor_features(build_identity(), qmp::detect_features());
}

}  // namespace kelvara
