#include "shell/resume_check.h"

#include "config/text_file.h"
#include "console/console.h"
#include "errors/file_exception.h"
#include "platform/build_identity.h"
#include "platform/os/error_codes.h"
#include "platform/os/file.h"
#include "sessions/checkpoint_file.h"
#include "shell/entry_points.h"

namespace kelvara {
namespace {

namespace console = qmp::console;

bool checkpoint_can_be_opened(const std::string& path) {
    qmp::os::File file;
    const qmp::os::ErrorCode error = file.open(path);
    if (error == qmp::os::no_error) return true;
    // A computation of days must not be forgotten because its file is somebody else's for the moment.
    if (error != qmp::os::file_not_found && error != qmp::os::path_not_found) {
        qmp::print_file_warning("Unable to open checkpoint file: " + path,
                                qmp::FileIO::FileException("", "Unable to open file.", path, error));
        console::reset_color();
    }
    return false;
}

Checkpoint load_checkpoint(const std::string& path) {
    const std::string file = qmp::read_file_bytes(path);
    try {
        return parse_checkpoint(file, program_version(), CheckpointSealer::of_this_build());
    } catch (const qmp::StringException& exception) {
        console::fatal_error(exception.message());
    }
}

}  // namespace

bool resume_interrupted_computation(IntegrityCheck& integrity_check) {
    const std::string path(checkpoint_file_name);
    if (!checkpoint_can_be_opened(path)) return false;
    console::println("An unfinished computation has been found.", 'Y');
    console::println("Resuming...");
    console::newline();
    console::pause('w');
    console::write("\n\n");
    const Checkpoint checkpoint = load_checkpoint(path);
    integrity_check();
    run_resumed_computation(checkpoint);
    return true;
}

}  // namespace kelvara
