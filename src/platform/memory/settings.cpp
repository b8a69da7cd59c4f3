#include "platform/memory/settings.h"

#include <string>

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

}  // namespace qmp
