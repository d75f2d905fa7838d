#pragma once

#include "config/basic_configuration.h"

/// The library's only configuration of clearance checks.
class ProximityConfiguration final : public tarn::details::BasicConfiguration<tarn::details::ProximityKind> {
public:
    void ConfigCouple(tarn::ICollisionBody* body1,
                      tarn::ICollisionBody* body2,
                      const tarn::ProximitySetting& setting) override;
    tarn::ProximitySetting CoupleIsEnable(tarn::ICollisionBody* body1,
                                          tarn::ICollisionBody* body2) const override;
};
