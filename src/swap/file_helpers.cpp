// What the program asks of files and folders by their paths.
#include "console/console.h"
#include "errors/file_exception.h"
#include "platform/os/console_device.h"
#include "platform/os/file.h"
#include "swap/sequential_file.h"

namespace qmp::FileIO {
namespace {

// Deletes, trying again after a key while it fails.
void remove_with_retries(const std::string& path) {
    for (;;) {
        const os::ErrorCode error = os::remove_file(path);
        if (error == os::no_error) return;
        if (!os::input_is_console())
            throw FileException("path_check()", "Unable to delete file.", path, error);
        console::print_warning("Unable to delete file.");
        console::println("Re-attempting...");
        console::pause();
    }
}

bool is_existing_target(os::ErrorCode error) {
    return error == os::file_exists || error == os::already_exists;
}

enum class RenameStep { done, removing, renaming };

// One attempt; the step at which it failed, with its code.
RenameStep try_rename(const std::string& from, const std::string& to, os::ErrorCode& error) {
    error = os::rename_file(from, to);
    if (is_existing_target(error)) {
        error = os::remove_file(to);
        if (error != os::no_error) return RenameStep::removing;
        error = os::rename_file(from, to);
    }
    return error == os::no_error ? RenameStep::done : RenameStep::renaming;
}

}  // namespace

std::uint64_t file_size(const std::string& path) {
    std::uint64_t bytes = 0;
    if (os::file_size(path, bytes) != os::no_error) console::fatal_error("Path does not exist.");
    return bytes;
}

std::string with_trailing_slash(std::string folder) {
    if (!folder.empty() && (folder.back() == '/' || folder.back() == '\\')) return folder;
    return folder + '/';
}

bool path_check(const std::string& folder) {
    const std::string probe = with_trailing_slash(folder) + "pathcheck.qsf";
    os::File file;
    if (file.create(probe) != os::no_error) return false;
    if (file.close() != os::no_error) console::fatal_error("Unable to close file.");
    remove_with_retries(probe);
    return true;
}

void create_folder(const std::string& folder) {
    std::string name = folder;
    while (name.size() > 1 && (name.back() == '/' || name.back() == '\\')) name.pop_back();
    const os::ErrorCode error = os::create_directory(name);
    if (error != os::no_error) {
        throw FileException("FileIO::create_folder()", "Unable to create folder.", folder, error);
    }
}

void rename_with_retries(const std::string& from, const std::string& to) {
    for (;;) {
        os::ErrorCode error = os::no_error;
        const RenameStep failed = try_rename(from, to, error);
        if (failed == RenameStep::done) return;
        const char* message =
            failed == RenameStep::removing ? "Unable to delete file." : "Unable to rename file.";
        if (!os::input_is_console()) throw FileException("rename_with_retries()", message, to, error);
        console::print_warning(message);
        console::print_label_line("Error Code", std::to_string(error));
        if (failed == RenameStep::renaming) console::println(to);
        console::println("Re-attempting...");
    }
}

}  // namespace qmp::FileIO
