#include "platform/parallel/settings.h"

#include "config/settings_record.h"
#include "platform/parallel/registry.h"

namespace qmp {

notation::Object write_parallel_settings(std::uint64_t task_decomposition,
                                         const BasicParallelizer& framework) {
    notation::Object config;
    config.insert_integer("TaskDecomposition", static_cast<std::int64_t>(task_decomposition));
    config.insert_string("Framework", framework.get_type_name());
    config.insert_members(framework.write_config());
    return config;
}

ParallelSettings read_parallel_settings(const notation::Object& config) {
    ParallelSettings settings;
    // A negative number is out of range as an unsigned one, too.
    settings.task_decomposition = checked_task_decomposition(
        static_cast<std::uint64_t>(config.get_integer("TaskDecomposition", parallel_context_name)));
    settings.framework = make_parallelizer(config.get_string("Framework", parallel_context_name));
    settings.framework->read_config(config);
    return settings;
}

std::string print_parallel_settings(std::uint64_t task_decomposition, const BasicParallelizer& framework) {
    return SettingsRecordWriter()
        .write_integer("tds               :", static_cast<std::int64_t>(task_decomposition))
        .write_string("framework         :", framework.get_type_name())
        .append_lines(framework.print_settings())
        .take();
}

ParallelSettings load_parallel_settings(TextCursor& cursor) {
    ParallelSettings settings;
    settings.task_decomposition =
        checked_task_decomposition(static_cast<std::uint64_t>(cursor.read_integer_field()));
    settings.framework = make_parallelizer(cursor.read_string_field());
    settings.framework->load_settings(cursor);
    return settings;
}

bool read_parallel_flag(const notation::Object& config, std::string_view key) {
    const notation::Value& value = config.get(key);
    if (value.type() == notation::Type::integer) return notation::as_integer(value, {}) != 0;
    return notation::as_bool(value, parallel_context_name);
}

}  // namespace qmp
