#include "ostrel/quarrix/proximity_setting.h"

#include "ostrel/quarrix/exceptions.h"

namespace Ostrel::Quarrix::Collisions {

namespace {

/// NaN is not negative.
double RequireNotNegative(double clearance, Text param_name) {
    if (clearance < 0.0) throw ArgumentOutOfRangeException(param_name, "Value can not be negative");
    return clearance;
}

}  // namespace

ProximitySetting::ProximitySetting() : ProximitySetting(false, 0.0) {}

ProximitySetting::ProximitySetting(double clearance) : ProximitySetting(true, clearance) {}

ProximitySetting::ProximitySetting(bool enable, double clearance)
    : enable_(enable),
      clearance_(RequireNotNegative(clearance, "clearance")) {}

ProximitySetting::ProximitySetting(const ProximitySetting& copy)
    : Object(),  // NOLINT(readability-redundant-member-init): g++ warns of copies that leave it out
      enable_(copy.enable_),
      clearance_(copy.clearance_) {}

ProximitySetting::ProximitySetting(const tarn::ProximitySetting& setting)
    : enable_(setting.enable),
      clearance_(RequireNotNegative(setting.clearance, "setting")) {}

std::shared_ptr<ProximitySetting> ProximitySetting::Clone() const {
    return std::make_shared<ProximitySetting>(*this);
}

bool ProximitySetting::Equals(const std::shared_ptr<ProximitySetting>& other) const {
    return other && enable_ == other->enable_ && clearance_ == other->clearance_;
}

}  // namespace Ostrel::Quarrix::Collisions
