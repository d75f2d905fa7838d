#include "config/proximity_configuration.h"

#include "config/own_body.h"

#include "tarn/exception.h"

namespace {

/// -0 and NaN are not negative.
void RequireNotNegative(double clearance) {
    if (clearance < 0.0) throw tarn::InvalidArgumentException("Parameter can't be negative", "clearance");
}

}  // namespace

void ProximityConfiguration::ConfigCouple(tarn::ICollisionBody* body1,
                                          tarn::ICollisionBody* body2,
                                          const tarn::ProximitySetting& setting) {
    tarn::details::RequireNotNull(body1);
    tarn::details::RequireNotNull(body2);
    RequireNotNegative(setting.clearance);
    BasicConfiguration::ConfigCouple(body1, body2, setting);
}

tarn::ProximitySetting ProximityConfiguration::CoupleIsEnable(tarn::ICollisionBody* body1,
                                                              tarn::ICollisionBody* body2) const {
    const ProximityKeyBodyPair* couple = FindCouple(body1, body2);
    if (!couple) return {false, 0.0};
    RequireNotNegative(couple->Clearance());
    return {true, couple->Clearance()};
}
