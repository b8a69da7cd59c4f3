// The large heap from the runtime heap.
#pragma once

#include "platform/memory/basic_allocator.h"

namespace qmp {

// The block is a guarded allocation (guarded_allocation.h), 64-byte aligned; its sentinels are checked when
// it is freed, and damage ends the program.
class MallocAllocator final : public BasicAllocator {
  public:
    static constexpr const char* type_name = "malloc";
    static constexpr const char* display_name = "C malloc()";

    const char* get_type_name() const override { return type_name; }
    const char* get_display_name() const override { return display_name; }
    std::uint64_t print_menu_options() const override { return 2; }
    void handle_menu_option(std::uint64_t) override {}
    bool acquire_privileges() override { return true; }
    std::unique_ptr<HeapBlock> create_heap(std::uint64_t bytes, BasicParallelizer* parallelizer,
                                           std::uint64_t tasks) override;
};

}  // namespace qmp
