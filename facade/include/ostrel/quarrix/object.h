#pragma once

#include "ostrel/quarrix/export.h"

#include <atomic>
#include <cstdint>

namespace Ostrel::Quarrix::Collisions {

/// Root of the object model. Objects are shared by `std::shared_ptr` and never copied; identity is what
/// counts, unless a class overrides `Equals` and, along with it, `GetHashCode`. Interfaces derive virtually,
/// so that one class may implement several.
class QUARRIX_API Object {
public:
    /// With an identity of its own.
    Object() = default;
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    virtual ~Object();

    /// Whether `other` stands for the same thing: by default, whether it is this object. Null never is.
    virtual bool Equals(const Object* other) const;

    /// The same for equal objects and at every call. By default a word of this object's own, drawn at the
    /// first call: exactly sixteen of its bits are set, and none is given out twice before all 601,080,390
    /// such words are. No such word contains all set bits of another, on which the engine's removal of
    /// couples relies. Safe from any thread.
    virtual std::int32_t GetHashCode() const;

private:
    /// 0 until it is asked for.
    mutable std::atomic<std::uint32_t> hash_word_{0};
};

}  // namespace Ostrel::Quarrix::Collisions
