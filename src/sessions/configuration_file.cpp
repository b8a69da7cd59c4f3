#include "sessions/configuration_file.h"

#include <memory>
#include <utility>

#include "config/notation_parser.h"
#include "console/console.h"
#include "console/input.h"
#include "errors/exception.h"
#include "errors/file_exception.h"
#include "platform/build_identity.h"
#include "sessions/ram_configuration.h"
#include "sessions/ram_session.h"
#include "swap/sequential_file.h"

namespace kelvara {
namespace {

namespace console = qmp::console;
using qmp::notation::Object;

constexpr std::string_view custom_compute = "CustomCompute";

const Object& root_of(const qmp::notation::Value& value) {
    return qmp::notation::as_object(value, "");
}

// The settings of a file whose action is a computation.
RamSettings read_computation(const Object& root) {
    return read_settings(root.get_object(custom_compute, ""));
}

[[noreturn]] void refuse(const std::string& action) {
    if (action == "BenchIO") {
        throw qmp::InvalidParametersException("", "The I/O benchmark is not available in this build yet.");
    }
    throw qmp::InvalidParametersException("", "Invalid Action: " + action);
}

std::string ask_path(const char* heading) {
    console::println(heading, 'w');
    console::newline();
    return add_default_extension(console::read_labelled_line("Path", 'T'), "ini");
}

}  // namespace

std::string add_default_extension(std::string path, std::string_view extension) {
    if (path.find('.') != std::string::npos) return path;
    path += '.';
    return path += extension;
}

std::string configuration_text(std::string_view action, Object settings) {
    std::string text =
        "\xef\xbb\xbf//  Kelvara Configuration File\r\n"
        "//  Version: " + version_with_build() + "\r\n"
        "//\r\n"
        "//  Load this from Kelvara or run directly:\r\n"
        "//      Kelvara config filename.ini\r\n"
        "//\r\n"
        "//  If you're copying Windows file paths into here, be sure to replace\r\n"
        "//  all backslashes \"\\\" with forward slashes \"/\". Backslash is an\r\n"
        "//  escape character.\r\n"
        "//\r\n"
        "\r\n";
    Object root;
    root.insert_string("Action", std::string(action));
    root.insert(std::string(action), std::make_unique<Object>(std::move(settings)));
    return text + root.to_text(0);
}

void save_configuration(std::string_view action, Object settings) {
    const std::string path =
        ask_path("Enter path to save configuration file. (the .ini extension can be omitted)");
    const std::string text = configuration_text(action, std::move(settings));
    qmp::FileIO::SequentialFile file;
    file.create(path);
    const std::uint64_t written = file.write(text.data(), text.size());
    const std::uint32_t write_error = file.last_error();
    file.close();
    if (written != text.size() || file.last_error() != 0) {
        throw qmp::FileIO::FileException("save_configuration()", "The file cannot be written.", path,
                                         write_error != 0 ? write_error : file.last_error());
    }
}

RamSettings load_configuration() {
    const std::string path =
        ask_path("Enter path of configuration file. (the .ini extension can be omitted)");
    const std::unique_ptr<qmp::notation::Value> value = qmp::notation::parse_file(path);
    const Object& root = root_of(*value);
    const std::string& action = root.get_string("Action", "");
    if (action != custom_compute) refuse(action);
    return read_computation(root);
}

void run_configuration(const std::string& path) {
    const std::unique_ptr<qmp::notation::Value> value =
        qmp::notation::parse_file(add_default_extension(path, "ini"));
    const Object& root = root_of(*value);
    const std::string& action = root.get_string("Action", "");
    if (action != custom_compute) refuse(action);
    const RamSettings settings = read_computation(root);
    if (!settings.can_run()) {
        throw qmp::InvalidParametersException("", "Cannot run computation with these parameters.");
    }
    RamSession(settings).run();
}

}  // namespace kelvara
