#include "platform/memory/settings.h"

#include <string>

#include "config/settings_record.h"

namespace qmp {

notation::Object write_allocator_settings(const BasicAllocator& allocator) {
    notation::Object config;
    config.insert_string("Allocator", allocator.get_type_name());
    config.insert_members(allocator.write_config());
    return config;
}

std::unique_ptr<BasicAllocator> read_allocator_settings(const notation::Object& config) {
    auto allocator = make_allocator(config.get_string("Allocator", allocator_context_name));
    allocator->read_config(config);
    return allocator;
}

std::string print_allocator_settings(const BasicAllocator& allocator) {
    return SettingsRecordWriter()
        .write_string("allocator         :", allocator.get_type_name())
        .append_lines(allocator.print_settings())
        .take();
}

std::unique_ptr<BasicAllocator> load_allocator_settings(TextCursor& cursor) {
    auto allocator = make_allocator(cursor.read_string_field());
    allocator->load_settings(cursor);
    return allocator;
}

}  // namespace qmp
