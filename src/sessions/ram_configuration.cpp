#include "sessions/ram_configuration.h"

#include <memory>
#include <string>
#include <utility>

#include "console/console.h"
#include "constants/constant_configuration.h"
#include "errors/exception.h"
#include "errors/file_exception.h"
#include "platform/memory/settings.h"
#include "platform/parallel/settings.h"
#include "platform/startup_state.h"
#include "swap/sequential_file.h"

namespace kelvara {

using qmp::notation::Object;

namespace {

namespace console = qmp::console;

constexpr std::string_view settings_context = "Custom Compute";
constexpr std::string_view size_context = "Computation Size";
constexpr std::string_view output_context = "Output Format";
constexpr std::uint64_t least_digits_per_file = 1'000'000;

void insert_object(Object& parent, const char* key, Object&& child) {
    parent.insert(key, std::make_unique<Object>(std::move(child)));
}

Object write_size(const RamSettings& settings) {
    Object object;
    object.insert_integer("DecimalDigits", static_cast<std::int64_t>(settings.decimal_digits()));
    object.insert_bool("EnableHexDigits", settings.hexadecimal_digits() > 0);
    return object;
}

Object write_output(const RamSettings& settings) {
    Object object;
    object.insert_string("Path", settings.output_path);
    object.insert_integer("DigitsPerFile", static_cast<std::int64_t>(settings.digits_per_file()));
    return object;
}

void read_size(RamSettings& settings, const Object& object) {
    const std::int64_t digits = object.get_integer("DecimalDigits", size_context);
    const bool hexadecimal = object.get_bool("EnableHexDigits", size_context);
    settings.adjust_digits(digits < 0 ? 0 : static_cast<std::uint64_t>(digits), hexadecimal);
}

void read_output(RamSettings& settings, const Object& object) {
    settings.output_path = object.get_string("Path", output_context);
    if (!qmp::FileIO::path_check(qmp::FileIO::with_trailing_slash(settings.output_folder()))) {
        throw qmp::FileIO::FileException("", "Path is not writable.", settings.output_folder());
    }
    const std::int64_t digits = object.get_integer("DigitsPerFile", output_context);
    if (digits > 0 && static_cast<std::uint64_t>(digits) < least_digits_per_file) {
        console::print_label_line("Warning", "Digits per file below minimum: Disabling compression.", 'Y');
    } else {
        settings.set_digits_per_file(static_cast<std::uint64_t>(digits));
    }
}

void check_mode(const std::string& mode) {
    if (mode == "ram") return;
    if (mode == "swap") {
        throw qmp::InvalidParametersException("", "Swap Mode is not available in this build yet.");
    }
    throw qmp::InvalidParametersException("", "Invalid Mode: " + mode);
}

}  // namespace

Object write_settings(const RamSettings& settings) {
    Object object;
    insert_object(object, "Constant", write_constant(settings.constant()));
    insert_object(object, "ComputeSize", write_size(settings));
    insert_object(object, "Output", write_output(settings));
    object.insert_string("Mode", "ram");
    insert_object(object, "Parallelism",
                  qmp::write_parallel_settings(settings.task_decomposition(), settings.framework()));
    insert_object(object, "Allocator", qmp::write_allocator_settings(settings.allocator()));
    return object;
}

RamSettings read_settings(const Object& object) {
    RamSettings settings;
    settings.set_default_folder(program_directory());
    settings.set_constant(read_constant(object.get_object("Constant", settings_context)));
    read_size(settings, object.get_object("ComputeSize", settings_context));
    read_output(settings, object.get_object("Output", settings_context));
    check_mode(object.get_string("Mode", settings_context));
    qmp::ParallelSettings parallelism =
        qmp::read_parallel_settings(object.get_object("Parallelism", settings_context));
    settings.set_task_decomposition(parallelism.task_decomposition);
    settings.set_framework(std::move(parallelism.framework));
    settings.set_allocator(qmp::read_allocator_settings(object.get_object("Allocator", settings_context)));
    return settings;
}

}  // namespace kelvara
