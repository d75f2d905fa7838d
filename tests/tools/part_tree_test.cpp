#include "readers/part_tree.h"

#include "error_of.h"

#include <gtest/gtest.h>

#include <map>

namespace tarn::program {
namespace {

/// The owner's name of every part's name, of a tree whose nodes are: name, children, whether it has a mesh.
std::map<std::string, std::string> OwnersOf(const std::vector<TreeNode>& nodes,
                                            const std::vector<std::size_t>& roots) {
    Model model;
    AddParts(model, nodes, roots);
    std::map<std::string, std::string> owners;
    for (const Part& part : model.parts) owners[part.name] = model.owners.at(part.owner);
    return owners;
}

TreeNode Node(const std::string& name, const std::vector<std::size_t>& children, bool has_mesh = false) {
    return {name, children, has_mesh ? std::vector<std::size_t>{0} : std::vector<std::size_t>{}, {}};
}

using Owners = std::map<std::string, std::string>;

TEST(PartTree, TheOwnersAreTheFirstLevelWithMoreThanOneWayToMeshes) {
    // world -> base -> {left -> {a, b}, right, empty}
    const std::vector<TreeNode> nodes = {
        Node("world", {1}), Node("base", {2, 3, 4}), Node("left", {5, 6}), Node("right", {}, true),
        Node("empty", {}),  Node("a", {}, true),     Node("b", {}, true)};
    EXPECT_EQ(OwnersOf(nodes, {0}), (Owners{{"world/base/left/a", "world/base/left"},
                                            {"world/base/left/b", "world/base/left"},
                                            {"world/base/right", "world/base/right"}}));
    EXPECT_EQ(OwnersOf(nodes, {2, 3, 4}),
              (Owners{{"left/a", "left"}, {"left/b", "left"}, {"right", "right"}}));
    EXPECT_EQ(OwnersOf(nodes, {4, 2}), (Owners{{"left/a", "left/a"}, {"left/b", "left/b"}}));
}

TEST(PartTree, PartsAboveTheOwnersAreTheirOwn) {
    // chassis (a mesh) -> axle (a mesh) -> {left, right}, and a lone chain
    const std::vector<TreeNode> nodes = {Node("chassis", {1}, true), Node("axle", {2, 3}, true),
                                         Node("left", {}, true), Node("right", {4}, true),
                                         Node("nut", {}, true)};
    EXPECT_EQ(OwnersOf(nodes, {0}), (Owners{{"chassis", "chassis"},
                                            {"chassis/axle", "chassis/axle"},
                                            {"chassis/axle/left", "chassis/axle/left"},
                                            {"chassis/axle/right", "chassis/axle/right"},
                                            {"chassis/axle/right/nut", "chassis/axle/right"}}));
    EXPECT_EQ(OwnersOf(nodes, {3}), (Owners{{"right", "right"}, {"right/nut", "right/nut"}}));
    EXPECT_EQ(OwnersOf({Node("empty", {})}, {0}), Owners{});
}

TEST(PartTree, PathsThatAreTooLongTogetherAreRefused) {
    std::vector<TreeNode> nodes = {Node(std::string(4000, 'p'), {})};
    for (std::size_t child = 1; child <= 70'000; ++child) {
        nodes[0].children.push_back(child);
        nodes.push_back(Node("", {}, true));
    }
    Model model;
    EXPECT_EQ(ErrorOf([&] { AddParts(model, nodes, {0}); }),
              "the paths of its parts have more than 268435456 bytes together");
}

}  // namespace
}  // namespace tarn::program
