// The large heap with its pages interleaved over NUMA nodes.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/memory/basic_allocator.h"
#include "platform/memory/memory_system.h"
#include "platform/memory/page_mode.h"

namespace qmp {

// Sizes are rounded up to whole pages; the block tells how evenly they are spread. A node may stand in the
// list more than once and then receives as many shares; one that does not exist binds nothing.
class InterleaveAllocator final : public BasicAllocator {
  public:
    static constexpr const char* type_name = "interleave";
    static constexpr const char* display_name = "Node Interleaving";

    explicit InterleaveAllocator(const MemorySystem& system = memory_of_this_machine())
        : nodes(system.all_nodes()), system_(system) {}

    bool hashed = true;  // else round-robin
    PageMode locked_pages = PageMode::attempt;
    std::vector<std::uint64_t> nodes;

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
    void ask_for_nodes();

    MemorySystem system_;
};

}  // namespace qmp
