#include <cmath>

#include "console/console.h"
#include "console/format.h"
#include "console/labels.h"
#include "platform/memory/basic_allocator.h"

namespace qmp {
namespace {

std::string percent(double fraction) {
    return std::to_string(static_cast<std::uint64_t>(std::floor(fraction * 100))) + "%";
}

std::vector<std::string> annotations(const HeapBlock& block) {
    std::vector<std::string> list;
    if (block.locked >= 1.0) {
        list.push_back("locked");
    } else if (block.locked > 0.0) {
        list.push_back(percent(block.locked) + " locked");
    }
    if (block.large > 0.0) {
        const std::string share = block.large < 1.0 ? percent(block.large) + " " : std::string();
        const std::string page =
            block.page_size == 0 ? std::string("large") : console::format_bytes(block.page_size);
        list.push_back(share + page + " pages");
    }
    if (block.spread) {
        const bool known = block.spread->nodes != 0 && block.spread->spread >= 0.0;
        list.push_back("spread: " +
                       (known ? percent(block.spread->spread) + "/" + std::to_string(block.spread->nodes)
                              : std::string("?")));
    }
    return list;
}

[[noreturn]] void fail(std::uint64_t bytes) {
    console::newline();
    console::print_warning("Large heap allocation failed.");
    console::newline();
    console::print_label_bytes("Failed Allocation", bytes, 'Y');
    console::newline();
    console::terminate(1);
}

// Prints a piece and appends it to the description.
void print_piece(std::string& description, const std::string& piece, console::Colour colour) {
    console::write(piece, colour);
    description += piece;
}

std::string print_description(const HeapBlock& block) {
    std::string description;
    print_piece(description, console::format_bytes(block.size), 'G');
    const std::vector<std::string> list = annotations(block);
    for (std::size_t i = 0; i < list.size(); ++i) {
        print_piece(description, i == 0 ? "  (" : ", ", 'Y');
        print_piece(description, list[i], 'Y');
    }
    if (!list.empty()) print_piece(description, ")", 'Y');
    console::newline();
    console::reset_color();
    return description;
}

}  // namespace

LargeHeap allocate_large_heap(BasicAllocator& allocator, std::string_view label, std::uint64_t bytes,
                              ParallelContext parallel) {
    if (!label.empty()) console::write(label);
    LargeHeap heap;
    heap.block = allocator.create_heap(bytes, parallel.parallelizer, parallel.tds);
    if (!heap.block->base) fail(bytes);
    heap.description = print_description(*heap.block);
    return heap;
}

}  // namespace qmp
