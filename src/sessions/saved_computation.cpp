#include "sessions/saved_computation.h"

#include <string_view>

#include "config/configuration_file.h"
#include "console/console.h"
#include "console/input.h"
#include "errors/exception.h"
#include "errors/file_exception.h"
#include "platform/build_identity.h"
#include "swap/sequential_file.h"

namespace kelvara {
namespace {

namespace console = qmp::console;

constexpr std::string_view custom_compute = "CustomCompute";
constexpr std::string_view bench_io = "BenchIO";
constexpr std::string_view actions[] = {custom_compute, bench_io};

std::string ask_path(const char* heading) {
    console::println(heading, 'w');
    return console::read_labelled_line("Path", 'T');
}

CustomSettings read_computation(const std::string& path) {
    const qmp::Configuration configuration = qmp::load_configuration(path, actions);
    if (configuration.action == bench_io) {
        throw qmp::InvalidParametersException("", "The I/O benchmark is not available in this build yet.");
    }
    return CustomSettings::read(configuration.settings);
}

}  // namespace

void save_computation(const ComputationSettings& settings) {
    const std::string path = qmp::add_default_extension(
        ask_path("Enter path to save configuration file. (the .ini extension can be omitted)"), "ini");
    const std::string text =
        qmp::configuration_text(version_with_build(), {std::string(custom_compute), settings.write_config()});
    qmp::FileIO::SequentialFile file;
    file.create(path);
    const std::uint64_t written = file.write(text.data(), text.size());
    const std::uint32_t error = file.last_error();
    file.close();
    if (written != text.size() || file.last_error() != 0) {
        throw qmp::FileIO::FileException("save_computation()", "The file cannot be written.", path,
                                         error != 0 ? error : file.last_error());
    }
}

CustomSettings load_computation() {
    return read_computation(
        ask_path("Enter path of configuration file. (the .ini extension can be omitted)"));
}

void run_configuration(const std::string& path) {
    const CustomSettings settings = read_computation(path);
    const std::string obstacle = settings.current().obstacle();
    if (!obstacle.empty()) {
        console::print_warning(obstacle);
        throw qmp::InvalidParametersException("", "Cannot run computation with these parameters.");
    }
    settings.current().run();
}

}  // namespace kelvara
