// A computation's settings as lines of a record: the form in which a checkpoint keeps them.
#include <utility>

#include "config/settings_record.h"
#include "config/text_cursor.h"
#include "constants/constant_configuration.h"
#include "platform/memory/settings.h"
#include "platform/parallel/settings.h"
#include "sessions/swap_settings.h"

namespace kelvara {

std::string ComputationSettings::print_settings() const {
    return qmp::SettingsRecordWriter()
        .append_lines(print_constant(*constant_))
        .write_integer("p                 :", static_cast<std::int64_t>(precision_))
        .write_integer("dec               :", static_cast<std::int64_t>(decimal_digits_))
        .write_integer("hex               :", static_cast<std::int64_t>(hexadecimal_digits_))
        .write_string("path              :", output_path)
        .write_integer("digits_per_file   :", static_cast<std::int64_t>(digits_per_file_))
        .append_lines(qmp::print_parallel_settings(tasks_, *framework_))
        .append_lines(qmp::print_allocator_settings(*allocator_))
        .take();
}

void ComputationSettings::load_settings(qmp::TextCursor& cursor) {
    set_constant(load_constant(cursor));
    cursor.read_integer_field();  // the precision follows from the digits
    hexadecimal_chosen_ = false;
    set_decimal_digits(static_cast<std::uint64_t>(cursor.read_integer_field()));
    // The decimal count's equivalent, which may be below what can be chosen, goes on following it.
    const auto hexadecimal = static_cast<std::uint64_t>(cursor.read_integer_field());
    if (hexadecimal != hexadecimal_digits_) set_hexadecimal_digits(hexadecimal);
    output_path = cursor.read_string_field();
    set_digits_per_file(static_cast<std::uint64_t>(cursor.read_integer_field()));
    qmp::ParallelSettings parallelism = qmp::load_parallel_settings(cursor);
    tasks_ = parallelism.task_decomposition;
    framework_ = std::move(parallelism.framework);
    allocator_ = qmp::load_allocator_settings(cursor);
    refresh();
}

std::string SwapSettings::print_settings() const {
    return qmp::SettingsRecordWriter()
        .append_lines(ComputationSettings::print_settings())
        .write_integer("minIO             :", static_cast<std::int64_t>(bytes_per_seek_.chosen()))
        .write_integer("requested_memory  :", static_cast<std::int64_t>(memory_cap_))
        .append_lines(raid_.print_settings())
        .take();
}

void SwapSettings::load_settings(qmp::TextCursor& cursor) {
    ComputationSettings::load_settings(cursor);
    set_bytes_per_seek(static_cast<std::uint64_t>(cursor.read_integer_field()));
    set_memory_cap(static_cast<std::uint64_t>(cursor.read_integer_field()));
    qmp::RaidSettings raid;
    raid.load_settings(cursor);
    set_raid(std::move(raid));
}

}  // namespace kelvara
