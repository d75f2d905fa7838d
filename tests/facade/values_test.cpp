#include "facade/part.h"
#include "ostrel/quarrix/collision_couple.h"
#include "ostrel/quarrix/interference_couple.h"
#include "ostrel/quarrix/near_elements_couple.h"
#include "ostrel/quarrix/proximity_couple.h"
#include "ostrel/quarrix/triangle.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>

namespace Ostrel::Quarrix::Collisions {
namespace {

using test::ErrorOf;
using test::ExpectDisposed;
using test::NullError;
using test::Part;
using Vertex = std::array<double, 3>;

constexpr auto kTouch = CheckCoupleConfiguration::AllowTouch;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(Triangle, CopiesItsVerticesInAndOut) {
    const std::vector<double> v1{4, 5, 6, 99};
    const Triangle own({1, 2, 3}, v1, Vertex{7, 8, 9});
    own.get_V1()[0] = -1;
    const Triangle native(tarn::TriangleData{1, 2, 3, 4, 5, 6, 7, 8, 9});
    for (const Triangle* each : {&own, &native}) {
        EXPECT_EQ((std::array{each->get_V0(), each->get_V1(), each->get_V2()}),
                  (std::array{Vertex{1, 2, 3}, Vertex{4, 5, 6}, Vertex{7, 8, 9}}));
    }
    EXPECT_THROW(Triangle({1, 2, 3}, {1, 2, 3}, {}), IndexOutOfRangeException);
    EXPECT_THROW(Triangle({1, 2, 3}, {1, 2, 3}, nullptr), NullReferenceException);
    EXPECT_THROW(Triangle({1}, nullptr, nullptr), IndexOutOfRangeException) << "the first vertex comes first";
}

TEST(DistanceSegment, MeasuresOnlyWhatTheEngineHandsOver) {
    EXPECT_EQ(DistanceSegment(tarn::SegmentData{0, 0, 0, 3, 4, 0}).get_Length(), 5.0);
    EXPECT_EQ(DistanceSegment(tarn::SegmentData{1, 1, 1, 1, 1, 3}).get_Length(), 2.0);
    EXPECT_EQ(DistanceSegment(1, 2, 3, 4, 5, 6, -7).get_Length(), -7);
    EXPECT_EQ(DistanceSegment().get_Length(), 0.0);
}

TEST(ProximitySetting, TakesClearancesThatAreNotNegative) {
    EXPECT_TRUE(ProximitySetting(2.5).get_Enable());
    const std::string negative = "ArgumentOutOfRangeException: Value can not be negative (parameter '";
    EXPECT_EQ(ErrorOf([] { ProximitySetting(true, -0.001); }), negative + "clearance')");
    EXPECT_EQ(ErrorOf([] { ProximitySetting(-1.0); }), negative + "clearance')");
    EXPECT_EQ(ErrorOf([] { ProximitySetting(tarn::ProximitySetting{true, -1.0}); }), negative + "setting')");
    EXPECT_TRUE(std::signbit(ProximitySetting(true, -0.0).get_Clearance()));
    EXPECT_TRUE(std::isnan(ProximitySetting(true, kNaN).get_Clearance()));
    EXPECT_TRUE(std::isnan(ProximitySetting(tarn::ProximitySetting{true, kNaN}).get_Clearance()));
}

TEST(ProximitySetting, ComparesValuesOnRequestAndIdentityOtherwise) {
    const auto setting = std::make_shared<ProximitySetting>(true, 1.0);
    const auto not_a_number = std::make_shared<ProximitySetting>(true, kNaN);
    const auto clone = setting->Clone();
    EXPECT_TRUE(setting->Equals(clone));
    EXPECT_FALSE(setting->Equals(std::make_shared<ProximitySetting>(false, 1.0)));
    EXPECT_FALSE(setting->Equals(std::make_shared<ProximitySetting>(true, 1.5)));
    EXPECT_FALSE(not_a_number->Equals(not_a_number));
    EXPECT_TRUE(ProximitySetting(true, 0.0).Equals(std::make_shared<ProximitySetting>(true, -0.0)));
    EXPECT_FALSE(setting->Equals(nullptr));
    EXPECT_FALSE(setting->Equals(std::shared_ptr<ProximitySetting>()));
    EXPECT_FALSE(static_cast<const Object&>(*setting).Equals(clone.get()));
    EXPECT_NE(setting->GetHashCode(), clone->GetHashCode());
}

TEST(Couples, TestTheirArgumentsInOrder) {
    const auto part = std::make_shared<Part>();
    const auto couple = [](auto... arguments) { return [=] { CollisionCouple(arguments...); }; };
    EXPECT_EQ(ErrorOf(couple(nullptr, nullptr, kTouch, 1.0)), NullError("first"));
    EXPECT_EQ(ErrorOf(couple(part, nullptr, kTouch, 1.0)), NullError("second"));
    EXPECT_EQ(ErrorOf(couple(part, part, kTouch, -1.0)), "");
    const auto proximity = [](auto... arguments) { return [=] { ProximityCouple(arguments...); }; };
    EXPECT_EQ(ErrorOf(proximity(nullptr, nullptr, nullptr)), NullError("first"));
    EXPECT_EQ(ErrorOf(proximity(part, nullptr, nullptr)), NullError("second"));
    EXPECT_EQ(ErrorOf(proximity(part, part, nullptr)), NullError("setting"));
}

TEST(Couples, AnswerUntilTheyAreDisposed) {
    const auto first = std::make_shared<Part>();
    const auto second = std::make_shared<Part>();
    const auto names_both = [&](const auto& couple) {
        return couple.get_Element1() == first && couple.get_Element2() == second;
    };
    CollisionCouple collision(first, second, kTouch, 0.25);
    EXPECT_TRUE(names_both(collision));
    EXPECT_EQ(std::pair(collision.get_CheckConfiguration(), collision.get_Clearance()),
              std::pair(kTouch, 0.25));
    collision.Dispose();
    ExpectDisposed([&] { (void)collision.get_Element1(); }, [&] { (void)collision.get_Element2(); },
                   [&] { (void)collision.get_CheckConfiguration(); },
                   [&] { (void)collision.get_Clearance(); });

    const auto setting = std::make_shared<ProximitySetting>(1.0);
    ProximityCouple proximity(first, second, setting);
    EXPECT_TRUE(names_both(proximity));
    EXPECT_NE(proximity.get_Setting(), proximity.get_Setting());
    EXPECT_TRUE(proximity.get_Setting()->Equals(setting));
    proximity.Dispose();
    ExpectDisposed([&] { (void)proximity.get_Element1(); }, [&] { (void)proximity.get_Element2(); },
                   [&] { (void)proximity.get_Setting(); });

    const auto segment = std::make_shared<DistanceSegment>(1, 2, 3, 4, 5, 6, 7);
    EXPECT_TRUE(InterferenceCouple(first, second, 0.5).get_Intersecting());
    EXPECT_EQ(InterferenceCouple(first, second, 0.5).get_DistanceSegment()->get_Length(), 0.0);
    EXPECT_FALSE(InterferenceCouple(first, second, 0.5, segment).get_Intersecting());
    InterferenceCouple near(first, second, true, 0.5, segment);
    EXPECT_TRUE(names_both(near));
    EXPECT_EQ(std::pair(near.get_DistanceSegment(), near.get_Clearance()), std::pair(segment, 0.5));
    near.Dispose();
    ExpectDisposed([&] { (void)near.get_Element1(); }, [&] { (void)near.get_Element2(); },
                   [&] { (void)near.get_DistanceSegment(); }, [&] { (void)near.get_Clearance(); },
                   [&] { (void)near.get_Intersecting(); });
}

TEST(NearElementsCouple, KeepsAnsweringButForItsSegment) {
    const auto couple =
        std::make_shared<CollisionCouple>(std::make_shared<Part>(), std::make_shared<Part>(), kTouch, 0.0);
    NearElementsCouple near(couple, std::make_shared<DistanceSegment>(1, 2, 3, 4, 5, 6, 7));
    near.Dispose();
    ExpectDisposed([&] { (void)near.get_DistanceSegment(); });
    EXPECT_EQ(near.get_CollisionCouple(), couple);
    EXPECT_EQ((std::array{near.get_P1X(), near.get_P1Y(), near.get_P1Z(), near.get_P2X(), near.get_P2Y(),
                          near.get_P2Z(), near.get_Length()}),
              (std::array{1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0}));
    const NearElementsCouple empty(nullptr, nullptr);
    EXPECT_EQ(empty.get_DistanceSegment(), nullptr);
    EXPECT_THROW((void)empty.get_Length(), NullReferenceException);
}

}  // namespace
}  // namespace Ostrel::Quarrix::Collisions
