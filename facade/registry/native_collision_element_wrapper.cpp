#include "registry/native_collision_element_wrapper.h"

#include "registry/loader.h"

#include "tarn/factory.h"

#include <utility>
#include <vector>

namespace Ostrel::Quarrix::Collisions {

NativeCollisionElementWrapper::NativeCollisionElementWrapper(const ICollisionElement& element) {
    // Elements come by the thousand, so each thread keeps the room for the next. `Load` may lead here again:
    // then it is taken.
    constexpr std::size_t kUsualTriangles = 32;
    constexpr std::size_t kKeptTriangles = 4096;
    static thread_local std::vector<tarn::TriangleData> kept;
    std::vector<tarn::TriangleData> triangles = std::move(kept);
    triangles.clear();
    triangles.reserve(kUsualTriangles);
    element.Load(Loader(triangles));
    element_ = tarn::make_unique_element(element.get_Name(), triangles);
    if (triangles.capacity() <= kKeptTriangles) kept = std::move(triangles);
}

}  // namespace Ostrel::Quarrix::Collisions
