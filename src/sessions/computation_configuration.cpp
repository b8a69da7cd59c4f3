// A computation's settings as the object "CustomCompute" of a configuration file.
//
// Keys, in the order in which they are written: "Constant", "ComputeSize", "Output", "Mode", "Parallelism",
// "Allocator"; of Swap Mode also "BytesPerSeek" (0: the default), "Memory" and "RaidFile". The size knows
// hexadecimal output only as on (the equivalent count) or off.
#include <memory>
#include <string>
#include <utility>

#include "console/console.h"
#include "constants/constant_configuration.h"
#include "errors/exception.h"
#include "errors/file_exception.h"
#include "platform/memory/settings.h"
#include "platform/parallel/settings.h"
#include "sessions/swap_settings.h"
#include "swap/sequential_file.h"

namespace kelvara {

using qmp::notation::Object;

namespace {

namespace console = qmp::console;

constexpr std::string_view settings_context = "Custom Compute";
constexpr std::string_view size_context = "Computation Size";
constexpr std::string_view output_context = "Output Format";

void insert_object(Object& parent, const char* key, Object&& child) {
    parent.insert(key, std::make_unique<Object>(std::move(child)));
}

Object write_size(const ComputationSettings& settings) {
    Object object;
    object.insert_integer("DecimalDigits", static_cast<std::int64_t>(settings.decimal_digits()));
    object.insert_bool("EnableHexDigits", settings.hexadecimal_digits() > 0);
    return object;
}

Object write_output(const ComputationSettings& settings) {
    Object object;
    object.insert_string("Path", settings.output_path);
    object.insert_integer("DigitsPerFile", static_cast<std::int64_t>(settings.digits_per_file()));
    return object;
}

void read_size(ComputationSettings& settings, const Object& object) {
    const std::int64_t digits = object.get_integer("DecimalDigits", size_context);
    const bool hexadecimal = object.get_bool("EnableHexDigits", size_context);
    settings.adjust_digits(digits < 0 ? 0 : static_cast<std::uint64_t>(digits), hexadecimal);
}

void read_output(ComputationSettings& settings, const Object& object) {
    settings.output_path = object.get_string("Path", output_context);
    if (!qmp::FileIO::path_check(qmp::FileIO::with_trailing_slash(settings.output_folder()))) {
        throw qmp::FileIO::FileException("", "Path is not writable.", settings.output_folder());
    }
    auto digits = static_cast<std::uint64_t>(object.get_integer("DigitsPerFile", output_context));
    if (digits > 0 && digits < ComputationSettings::least_compressed_digits) {
        console::print_label_line("Warning", "Digits per file below minimum: Disabling compression.", 'Y');
        digits = 0;
    }
    settings.set_digits_per_file(digits);
}

}  // namespace

Object ComputationSettings::write_config() const {
    Object object;
    insert_object(object, "Constant", write_constant(constant()));
    insert_object(object, "ComputeSize", write_size(*this));
    insert_object(object, "Output", write_output(*this));
    object.insert_string("Mode", mode_key());
    insert_object(object, "Parallelism", qmp::write_parallel_settings(task_decomposition(), framework()));
    insert_object(object, "Allocator", qmp::write_allocator_settings(allocator()));
    return object;
}

void ComputationSettings::read_config(const Object& object) {
    set_constant(read_constant(object.get_object("Constant", settings_context)));
    read_size(*this, object.get_object("ComputeSize", settings_context));
    read_output(*this, object.get_object("Output", settings_context));
    qmp::ParallelSettings parallelism =
        qmp::read_parallel_settings(object.get_object("Parallelism", settings_context));
    set_task_decomposition(parallelism.task_decomposition);
    set_framework(std::move(parallelism.framework));
    set_allocator(qmp::read_allocator_settings(object.get_object("Allocator", settings_context)));
}

Object SwapSettings::write_config() const {
    Object object = ComputationSettings::write_config();
    object.insert_integer("BytesPerSeek", static_cast<std::int64_t>(bytes_per_seek_.chosen()));
    object.insert_integer("Memory", static_cast<std::int64_t>(memory_cap_));
    insert_object(object, "RaidFile", raid_.write_config());
    return object;
}

// A negative number of bytes is as large as the unsigned number with the same bits: the largest there is.
void SwapSettings::read_config(const Object& object) {
    ComputationSettings::read_config(object);
    set_bytes_per_seek(static_cast<std::uint64_t>(object.get_integer("BytesPerSeek", settings_context)));
    set_memory_cap(static_cast<std::uint64_t>(object.get_integer("Memory", settings_context)));
    qmp::RaidSettings raid;
    raid.read_config(object.get_object("RaidFile", settings_context));
    set_raid(std::move(raid));
}

}  // namespace kelvara
