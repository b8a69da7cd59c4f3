// The large heap as one block of the system's virtual memory, on large pages and locked where possible.
#pragma once

#include "platform/memory/basic_allocator.h"
#include "platform/memory/memory_system.h"
#include "platform/memory/page_mode.h"

namespace qmp {

// Sizes are rounded up to whole pages. Large pages that the system keeps for those who ask are tried first;
// they count as locked. Without them the block consists of normal pages, which the system may join to larger
// ones by itself unless large pages are disabled. What is forced and cannot be had is a failed allocation.
class MmapAllocator final : public BasicAllocator {
  public:
    static constexpr const char* type_name = "mmap";
    inline static const char* const display_name = os::page_interface_name();

    explicit MmapAllocator(const MemorySystem& system = memory_of_this_machine()) : system_(system) {}

    PageMode large_pages = PageMode::attempt;
    PageMode locked_pages = PageMode::attempt;

    std::string print_settings() const override;
    void load_settings(TextCursor& cursor) override;
    notation::Object write_config() const override;
    void read_config(const notation::Object& object) override;
    const char* get_type_name() const override { return type_name; }
    const char* get_display_name() const override { return display_name; }
    std::uint64_t print_menu_options() const override;
    void handle_menu_option(std::uint64_t option) override;
    bool acquire_privileges() override;
    std::unique_ptr<HeapBlock> create_heap(std::uint64_t bytes, BasicParallelizer* parallelizer,
                                           std::uint64_t tasks) override;

  private:
    MemorySystem system_;
};

}  // namespace qmp
