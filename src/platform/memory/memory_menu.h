// The menus "Memory Settings": one loop, around what each kind of settings shows and changes.
#pragma once

#include <memory>

#include "platform/memory/basic_allocator.h"

namespace qmp {

class MemoryMenu {
  public:
    virtual ~MemoryMenu() = default;

    // The title and the sizes, up to the options.
    virtual void print_sizes() const = 0;
    // The line of option 1, and what it does.
    virtual const char* adjust_option() const = 0;
    virtual void adjust() = 0;
    // Below the options; nothing unless there is something to say.
    virtual void print_advice() const {}
    virtual BasicAllocator& allocator() = 0;
    virtual void set_allocator(std::unique_ptr<BasicAllocator> allocator) = 0;
};

// Shows the menu and acts until the user is done.
void edit_memory(MemoryMenu& menu);

}  // namespace qmp
