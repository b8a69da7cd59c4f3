#include "platform/memory/mmap_allocator.h"

#include "config/settings_record.h"
#include "config/text_cursor.h"
#include "console/console.h"
#include "platform/memory/mapped_block.h"
#include "platform/memory/page_fill.h"

namespace qmp {
namespace {

constexpr std::string_view context = allocator_context_name;

// False when the system has no large pages for it.
bool take_large_pages(MappedHeapBlock& block, os::PageSource& pages, std::uint64_t bytes) {
    const std::uint64_t page = pages.large_page_size();
    if (page == 0) return false;
    const auto rounded = round_up(bytes, page);
    void* const memory = rounded ? pages.commit_large(*rounded) : nullptr;
    if (!memory) return false;
    block.hold_large(memory, *rounded, page);
    fill_range(memory, *rounded);
    block.locked = 1.0;
    block.large = 1.0;
    return true;
}

}  // namespace

std::string MmapAllocator::print_settings() const {
    return SettingsRecordWriter()
        .write_integer("    largepages    :", static_cast<std::int32_t>(large_pages))
        .write_integer("    locked        :", static_cast<std::int32_t>(locked_pages))
        .take();
}

void MmapAllocator::load_settings(TextCursor& cursor) {
    const auto large = static_cast<PageMode>(cursor.read_integer());
    const auto locked = static_cast<PageMode>(cursor.read_integer());
    large_pages = large;
    locked_pages = locked;
}

notation::Object MmapAllocator::write_config() const {
    notation::Object object;
    object.insert_string("LargePages", mode_to_string(large_pages));
    object.insert_string("LockedPages", mode_to_string(locked_pages));
    return object;
}

void MmapAllocator::read_config(const notation::Object& object) {
    const PageMode large = string_to_mode(object.get_string("LargePages", context));
    const PageMode locked = string_to_mode(object.get_string("LockedPages", context));
    large_pages = large;
    locked_pages = locked;
}

std::uint64_t MmapAllocator::print_menu_options() const {
    print_mode_option("   3    Large Pages:", large_pages);
    print_mode_option("   4    Lock Pages in Memory:", locked_pages);
    if (locked_pages == PageMode::disabled && large_pages != PageMode::disabled) {
        console::println("        (If large pages are used, they will be forcibly locked in memory.)");
    }
    return 4;
}

void MmapAllocator::handle_menu_option(std::uint64_t option) {
    if (option == 3) large_pages = next_mode(large_pages);
    if (option == 4) locked_pages = next_mode(locked_pages);
}

bool MmapAllocator::acquire_privileges() {
    if (large_pages == PageMode::disabled && locked_pages == PageMode::disabled) return true;
    return acquire_lock_privilege(*system_.lock_privilege);
}

std::unique_ptr<HeapBlock> MmapAllocator::create_heap(std::uint64_t bytes, BasicParallelizer* parallelizer,
                                                      std::uint64_t tasks) {
    os::PageSource& pages = *system_.pages;
    auto block = std::make_unique<MappedHeapBlock>(pages);
    const bool prefer_large = large_pages != PageMode::disabled;
    if (prefer_large) {
        system_.lock_privilege->held();
        if (take_large_pages(*block, pages, bytes) || large_pages == PageMode::forced) return block;
    }

    const auto rounded = round_up(bytes, os::page_bytes);
    void* const memory = rounded ? pages.commit(*rounded, prefer_large) : nullptr;
    if (!memory) return block;
    block->hold(memory, *rounded, os::page_bytes);
    fill_pages(memory, *rounded, parallelizer, tasks);
    if (prefer_large) {
        const os::LargeShare share = pages.large_share(memory, *rounded);
        block->large = share.fraction;
        block->page_size = share.page_size;
    }
    lock_block(*block, system_, locked_pages);
    return block;
}

}  // namespace qmp
