// A memory allocator in a configuration: the key "Allocator", and the allocator's own in the same object. A
// type error names the context "Memory Allocator". And in a settings record.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "config/notation.h"
#include "config/text_cursor.h"
#include "platform/memory/basic_allocator.h"

namespace qmp {

notation::Object write_allocator_settings(const BasicAllocator& allocator);

// Throws for the first key, in the order of writing, that is missing or wrong: a ParseException, or an
// InvalidParametersException for an unknown allocator and for a value that it refuses.
std::unique_ptr<BasicAllocator> read_allocator_settings(const notation::Object& config);

// The same as lines of a settings record: the name, then the allocator's own.
std::string print_allocator_settings(const BasicAllocator& allocator);
std::unique_ptr<BasicAllocator> load_allocator_settings(TextCursor& cursor);

}  // namespace qmp
