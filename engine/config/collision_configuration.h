#pragma once

#include "config/basic_configuration.h"

/// The library's only configuration of interference checks.
class CollisionConfiguration final : public tarn::details::BasicConfiguration<tarn::details::CollisionKind> {
public:
    void EnableAllCouples() override { ReplaceByAllCouples(true); }
    bool CoupleIsEnable(tarn::ICollisionBody* body1, tarn::ICollisionBody* body2) const override {
        return FindCouple(body1, body2) != nullptr;
    }
};
