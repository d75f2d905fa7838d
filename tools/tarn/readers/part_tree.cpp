#include "readers/part_tree.h"

#include "readers/printable_text.h"
#include "readers/program_error.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <string_view>

namespace tarn::program {
namespace {

/// Nodes on a path and bytes in it at most. Far above what assemblies have, and low enough that a file made
/// to do harm cannot multiply its size by its names.
constexpr std::size_t kDeepestLevel = 256;
constexpr std::size_t kLongestPath = 4096;
/// Bytes in the paths of all parts and owners together at most.
constexpr std::size_t kLongestPaths = 256U << 20U;

constexpr std::size_t kNone = static_cast<std::size_t>(-1);

tarn::MATRIX Product(const tarn::MATRIX& outer, const tarn::MATRIX& inner) {
    tarn::MATRIX product;
    for (std::size_t row = 0; row < 12; row += 4) {
        for (std::size_t column = 0; column < 4; ++column) {
            double sum = column == 3 ? outer[row + 3] : 0.0;
            for (std::size_t k = 0; k < 3; ++k) sum += outer[row + k] * inner[4 * k + column];
            product[row + column] = sum;
        }
    }
    return product;
}

bool IsFinite(const tarn::MATRIX& matrix) {
    return std::ranges::all_of(matrix.m, [](double value) { return std::isfinite(value); });
}

/// One node on the walk. Parents stand before their children.
struct Visit {
    std::size_t node;
    std::size_t parent;  ///< index of a visit, or `kNone`
    std::size_t depth;
    tarn::MATRIX placement;
    bool leads_to_mesh = false;
    std::size_t owner = kNone;  ///< index of the visit of the owner's node
};

class TreeWalk {
public:
    TreeWalk(const std::vector<TreeNode>& nodes, const std::vector<std::size_t>& roots) : nodes_(nodes) {
        Walk(roots);
        for (std::size_t index = visits_.size(); index-- > 0;) {
            Visit& visit = visits_[index];
            visit.leads_to_mesh |= !nodes_[visit.node].meshes.empty();
            if (visit.leads_to_mesh && visit.parent != kNone) visits_[visit.parent].leads_to_mesh = true;
        }
        ChooseOwners();
    }

    void AddTo(Model& model) const {
        std::size_t total_length = 0;
        const auto path_of = [&](std::size_t index) {
            std::string path = PathOf(index);
            total_length += path.size();
            if (total_length > kLongestPaths) {
                throw FormatError(
                    fmt::format("the paths of its parts have more than {} bytes together", kLongestPaths));
            }
            return path;
        };
        std::map<std::size_t, std::size_t> owner_numbers;  // of visits
        for (std::size_t index = 0; index < visits_.size(); ++index) {
            const Visit& visit = visits_[index];
            if (nodes_[visit.node].meshes.empty()) continue;
            const auto [number, is_new] = owner_numbers.try_emplace(visit.owner, model.owners.size());
            if (is_new) model.owners.push_back(path_of(visit.owner));
            model.parts.push_back(
                {path_of(index), number->second, nodes_[visit.node].meshes, visit.placement});
        }
    }

private:
    [[noreturn]] void Fail(std::size_t node, std::string_view cause) const {
        const std::string& name = nodes_[node].name;
        throw FormatError(
            fmt::format("node {}{} {}", node, name.empty() ? "" : " '" + Excerpt(name) + "'", cause));
    }

    void Walk(const std::vector<std::size_t>& roots) {
        struct Step {
            std::size_t node, parent;
        };
        std::vector<Step> pending;
        std::vector<bool> is_reached(nodes_.size(), false);
        const auto push = [&](const std::vector<std::size_t>& children, std::size_t parent) {
            for (auto child = children.rbegin(); child != children.rend(); ++child) {
                if (*child >= nodes_.size()) {
                    throw FormatError(
                        fmt::format("node {} does not exist, there are {}", *child, nodes_.size()));
                }
                if (is_reached[*child])
                    Fail(*child, "is reached twice: it has two parents or is below itself");
                is_reached[*child] = true;
                pending.push_back({*child, parent});
            }
        };
        push(roots, kNone);
        while (!pending.empty()) {
            const Step step = pending.back();
            pending.pop_back();
            const TreeNode& node = nodes_[step.node];
            Visit visit{step.node, step.parent, 0, node.to_parent};
            if (step.parent != kNone) {
                visit.depth = visits_[step.parent].depth + 1;
                visit.placement = Product(visits_[step.parent].placement, node.to_parent);
            }
            if (visit.depth >= kDeepestLevel) Fail(step.node, "lies too deep in the tree");
            if (!IsFinite(visit.placement)) Fail(step.node, "has a placement that is not finite");
            visits_.push_back(visit);
            push(node.children, visits_.size() - 1);
        }
    }

    /// Goes down as long as only one way leads to meshes.
    void ChooseOwners() {
        std::vector<std::vector<std::size_t>> children(visits_.size() + 1);  // the last are those of the file
        for (std::size_t index = 0; index < visits_.size(); ++index) {
            const std::size_t parent = visits_[index].parent;
            if (visits_[index].leads_to_mesh)
                children[parent == kNone ? visits_.size() : parent].push_back(index);
        }
        std::size_t above = visits_.size();
        while (children[above].size() == 1) above = children[above].front();
        for (const std::size_t index : children[above]) visits_[index].owner = index;
        for (std::size_t index = 0; index < visits_.size(); ++index) {
            Visit& visit = visits_[index];
            if (visit.owner == kNone && visit.parent != kNone) visit.owner = visits_[visit.parent].owner;
        }
        for (std::size_t index = 0; index < visits_.size(); ++index) {
            if (visits_[index].owner == kNone) visits_[index].owner = index;
        }
    }

    std::string PathOf(std::size_t index) const {
        std::vector<std::size_t> nodes;
        for (; index != kNone; index = visits_[index].parent) nodes.push_back(visits_[index].node);
        std::string path;
        for (auto node = nodes.rbegin(); node != nodes.rend(); ++node) {
            if (node != nodes.rbegin()) path += '/';
            path += nodes_[*node].name.empty() ? fmt::format("node {}", *node) : nodes_[*node].name;
            if (path.size() > kLongestPath) {
                Fail(*node, fmt::format("has a path of more than {} bytes", kLongestPath));
            }
        }
        return path;
    }

    const std::vector<TreeNode>& nodes_;
    std::vector<Visit> visits_;
};

}  // namespace

void AddParts(Model& model, const std::vector<TreeNode>& nodes, const std::vector<std::size_t>& roots) {
    TreeWalk(nodes, roots).AddTo(model);
}

}  // namespace tarn::program
