#include "platform/topology.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <thread>

#include "support/console.h"
#include "support/fatal.h"
#include "support/machine.h"

namespace {

using kelvara_test::FakeMachine;
using kelvara_test::printed_by;
using qmp::CoreTable;
using qmp::NumaNode;
using qmp::NumaTable;
using qmp::os::GroupAffinity;
using qmp::os::ProcessorMask;
using Counts = std::vector<std::uint32_t>;
using Cores = std::vector<std::uint64_t>;

Cores range(std::uint64_t first, std::uint64_t last) {
    Cores cores(last - first + 1);
    std::iota(cores.begin(), cores.end(), first);
    return cores;
}

CoreTable cores_of(const Counts& counts) {
    return CoreTable(counts);
}

TEST(CoreTable, NumbersOneGroup) {
    const CoreTable cores = cores_of({16});
    ASSERT_EQ(cores.size(), 16u);
    for (std::uint32_t k = 0; k < 16; ++k) {
        const GroupAffinity single = {0, ProcessorMask(std::uint64_t{1} << k)};
        EXPECT_EQ(*cores.affinity(k), single);
        EXPECT_EQ(cores.core(single), k);
    }
    EXPECT_EQ(cores.affinity(16), nullptr);
    EXPECT_EQ(cores.core({0, ProcessorMask::of(16)}), std::nullopt);
    EXPECT_EQ(cores.core({1, ProcessorMask::of(0)}), std::nullopt);
}

TEST(CoreTable, NumbersGroupByGroup) {
    const CoreTable cores = cores_of({36, 28});
    ASSERT_EQ(cores.size(), 64u);
    for (std::uint32_t core = 0; core < 64; ++core) {
        const std::uint16_t group = core < 36 ? 0 : 1;
        const GroupAffinity single = {group, ProcessorMask::of(group == 0 ? core : core - 36)};
        EXPECT_EQ(*cores.affinity(core), single);
        EXPECT_EQ(cores.core(single), core);
    }
    EXPECT_EQ(cores.core({0, ProcessorMask::of(36)}), std::nullopt);
    EXPECT_EQ(cores.core({1, ProcessorMask::of(28)}), std::nullopt);
}

TEST(CoreTable, NumbersAGroupOfManyProcessors) {
    const CoreTable cores = cores_of({200});
    ASSERT_EQ(cores.size(), 200u);
    for (const std::uint32_t core : {0u, 63u, 64u, 127u, 128u, 199u}) {
        EXPECT_EQ(*cores.affinity(core), (GroupAffinity{0, ProcessorMask::of(core)}));
        EXPECT_EQ(cores.core({0, ProcessorMask::of(core)}), core);
    }
    EXPECT_EQ(cores_of({1024}).size(), 1024u);
}

TEST(CoreTable, EmptyGroupsContributeNone) {
    const CoreTable cores = cores_of({0, 2, 0, 1});
    ASSERT_EQ(cores.size(), 3u);
    EXPECT_EQ(cores.affinity(0)->group, 1u);
    EXPECT_EQ(cores.affinity(1)->group, 1u);
    EXPECT_EQ(cores.affinity(2)->group, 3u);
    EXPECT_EQ(cores.core({0, ProcessorMask::of(0)}), std::nullopt);
    EXPECT_EQ(cores_of({}).size(), 0u);
    EXPECT_EQ(cores_of({0, 0}).size(), 0u);
}

TEST(CoreTable, OnlyOneProcessorNamesACore) {
    const CoreTable cores = cores_of({16});
    EXPECT_EQ(cores.core({0, ProcessorMask()}), std::nullopt);
    EXPECT_EQ(cores.core({0, ProcessorMask(3)}), std::nullopt);
}

TEST(NumaNodes, LieOverTheGroups) {
    const CoreTable cores = cores_of({36, 28});
    EXPECT_EQ(qmp::numa_node(cores, {0, ProcessorMask::first(18)}).cores, range(0, 17));
    EXPECT_EQ(qmp::numa_node(cores, {1, ProcessorMask::first(28)}).cores, range(36, 63));
    const NumaNode scattered = qmp::numa_node(cores, {1, ProcessorMask(0b1011)});
    EXPECT_EQ(scattered.cores, (Cores{36, 37, 39}));
    EXPECT_EQ(scattered.skipped, 0u);
    EXPECT_EQ(scattered.affinity, (GroupAffinity{1, ProcessorMask(0b1011)}));
}

TEST(NumaNodes, SkipWhatIsNoCore) {
    const CoreTable cores = cores_of({4});
    const NumaNode node = qmp::numa_node(cores, {0, ProcessorMask(0b110101)});
    EXPECT_EQ(node.cores, (Cores{0, 2}));
    EXPECT_EQ(node.skipped, 2u);
    EXPECT_EQ(qmp::numa_node(cores, {7, ProcessorMask(1)}).skipped, 1u);
}

TEST(NumaNodes, ANodeCanBeTheWholeMachine) {
    const NumaNode one_group = qmp::whole_machine_node(cores_of({0, 200}));
    EXPECT_EQ(one_group.cores, range(0, 199));
    EXPECT_EQ(one_group.affinity, (GroupAffinity{1, ProcessorMask::first(200)}));
    const NumaNode two_groups = qmp::whole_machine_node(cores_of({36, 28}));
    EXPECT_EQ(two_groups.cores, range(0, 63));
    EXPECT_EQ(two_groups.affinity, (GroupAffinity{0, ProcessorMask::first(36)}));
    EXPECT_EQ(qmp::whole_machine_node(cores_of({})).cores, Cores{});
}

TEST(NumberRanges, AreWrittenShort) {
    EXPECT_EQ(qmp::number_ranges(Cores{}), "None");
    EXPECT_EQ(qmp::number_ranges(Cores{5}), "5");
    EXPECT_EQ(qmp::number_ranges(range(0, 15)), "0-15");
    EXPECT_EQ(qmp::number_ranges(Cores{0, 1, 3, 5, 6, 7}), "0-1, 3, 5-7");
}

void parse(FakeMachine& machine) {
    const CoreTable cores = qmp::parse_cores(machine);
    qmp::parse_numa_nodes(machine, cores);
}

std::string parsed(FakeMachine& machine) {
    return printed_by([&] { parse(machine); });
}

TEST(ParseTopology, PrintsAPlainMachine) {
    FakeMachine machine;
    EXPECT_EQ(parsed(machine),
              "Parsing Core -> Handle Mappings...\n"
              "    Cores:  0-15\n"
              "Parsing NUMA -> Core Mappings...\n"
              "    Node  0:  0-15\n");
}

TEST(ParseTopology, PrintsNodesOverGroups) {
    FakeMachine machine;
    machine.groups = {36, 28};
    machine.nodes = {{0, ProcessorMask::first(36)}, {1, ProcessorMask::first(28)}, {}};
    EXPECT_EQ(parsed(machine),
              "Parsing Core -> Handle Mappings...\n"
              "    Cores:  0-63\n"
              "Parsing NUMA -> Core Mappings...\n"
              "    Node  0:  0-35\n"
              "    Node  1:  36-63\n"
              "    Node  2:  None\n");
}

TEST(ParseTopology, WrapsLongListsAt60Columns) {
    FakeMachine machine;
    machine.groups = {200};
    GroupAffinity even;
    for (std::uint32_t k = 100; k < 136; k += 2) even.mask.insert(k);
    machine.nodes = {even};
    EXPECT_EQ(parsed(machine),
              "Parsing Core -> Handle Mappings...\n"
              "    Cores:  0-199\n"
              "Parsing NUMA -> Core Mappings...\n"
              "    Node  0:  100, 102, 104, 106, 108, 110, 112, 114, 116,\n"
              "              118, 120, 122, 124, 126, 128, 130, 132, 134\n");
}

TEST(ParseTopology, ALineOf60ColumnsIsNotBroken) {
    const auto lines = [](const Counts& processors) {
        FakeMachine machine;
        machine.groups = {1000};
        machine.nodes = {{}};
        for (const std::uint32_t k : processors) machine.nodes[0].mask.insert(k);
        const std::string text = parsed(machine);
        return text.substr(text.find("    Node"));
    };
    // Exactly 60 columns, and one more.
    EXPECT_EQ(lines({10, 12, 100, 102, 104, 106, 108, 110, 112, 114}),
              "    Node  0:  10, 12, 100, 102, 104, 106, 108, 110, 112, 114\n");
    EXPECT_EQ(lines({10, 100, 102, 104, 106, 108, 110, 112, 114, 116}),
              "    Node  0:  10, 100, 102, 104, 106, 108, 110, 112, 114,\n"
              "              116\n");
    // The comma at the end counts.
    EXPECT_EQ(lines({1, 11, 100, 102, 104, 106, 108, 110, 112, 114, 116}),
              "    Node  0:  1, 11, 100, 102, 104, 106, 108, 110, 112, 114,\n"
              "              116\n");
    EXPECT_EQ(lines({10, 12, 100, 102, 104, 106, 108, 110, 112, 114, 116}),
              "    Node  0:  10, 12, 100, 102, 104, 106, 108, 110, 112,\n"
              "              114, 116\n");
}

TEST(ParseTopology, WarnsOfEveryInvalidBit) {
    FakeMachine machine;
    machine.groups = {4};
    machine.nodes = {{0, ProcessorMask(0b110011)}};
    EXPECT_EQ(parsed(machine),
              "Parsing Core -> Handle Mappings...\n"
              "    Cores:  0-3\n"
              "Parsing NUMA -> Core Mappings...\n"
              "\nWarning: Skipping invalid KAFFINITY mask.\n"
              "\nWarning: Skipping invalid KAFFINITY mask.\n"
              "    Node  0:  0-1\n");
}

TEST(ParseTopology, OneNodeWithoutTheCallHoldsEveryProcessor) {
    FakeMachine machine;
    machine.groups = {3, 2};
    machine.node_error = qmp::os::call_not_implemented;
    EXPECT_EQ(parsed(machine),
              "Parsing Core -> Handle Mappings...\n"
              "    Cores:  0-4\n"
              "Parsing NUMA -> Core Mappings...\n"
              "    Node  0:  0-4\n");
}

TEST(ParseTopology, AMachineWithoutProcessorsStillHasNode0) {
    FakeMachine machine;
    machine.groups = {};
    machine.nodes = {{}};
    std::uint64_t nodes = 0;
    EXPECT_EQ(printed_by([&] { nodes = qmp::parse_numa_nodes(machine, qmp::parse_cores(machine)).size(); }),
              "Parsing Core -> Handle Mappings...\n"
              "    Cores:  None\n"
              "Parsing NUMA -> Core Mappings...\n"
              "    Node  0:  None\n");
    EXPECT_EQ(nodes, 1u);
}

#if GTEST_HAS_DEATH_TEST
TEST(ParseTopologyDeathTest, EndsWhenTheHighestNodeCannotBeRead) {
    FakeMachine machine;
    machine.highest_node_error = 87;
    EXPECT_FATAL(parse(machine), "Fatal Error: .* failed: 87");
}

TEST(ParseTopologyDeathTest, EndsWhenANodeCannotBeRead) {
    FakeMachine machine;
    machine.node_error = 5;
    EXPECT_FATAL(parse(machine), "Fatal Error: .* failed: 5");
    // Of several nodes nobody knows which has which processors.
    machine.nodes.resize(2);
    machine.node_error = qmp::os::call_not_implemented;
    EXPECT_FATAL(parse(machine), "Fatal Error: .* failed: 120");
}
#endif

TEST(BindToCore, TakesTheCoresAffinity) {
    FakeMachine machine;
    const CoreTable cores = cores_of({36, 200});
    EXPECT_TRUE(qmp::bind_to_core(36 + 150, cores, machine));
    EXPECT_EQ(machine.asked.back(), (GroupAffinity{1, ProcessorMask::of(150)}));
    EXPECT_FALSE(qmp::bind_to_core(236, cores, machine));
    EXPECT_EQ(machine.asked.size(), 1u);
    machine.refuses = true;
    EXPECT_FALSE(qmp::bind_to_core(0, cores, machine));
}

TEST(BindToNumaNode, TakesTheNodesAffinity) {
    FakeMachine machine;
    const CoreTable cores = cores_of({8, 8});
    const NumaTable nodes(
        {qmp::numa_node(cores, {0, ProcessorMask(0xff)}), qmp::numa_node(cores, {1, ProcessorMask(0xf0)})});
    EXPECT_TRUE(qmp::bind_to_numa_node(1, nodes, machine));
    EXPECT_EQ(machine.asked.back(), (GroupAffinity{1, ProcessorMask(0xf0)}));
    EXPECT_FALSE(qmp::bind_to_numa_node(2, nodes, machine));
    EXPECT_FALSE(qmp::bind_to_numa_node(~std::uint64_t{0}, nodes, machine));
    EXPECT_EQ(machine.asked.size(), 1u);
    machine.refuses = true;
    EXPECT_FALSE(qmp::bind_to_numa_node(0, nodes, machine));
}

TEST(Topology, OfThisMachine) {
    const CoreTable& cores = qmp::core_table();
    const NumaTable& nodes = qmp::numa_table();
    EXPECT_EQ(printed_by([] {
                  qmp::core_table();
                  qmp::numa_table();
              }),
              "");
    ASSERT_GE(cores.size(), 1u);
    ASSERT_GE(nodes.size(), 1u);
    Cores of_all_nodes;
    for (std::uint64_t node = 0; node < nodes.size(); ++node) {
        const Cores& some = nodes.find(node)->cores;
        of_all_nodes.insert(of_all_nodes.end(), some.begin(), some.end());
    }
    std::sort(of_all_nodes.begin(), of_all_nodes.end());
    EXPECT_EQ(of_all_nodes, range(0, cores.size() - 1));

    std::thread([&] {
        for (std::uint64_t core = 0; core < cores.size(); ++core) {
            ASSERT_TRUE(qmp::bind_to_core(core));
            EXPECT_EQ(qmp::os::thread_group_affinity(), *cores.affinity(core));
        }
        EXPECT_FALSE(qmp::bind_to_core(cores.size()));
        for (std::uint64_t node = 0; node < nodes.size(); ++node) {
            if (nodes.find(node)->cores.empty()) continue;
            ASSERT_TRUE(qmp::bind_to_numa_node(node));
            EXPECT_EQ(qmp::os::thread_group_affinity(), nodes.find(node)->affinity);
        }
        EXPECT_FALSE(qmp::bind_to_numa_node(nodes.size()));
    }).join();
}

}  // namespace
