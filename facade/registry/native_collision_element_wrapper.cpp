#include "registry/native_collision_element_wrapper.h"

#include "registry/loader.h"

#include "tarn/factory.h"

#include <vector>

namespace Ostrel::Quarrix::Collisions {

NativeCollisionElementWrapper::NativeCollisionElementWrapper(const ICollisionElement& element) {
    constexpr std::size_t kUsualTriangles = 32;
    std::vector<tarn::TriangleData> triangles;
    triangles.reserve(kUsualTriangles);
    element.Load(Loader(triangles));
    element_ = tarn::make_unique_element(element.get_Name(), triangles);
}

}  // namespace Ostrel::Quarrix::Collisions
