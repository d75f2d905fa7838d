#pragma once

#include "readers/model.h"

#include "tarn/matrix.h"

#include <cstddef>
#include <string>
#include <vector>

namespace tarn::program {

/// A node of a file's tree, as the file states it.
struct TreeNode {
    std::string name;                   ///< may be empty
    std::vector<std::size_t> children;  ///< indices of nodes
    std::vector<std::size_t> meshes;    ///< indices of meshes that have triangles
    tarn::MATRIX to_parent;             ///< the translation in millimetres
};

/// Makes a part of every node below the roots that carries meshes, in the order of a walk that visits parents
/// before children, and puts parts and owners into the model.
///  (1) A part stands under the product of all matrices from its root down, computed in doubles.
///  (2) Its name is the path of the nodes' names, with slashes between; a node without a name is "node 7".
///  (3) Nodes count as children only if they lead to a mesh. Going down from the roots, the first level with
///      more than one child is that of the owners; a part on the way there is its own owner.
///  (4) The walk is bounded whatever the file says: a node that is reached twice, so every circle, too deep a
///      tree, too long a path and too long paths together are refused.
/// Throws `FormatError`, naming the node by its number from 0, also for a placement that is not finite.
void AddParts(Model& model, const std::vector<TreeNode>& nodes, const std::vector<std::size_t>& roots);

}  // namespace tarn::program
