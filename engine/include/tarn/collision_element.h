#pragma once

#include "tarn/export.h"
#include "tarn/triangle_data.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tarn {

/// A named triangle mesh in local coordinates that never changes. Several bodies may hold the same element,
/// each under its own placement. Made by `make_element`, which drops every triangle that has an edge whose
/// squared length is not above 1e-7, without a report.
///
/// Thread-safety: any number of threads may read one element.
class TARN_API ICollisionElement {
public:
    virtual ~ICollisionElement() = default;

    /// Always false.
    virtual bool GetFlag() const = 0;
    /// Copies of the kept triangles in input order, in local coordinates.
    virtual std::vector<TriangleData> GetTriangles() const = 0;
    /// How many triangles were kept.
    virtual std::uint64_t GetTrianglesCount() const = 0;
    /// For messages.
    virtual std::string GetName() const = 0;
};

}  // namespace tarn
