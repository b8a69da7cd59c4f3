// A machine whose memory behaves as a test wants it: its pages, its nodes, its right to lock.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <mutex>
#include <new>
#include <set>
#include <vector>

#include "platform/memory/memory_system.h"

namespace kelvara_test {

namespace os = qmp::os;

// Hands out memory of the runtime heap and notes what becomes of it.
class FakePages final : public os::PageSource {
  public:
    // What the machine has.
    std::uint64_t large_page = 0;
    bool large_pages_left = false;
    bool normal_pages_left = true;
    os::LargeShare share_by_itself;
    bool lockable = true;
    std::int32_t nodes = 1;            // 0 to nodes - 1; the system knows where a page stands
    std::int32_t node_of_others = -1;  // where pages come to stand that are not committed from a node
    std::int32_t full_node = -1;       // refuses every page
    std::int64_t broken_page = -1;     // by its number: neither from a node nor otherwise

    // What it was asked for.
    std::vector<std::uint64_t> large_commits, commits, reserves;
    std::vector<bool> preferred_large;
    std::uint64_t locks = 0;
    std::uint64_t locked_bytes = 0;
    std::set<void*> live, live_large;
    std::map<char*, std::int32_t> placed;  // by page

    ~FakePages() override {
        EXPECT_TRUE(live.empty());
        EXPECT_TRUE(live_large.empty());
    }

    std::uint64_t large_page_size() const override { return large_page; }
    void* commit_large(std::uint64_t bytes) override {
        large_commits.push_back(bytes);
        return large_pages_left ? take(bytes, live_large) : nullptr;
    }
    void* commit(std::uint64_t bytes, bool prefer_large) override {
        commits.push_back(bytes);
        preferred_large.push_back(prefer_large);
        return normal_pages_left ? take(bytes, live) : nullptr;
    }
    os::LargeShare large_share(const void* block, std::uint64_t) override {
        // Asked for too early the system has nothing to tell.
        EXPECT_NE(static_cast<const char*>(block)[0], 0);
        return share_by_itself;
    }
    void* reserve(std::uint64_t bytes) override {
        reserves.push_back(bytes);
        region_ = normal_pages_left ? static_cast<char*>(take(bytes, live)) : nullptr;
        return region_;
    }
    std::unique_ptr<os::NodePages> pages_of_node(std::uint64_t node) override {
        return std::make_unique<Node>(*this, node);
    }
    bool commit_reserved(void* page, std::uint64_t bytes) override {
        return place(page, bytes, node_of_others);
    }
    void find_nodes(std::span<void* const> pages, std::span<std::int32_t> found) override {
        const std::lock_guard lock(mutex_);
        ASSERT_EQ(pages.size(), found.size());
        for (std::size_t i = 0; i < pages.size(); ++i) {
            const auto* page = static_cast<const char*>(pages[i]);
            EXPECT_NE(page[0], 0);  // it has been written to
            found[i] = placed.at(static_cast<char*>(pages[i]));
        }
    }
    bool lock(void* block, std::uint64_t bytes) override {
        EXPECT_NE(static_cast<char*>(block)[bytes - 1], 0);  // it has been filled
        ++locks;
        locked_bytes = bytes;
        return lockable;
    }
    void release(void* block, std::uint64_t bytes) override { give_back(block, bytes, live); }
    void release_large(void* block, std::uint64_t bytes) override { give_back(block, bytes, live_large); }

  private:
    class Node final : public os::NodePages {
      public:
        Node(FakePages& pages, std::uint64_t node) : pages_(pages), node_(node) {}
        bool commit(void* page, std::uint64_t bytes) override {
            if (node_ >= static_cast<std::uint64_t>(pages_.nodes)) return false;
            const auto node = static_cast<std::int32_t>(node_);
            return node != pages_.full_node && pages_.place(page, bytes, node);
        }

      private:
        FakePages& pages_;
        std::uint64_t node_;
    };

    static constexpr std::align_val_t alignment{os::page_bytes};

    void* take(std::uint64_t bytes, std::set<void*>& owners) {
        void* block = ::operator new(bytes, alignment);
        std::memset(block, 0, bytes);
        owners.insert(block);
        sizes_[block] = bytes;
        return block;
    }
    void give_back(void* block, std::uint64_t bytes, std::set<void*>& owners) {
        EXPECT_EQ(owners.erase(block), 1u);
        EXPECT_EQ(sizes_[block], bytes);
        ::operator delete(block, alignment);
    }
    bool place(void* page, std::uint64_t bytes, std::int32_t node) {
        const std::lock_guard lock(mutex_);
        EXPECT_EQ(bytes, os::page_bytes);
        auto* const address = static_cast<char*>(page);
        if ((address - region_) / static_cast<std::int64_t>(os::page_bytes) == broken_page) return false;
        EXPECT_TRUE(placed.emplace(address, node).second) << "committed twice";
        return true;
    }

    std::mutex mutex_;
    char* region_ = nullptr;
    std::map<void*, std::uint64_t> sizes_;
};

// The right to lock memory, held or not.
class FakeLockRight final : public os::TokenCalls {
  public:
    bool held = true;
    mutable int asked = 0;

    Token open() const override { return {}; }
    Privilege look_up(std::string_view name) const override {
        EXPECT_EQ(name, "SeLockMemoryPrivilege");
        ++asked;
        return {};
    }
    Adjustment adjust(std::intptr_t, std::uint64_t, bool) const override {
        return {true, held ? os::no_error : os::not_all_assigned};
    }
    bool close(std::intptr_t) const override { return true; }
};

class FakeNodes final : public qmp::NodeTopology {
  public:
    std::uint64_t nodes = 1;
    mutable std::mutex mutex;
    mutable std::multiset<std::uint64_t> bound;

    std::uint64_t count() const override { return nodes; }
    bool bind_thread(std::uint64_t node) const override {
        const std::lock_guard lock(mutex);
        bound.insert(node);
        return node < nodes;
    }
};

struct FakeMemoryMachine {
    FakePages pages;
    FakeLockRight right;
    FakeNodes nodes;
    qmp::Privilege privilege{right, "SeLockMemoryPrivilege"};

    void set_nodes(std::uint64_t count) {
        nodes.nodes = count;
        pages.nodes = static_cast<std::int32_t>(count);
    }
    qmp::MemorySystem system() { return {&pages, &privilege, &nodes}; }
};

// The fill of `bytes` bytes at an address divisible by 4, one block.
inline void expect_filled(const void* block, std::uint64_t bytes) {
    for (std::uint64_t k = 0; k < bytes / 4; ++k) {
        std::uint32_t word;
        std::memcpy(&word, static_cast<const char*>(block) + 4 * k, 4);
        const auto root = static_cast<std::uint32_t>(k);
        ASSERT_EQ(word, 0xc857661bu - root * root * 0x37d46e8bu) << k;
    }
}

}  // namespace kelvara_test
