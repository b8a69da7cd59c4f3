// Where a computation's one large block of memory comes from. Exchangeable by type key.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/component_settings.h"
#include "platform/parallel/basic_parallelizer.h"
#include "platform/parallel/parallel_context.h"

namespace qmp {

// How evenly a block's pages are spread over NUMA nodes.
struct SpreadRecord {
    std::uint64_t nodes = 0;  // distinct nodes that received pages
    double spread = -1.0;     // 1.0 is even; -1.0 when no page could be attributed
};

// The large heap. Freed by its destructor.
class HeapBlock {
  public:
    virtual ~HeapBlock() = default;

    void* base = nullptr;    // null when the allocation failed
    std::uint64_t size = 0;  // usable bytes
    double locked = 0.0;     // fraction locked in physical memory
    double large = 0.0;      // fraction on large pages
    std::unique_ptr<SpreadRecord> spread;
    std::uint64_t page_size = 0;  // 0 when unknown
};

class BasicAllocator : public ComponentSettings {
  public:
    virtual const char* get_type_name() const = 0;
    virtual const char* get_display_name() const = 0;
    // The allocator's own menu lines; returns the highest valid option number.
    virtual std::uint64_t print_menu_options() const = 0;
    virtual void handle_menu_option(std::uint64_t option) = 0;
    // False, after a warning, when a privilege that the settings need could not be obtained.
    virtual bool acquire_privileges() = 0;
    // Every page is filled once, so that it is really there before timed work begins; the parallelizer
    // may be null. A failure leaves base null.
    virtual std::unique_ptr<HeapBlock> create_heap(std::uint64_t bytes, BasicParallelizer* parallelizer,
                                                   std::uint64_t tasks) = 0;
};

// What the type errors of an allocator's settings name.
constexpr std::string_view allocator_context_name = "Memory Allocator";

// New allocators by type key. An unknown key is an InvalidParametersException
// ("Invalid Memory Allocator: " and the key).
std::unique_ptr<BasicAllocator> make_allocator(std::string_view key);
std::unique_ptr<BasicAllocator> make_default_allocator();
// The registered allocators' display names in menu order.
std::vector<std::string> allocator_display_names();

struct LargeHeap {
    std::unique_ptr<HeapBlock> block;
    std::string description;  // as printed, without colours
};

// Prints the label (if any), creates the heap and prints its description; ends the program with exit
// code 1 and the size asked for when it cannot be had.
LargeHeap allocate_large_heap(BasicAllocator& allocator, std::string_view label, std::uint64_t bytes,
                              ParallelContext parallel);

}  // namespace qmp
