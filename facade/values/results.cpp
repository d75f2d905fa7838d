#include "ostrel/quarrix/collision_result.h"
#include "ostrel/quarrix/proximity_result.h"

#include "tarn/triangle_segments.h"

#include <utility>

namespace Ostrel::Quarrix::Collisions {

namespace {

tarn::TriangleData DataOf(const Triangle& triangle) {
    const auto v0 = triangle.get_V0();
    const auto v1 = triangle.get_V1();
    const auto v2 = triangle.get_V2();
    return {v0[0], v0[1], v0[2], v1[0], v1[1], v1[2], v2[0], v2[1], v2[2]};
}

std::array<double, 3> MiddleOf(const tarn::SegmentData& segment) {
    return {(segment.P1X + segment.P2X) * 0.5, (segment.P1Y + segment.P2Y) * 0.5,
            (segment.P1Z + segment.P2Z) * 0.5};
}

std::array<double, 3> CenterOf(const std::vector<std::shared_ptr<Triangle>>& triangles) {
    if (triangles.size() <= 1) return {0.0, 0.0, 0.0};
    const tarn::TriangleData first = DataOf(*triangles[0]);
    const tarn::TriangleData second = DataOf(*triangles[1]);
    const auto [crosses, segment] = tarn::ComputeIntersectingSegment(first, second);
    return MiddleOf(crosses ? segment : tarn::ComputeCentroidSegment(first, second));
}

}  // namespace

CollisionResult::CollisionResult(bool checkResult,
                                 InterferenceResultType interferenceType,
                                 std::vector<std::shared_ptr<Triangle>> triangles,
                                 std::vector<std::shared_ptr<CollisionCouple>> pairs)
    : check_result_(checkResult),
      interference_type_(interferenceType),
      triangles_(std::move(triangles)),
      pairs_(std::move(pairs)) {}

bool CollisionResult::get_Result() const {
    RequireNotDisposed();
    return check_result_;
}

InterferenceResultType CollisionResult::get_InterferenceType() const {
    RequireNotDisposed();
    return interference_type_;
}

std::vector<std::shared_ptr<CollisionCouple>> CollisionResult::get_CollidingElementCouples() const {
    RequireNotDisposed();
    return pairs_;
}

std::vector<std::shared_ptr<NearElementsCouple>> CollisionResult::get_AlmostCollidingElementsCouples() const {
    RequireNotDisposed();
    return {};
}

std::vector<std::shared_ptr<Triangle>> CollisionResult::get_IntersectingTriangles() const {
    RequireNotDisposed();
    return triangles_;
}

const std::array<double, 3>& CollisionResult::get_CollisionCenter() const {
    RequireNotDisposed();
    if (!center_) center_ = CenterOf(triangles_);
    return *center_;
}

std::vector<std::shared_ptr<InterferenceCouple>> CollisionResult::GetIntersectingSubElements(
    const std::shared_ptr<CollisionCouple>& /*intersectingCouple*/) const {
    return {};
}

ProximityResult::ProximityResult(bool checkResult,
                                 std::vector<std::shared_ptr<Triangle>> triangles,
                                 std::vector<std::shared_ptr<InterferenceCouple>> pairs)
    : check_result_(checkResult),
      triangles_(std::move(triangles)),
      pairs_(std::move(pairs)) {}

bool ProximityResult::get_Result() const {
    RequireNotDisposed();
    return check_result_;
}

std::vector<std::shared_ptr<InterferenceCouple>> ProximityResult::get_ElementCouples() const {
    RequireNotDisposed();
    return pairs_;
}

std::vector<std::shared_ptr<Triangle>> ProximityResult::get_NearestTriangles() const {
    RequireNotDisposed();
    return triangles_;
}

}  // namespace Ostrel::Quarrix::Collisions
