#include "platform/os/pages.h"

#include <windows.h>
// After windows.h, on whose types it builds.
#include <psapi.h>

#include <array>
#include <limits>

namespace qmp::os {
namespace {

// "No preferred node" in the system's own calls.
constexpr std::uint64_t no_node = std::numeric_limits<DWORD>::max();

class SystemNodePages final : public NodePages {
  public:
    explicit SystemNodePages(std::uint64_t node) : node_(node) {}

    bool commit(void* pages, std::uint64_t bytes) override {
        if (node_ >= no_node) return false;
        return VirtualAllocExNuma(GetCurrentProcess(), pages, bytes, MEM_COMMIT, PAGE_READWRITE,
                                  static_cast<DWORD>(node_)) != nullptr;
    }

  private:
    std::uint64_t node_;
};

class SystemPages final : public PageSource {
  public:
    std::uint64_t large_page_size() const override { return GetLargePageMinimum(); }

    void* commit_large(std::uint64_t bytes) override {
        return VirtualAlloc(nullptr, bytes, MEM_COMMIT | MEM_RESERVE | MEM_LARGE_PAGES, PAGE_READWRITE);
    }

    void* commit(std::uint64_t bytes, bool) override {
        return VirtualAlloc(nullptr, bytes, MEM_COMMIT, PAGE_READWRITE);
    }

    // Large pages are only had by asking for them.
    LargeShare large_share(const void*, std::uint64_t) override { return {}; }

    void* reserve(std::uint64_t bytes) override {
        return VirtualAlloc(nullptr, bytes, MEM_RESERVE, PAGE_READWRITE);
    }

    std::unique_ptr<NodePages> pages_of_node(std::uint64_t node) override {
        return std::make_unique<SystemNodePages>(node);
    }

    bool commit_reserved(void* pages, std::uint64_t bytes) override {
        return VirtualAlloc(pages, bytes, MEM_COMMIT, PAGE_READWRITE) != nullptr;
    }

    void find_nodes(std::span<void* const> pages, std::span<std::int32_t> nodes) override {
        std::array<PSAPI_WORKING_SET_EX_INFORMATION, 64> batch;
        for (std::size_t start = 0; start < pages.size(); start += batch.size()) {
            const std::size_t count =
                pages.size() - start < batch.size() ? pages.size() - start : batch.size();
            for (std::size_t i = 0; i < count; ++i) {
                batch[i] = {};
                batch[i].VirtualAddress = pages[start + i];
            }
            const bool known =
                QueryWorkingSetEx(GetCurrentProcess(), batch.data(),
                                  static_cast<DWORD>(count * sizeof(PSAPI_WORKING_SET_EX_INFORMATION))) != 0;
            for (std::size_t i = 0; i < count; ++i)
                nodes[start + i] = known ? node_of(batch[i].VirtualAttributes.Flags) : unknown_node;
        }
    }

    bool lock(void* block, std::uint64_t bytes) override {
        // The block has been filled, so the working set holds it, and a working set of that size at the
        // least allows as much to be locked.
        PROCESS_MEMORY_COUNTERS counters{};
        if (!GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters)) return false;
        SetProcessWorkingSetSize(GetCurrentProcess(), counters.WorkingSetSize, counters.WorkingSetSize);
        return VirtualLock(block, bytes) != 0;
    }

    void release(void* block, std::uint64_t) override { VirtualFree(block, 0, MEM_RELEASE); }
    void release_large(void* block, std::uint64_t bytes) override { release(block, bytes); }

  private:
    static std::int32_t node_of(std::uint64_t attributes) {
        const bool valid = (attributes & 1) != 0;
        return valid ? static_cast<std::int32_t>(attributes >> 16 & 0x3f) : unknown_node;
    }
};

}  // namespace

PageSource& system_pages() {
    static SystemPages pages;
    return pages;
}

const char* page_interface_name() {
    return "WinAPI VirtualAlloc()";
}

}  // namespace qmp::os
