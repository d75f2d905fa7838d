#include "tarn/tarn.h"

#include <iostream>
#include <vector>

namespace {

// The twelve triangles of a box from the origin to (x, y, z), normals outwards.
std::vector<tarn::TriangleData> MakeBox(double x, double y, double z) {
    return {{0, 0, 0, 0, y, 0, x, y, 0}, {0, 0, 0, x, y, 0, x, 0, 0}, {0, 0, z, x, 0, z, x, y, z},
            {0, 0, z, x, y, z, 0, y, z}, {0, 0, 0, x, 0, 0, x, 0, z}, {0, 0, 0, x, 0, z, 0, 0, z},
            {0, y, 0, 0, y, z, x, y, z}, {0, y, 0, x, y, z, x, y, 0}, {0, 0, 0, 0, 0, z, 0, y, z},
            {0, 0, 0, 0, y, z, 0, y, 0}, {x, 0, 0, x, y, 0, x, y, z}, {x, 0, 0, x, y, z, x, 0, z}};
}

}  // namespace

int main() {
    const auto box = tarn::make_shared_element("box", MakeBox(40, 20, 10));
    const auto base = tarn::make_shared_body(box.get(), 1, 0);
    const auto lid = tarn::make_shared_body(box.get(), 2, 0);
    base->SetLeafNumber(5);
    lid->SetLeafNumber(5);
    lid->SetMatrix({{1, 0, 0, 25, 0, 1, 0, 5, 0, 0, 1, 7}});  // moved by (25, 5, 7)

    const auto configuration = tarn::make_shared_configuration();
    configuration->AddElement(base.get(), true);
    configuration->AddElement(lid.get(), true);

    tarn::CollisionResult result;
    tarn::make_unique_detector()->Check(result, *configuration,
                                        tarn::CheckPolicy::AllInterferencesWithTriangles);
    if (!result.get_InterferenceDetected()) {
        std::cout << "The boxes are apart.\n";
        return 0;
    }
    const auto [first, second] = result.get_Triangles().front();
    const tarn::SegmentData segment = tarn::ComputeIntersectingSegment(first, second).second;
    std::cout << "The boxes interfere at (" << segment.P1X << ", " << segment.P1Y << ", " << segment.P1Z
              << ").\n";
}
