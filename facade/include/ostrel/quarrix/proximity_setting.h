#pragma once

#include "ostrel/quarrix/export.h"
#include "ostrel/quarrix/object.h"

#include "tarn/proximity_setting.h"

#include <memory>

namespace Ostrel::Quarrix::Collisions {

/// Whether a pair is measured, and the distance within which it is reported. Never changes.
class QUARRIX_API ProximitySetting final : public Object {
public:
    /// Not measured, with a clearance of 0.
    ProximitySetting();
    /// Measured. Throws as the next one.
    explicit ProximitySetting(double clearance);
    /// Throws `ArgumentOutOfRangeException` ("clearance") for a negative clearance; -0 and NaN pass.
    ProximitySetting(bool enable, double clearance);
    /// The same values.
    ProximitySetting(const ProximitySetting& copy);
    /// From the engine's. Throws `ArgumentOutOfRangeException` ("setting") for a negative clearance.
    explicit ProximitySetting(const tarn::ProximitySetting& setting);

    /// Whether the pair is measured.
    bool get_Enable() const { return enable_; }
    /// The distance within which it is reported.
    double get_Clearance() const { return clearance_; }

    /// A new setting with the same values.
    std::shared_ptr<ProximitySetting> Clone() const;

    /// Settings in hashed containers go by identity.
    using Object::Equals;
    /// Whether both values are equal, as numbers: NaN equals nothing, 0 equals -0. False for null.
    bool Equals(const std::shared_ptr<ProximitySetting>& other) const;

    /// As the engine takes it.
    tarn::ProximitySetting ToNative() const { return {enable_, clearance_}; }

private:
    bool enable_;
    double clearance_;
};

}  // namespace Ostrel::Quarrix::Collisions
