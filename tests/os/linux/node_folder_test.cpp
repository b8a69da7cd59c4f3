#include "platform/os/linux/node_folder.h"

#include <gtest/gtest.h>

#include <fstream>

#include "support/folder.h"

namespace qmp::os {
namespace {

using Numbers = std::vector<std::uint32_t>;

class NodeFolderTest : public testing::Test {
  protected:
    void add_node(const std::string& name, const std::string& list) {
        std::filesystem::create_directory(folder_.native(name));
        std::ofstream(folder_.native(name) / "cpulist") << list;
    }
    std::uint32_t highest() {
        std::uint32_t node = 99;
        EXPECT_EQ(nodes_.highest_node(node), no_error);
        return node;
    }
    Numbers processors(std::uint32_t node) {
        Numbers list = {99};
        EXPECT_EQ(nodes_.processors(node, list), no_error);
        return list;
    }
    ErrorCode error_of(std::uint32_t node) {
        Numbers list;
        return nodes_.processors(node, list);
    }

    kelvara_test::TemporaryFolder folder_;
    NodeFolder nodes_{folder_.path()};
};

TEST_F(NodeFolderTest, TellsTheProcessorsOfEachNode) {
    add_node("node0", "0-3,8-11\n");
    add_node("node1", "4-7,12-15\n");
    std::ofstream(folder_.native("online")) << "0-1\n";
    add_node("nodes", "99\n");
    add_node("node", "99\n");
    add_node("node7x", "99\n");
    EXPECT_EQ(highest(), 1u);
    EXPECT_EQ(processors(0), (Numbers{0, 1, 2, 3, 8, 9, 10, 11}));
    EXPECT_EQ(processors(1), (Numbers{4, 5, 6, 7, 12, 13, 14, 15}));
}

TEST_F(NodeFolderTest, KnowsGapsAndNodesOfMemoryOnly) {
    add_node("node0", "0-1\n");
    add_node("node10", "2\n");
    add_node("node2", "\n");
    EXPECT_EQ(highest(), 10u);
    EXPECT_EQ(processors(1), Numbers{});
    EXPECT_EQ(processors(2), Numbers{});
    EXPECT_EQ(processors(10), Numbers{2});
    EXPECT_EQ(processors(11), Numbers{});
}

TEST_F(NodeFolderTest, Node0CanBeMissingAmongOthers) {
    add_node("node8", "0-1\n");
    EXPECT_EQ(highest(), 8u);
    EXPECT_EQ(processors(0), Numbers{});
}

TEST_F(NodeFolderTest, AKernelWithoutNodesHasNode0Alone) {
    EXPECT_EQ(highest(), 0u);
    EXPECT_EQ(error_of(0), call_not_implemented);
    const NodeFolder missing(folder_.path("missing"));
    std::uint32_t node = 99;
    EXPECT_EQ(missing.highest_node(node), no_error);
    EXPECT_EQ(node, 0u);
    Numbers list;
    EXPECT_EQ(missing.processors(0, list), call_not_implemented);
}

TEST_F(NodeFolderTest, ReportsWhatItCannotRead) {
    add_node("node0", "garbage\n");
    EXPECT_EQ(error_of(0), invalid_data);
    std::filesystem::remove(folder_.native("node0") / "cpulist");
    EXPECT_EQ(error_of(0), file_not_found);
    const NodeFolder no_folder(folder_.path("file"));
    std::ofstream(folder_.native("file")) << "0\n";
    std::uint32_t node = 0;
    EXPECT_EQ(no_folder.highest_node(node), path_not_found);
    Numbers list;
    EXPECT_EQ(no_folder.processors(0, list), path_not_found);
}

}  // namespace
}  // namespace qmp::os
