// A machine of a test's own making in place of the real one.
#pragma once

#include <mutex>
#include <optional>
#include <vector>

#include "platform/processor_system.h"

namespace kelvara_test {

struct FakeMachine : qmp::ProcessorSystem {
    // Processors of each group.
    std::vector<std::uint32_t> groups = {16};
    std::vector<qmp::os::GroupAffinity> nodes = {{0, qmp::os::ProcessorMask::first(16)}};
    qmp::os::ErrorCode highest_node_error = qmp::os::no_error;
    qmp::os::ErrorCode node_error = qmp::os::no_error;
    bool refuses = false;
    // What the affinity reads back as, whatever was set; nothing for what was set.
    std::optional<qmp::os::GroupAffinity> reads_back;
    bool read_back_fails = false;
    // What was asked for, in order.
    std::vector<qmp::os::GroupAffinity> asked;

    std::uint32_t active_processor_groups() override { return static_cast<std::uint32_t>(groups.size()); }
    std::uint32_t active_processors(std::uint32_t group) override {
        return group < groups.size() ? groups[group] : 0;
    }
    std::optional<qmp::os::GroupAffinity> thread_group_affinity() override {
        const std::lock_guard lock(mutex_);
        if (read_back_fails || asked.empty()) return std::nullopt;
        return reads_back ? *reads_back : asked.back();
    }
    bool set_thread_group_affinity(const qmp::os::GroupAffinity& affinity) override {
        const std::lock_guard lock(mutex_);
        asked.push_back(affinity);
        return !refuses;
    }
    qmp::os::ErrorCode highest_numa_node(std::uint32_t& node) override {
        node = static_cast<std::uint32_t>(nodes.size() - 1);
        return highest_node_error;
    }
    qmp::os::ErrorCode numa_node_affinity(std::uint32_t node, qmp::os::GroupAffinity& affinity) override {
        if (node_error == qmp::os::no_error) affinity = nodes.at(node);
        return node_error;
    }

  private:
    std::mutex mutex_;
};

}  // namespace kelvara_test
