// The keys of a memory allocator in a configuration: "Allocator", and the allocator's own in the same object.
// A type error names the context "Memory Allocator".
#pragma once

#include <memory>
#include <string_view>

#include "config/notation.h"
#include "platform/memory/basic_allocator.h"

namespace qmp {

notation::Object write_allocator_settings(const BasicAllocator& allocator);

// Throws for the first key, in the order of writing, that is missing or wrong: a ParseException, or an
// InvalidParametersException for an unknown allocator and for a value that it refuses.
std::unique_ptr<BasicAllocator> read_allocator_settings(const notation::Object& config);

}  // namespace qmp
