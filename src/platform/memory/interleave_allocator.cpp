#include "platform/memory/interleave_allocator.h"

#include "config/settings_record.h"
#include "config/text_cursor.h"
#include "console/console.h"
#include "console/input.h"
#include "console/parse.h"
#include "errors/exception.h"
#include "platform/memory/interleaved_commit.h"
#include "platform/memory/mapped_block.h"
#include "platform/menu_layout.h"

namespace qmp {
namespace {

constexpr std::string_view context = allocator_context_name;

void require_nodes(const std::vector<std::uint64_t>& nodes, const char* function) {
    if (nodes.empty()) throw InvalidParametersException(function, "Node list cannot be empty.");
}

std::string listed(const std::vector<std::uint64_t>& nodes) {
    std::string text;
    for (const std::uint64_t node : nodes) text += (text.empty() ? "" : ", ") + std::to_string(node);
    return text;
}

bool begins_with_digit(const std::string& text) {
    return !text.empty() && text.front() >= '0' && text.front() <= '9';
}

}  // namespace

std::string InterleaveAllocator::print_settings() const {
    SettingsRecordWriter lines;
    lines.write_bool("    hashed        :", hashed)
        .write_integer("    locked        :", static_cast<std::int32_t>(locked_pages))
        .write_integer("    nodes         :", static_cast<std::int64_t>(nodes.size()));
    for (const std::uint64_t node : nodes)
        lines.write_integer("        node      :", static_cast<std::int64_t>(node));
    return lines.take();
}

void InterleaveAllocator::load_settings(TextCursor& cursor) {
    const bool new_hashed = cursor.read_integer() != 0;
    const auto new_locked = static_cast<PageMode>(cursor.read_integer());
    const std::int64_t count = cursor.read_integer();
    std::vector<std::uint64_t> new_nodes;
    for (std::int64_t i = 0; i < count; ++i)
        new_nodes.push_back(static_cast<std::uint64_t>(cursor.read_integer()));
    require_nodes(new_nodes, "InterleaveAllocator::load_settings()");
    hashed = new_hashed;
    locked_pages = new_locked;
    nodes = std::move(new_nodes);
}

notation::Object InterleaveAllocator::write_config() const {
    notation::Object object;
    object.insert_bool("Hashed", hashed);
    object.insert_string("LockedPages", mode_to_string(locked_pages));
    auto list = std::make_unique<notation::Array>();
    for (const std::uint64_t node : nodes) list->append(static_cast<std::int64_t>(node));
    object.insert("Nodes", std::move(list));
    return object;
}

void InterleaveAllocator::read_config(const notation::Object& object) {
    const bool new_hashed = object.get_bool("Hashed", context);
    const PageMode new_locked = string_to_mode(object.get_string("LockedPages", context));
    const notation::Array& list = object.get_array("Nodes", context);
    std::vector<std::uint64_t> new_nodes;
    for (std::uint64_t i = 0; i < list.size(); ++i)
        new_nodes.push_back(static_cast<std::uint64_t>(notation::as_integer(list[i], context)));
    require_nodes(new_nodes, "InterleaveAllocator::read_config()");
    hashed = new_hashed;
    locked_pages = new_locked;
    nodes = std::move(new_nodes);
}

std::uint64_t InterleaveAllocator::print_menu_options() const {
    if (system_.nodes->count() == 1) {
        console::println("        (This allocator is useful only when there are multiple NUMA nodes.)", 'Y');
        console::println("", 'w');
    }
    menu::print_option("   3    NUMA nodes:", listed(nodes), 'T');
    menu::print_option("   4    Page Mapping:", hashed ? "Hashed" : "Round-Robin", 'G');
    print_mode_option("   5    Lock Pages in Memory:", locked_pages);
    return 5;
}

void InterleaveAllocator::handle_menu_option(std::uint64_t option) {
    if (option == 3) ask_for_nodes();
    if (option == 4) hashed = !hashed;
    if (option == 5) locked_pages = next_mode(locked_pages);
}

void InterleaveAllocator::ask_for_nodes() {
    nodes.clear();
    console::println("\n\nEnter NUMA node #'s one-by-one. Enter nothing to stop.", 'w');
    console::newline();
    console::println("    - Duplicating nodes allow for imbalanced interleaving.");
    console::println("    - Non-existant nodes simply won't bind.");
    console::newline();
    for (;;) {
        console::write("Node #", 'w');
        const std::string answer = console::read_line('T');
        if (!begins_with_digit(answer)) break;
        nodes.push_back(console::parse_decimal(answer));
    }
    if (nodes.empty()) nodes = system_.all_nodes();
}

bool InterleaveAllocator::acquire_privileges() {
    return locked_pages == PageMode::disabled || acquire_lock_privilege(*system_.lock_privilege);
}

std::unique_ptr<HeapBlock> InterleaveAllocator::create_heap(std::uint64_t bytes, BasicParallelizer*,
                                                            std::uint64_t) {
    os::PageSource& pages = *system_.pages;
    auto block = std::make_unique<MappedHeapBlock>(pages);
    const auto rounded = round_up(bytes, os::page_bytes);
    void* const region = rounded ? pages.reserve(*rounded) : nullptr;
    if (!region) return block;
    block->hold(region, *rounded, os::page_bytes);

    const auto counts = commit_interleaved(system_, region, *rounded, nodes,
                                           hashed ? PageMapping::hashed : PageMapping::round_robin);
    if (!counts) {
        block->release();
        return block;
    }
    block->spread = std::make_unique<SpreadRecord>(spread_of(*counts));
    lock_block(*block, system_, locked_pages);
    return block;
}

}  // namespace qmp
