#include "registry/native_collision_element_wrapper.h"

#include "registry/loader.h"

#include "tarn/factory.h"

#include <utility>
#include <vector>

namespace Ostrel::Quarrix::Collisions {

namespace {

using Triangles = std::vector<tarn::TriangleData>;

constexpr std::size_t kUsualTriangles = 32;
constexpr std::size_t kMostKept = 4096;

/// Elements come by the thousand, so each thread keeps the room for the next.
struct KeptRoom {
    Triangles triangles;
    ~KeptRoom();
};

thread_local KeptRoom kept_room;
/// It has no destructor, so it can be asked when other objects of an ending thread still load elements.
thread_local bool kept_room_is_gone = false;

KeptRoom::~KeptRoom() {
    kept_room_is_gone = true;
}

/// `Load` may lead here again: then the room is taken.
Triangles TakeRoom() {
    Triangles triangles;
    if (!kept_room_is_gone) triangles.swap(kept_room.triangles);
    triangles.clear();
    triangles.reserve(kUsualTriangles);
    return triangles;
}

void GiveRoomBack(Triangles& triangles) {
    if (!kept_room_is_gone && triangles.capacity() <= kMostKept) triangles.swap(kept_room.triangles);
}

}  // namespace

void Loader::MakeRoom() const {
    triangles_->reserve(2 * triangles_->size() + kUsualTriangles);
}

NativeCollisionElementWrapper::NativeCollisionElementWrapper(const ICollisionElement& element) {
    Triangles triangles = TakeRoom();
    element.Load(Loader(triangles));
    element_ = tarn::make_unique_element(element.get_Name(), triangles);
    GiveRoomBack(triangles);
}

}  // namespace Ostrel::Quarrix::Collisions
