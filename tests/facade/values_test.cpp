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
using test::kDisposedError;
using test::NullError;
using test::Part;
using Vertex = std::array<double, 3>;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(Triangle, CopiesItsVerticesInAndOut) {
    const std::vector<double> v1{4, 5, 6, 99};
    const Triangle triangle({1, 2, 3}, v1, Vertex{7, 8, 9});
    EXPECT_EQ(triangle.get_V0(), (Vertex{1, 2, 3}));
    EXPECT_EQ(triangle.get_V1(), (Vertex{4, 5, 6}));
    EXPECT_EQ(triangle.get_V2(), (Vertex{7, 8, 9}));
    auto copy = triangle.get_V1();
    copy[0] = -1;
    EXPECT_EQ(triangle.get_V1(), (Vertex{4, 5, 6}));
    const Triangle native(tarn::TriangleData{1, 2, 3, 4, 5, 6, 7, 8, 9});
    EXPECT_EQ(native.get_V0(), triangle.get_V0());
    EXPECT_EQ(native.get_V1(), triangle.get_V1());
    EXPECT_EQ(native.get_V2(), triangle.get_V2());
    EXPECT_THROW(Triangle({1, 2, 3}, {1, 2}, {1, 2, 3}), IndexOutOfRangeException);
    EXPECT_THROW(Triangle({1, 2, 3}, {1, 2, 3}, {}), IndexOutOfRangeException);
    EXPECT_THROW(Triangle({1, 2, 3}, {1, 2, 3}, nullptr), NullReferenceException);
    EXPECT_THROW(Triangle({1}, nullptr, nullptr), IndexOutOfRangeException) << "the first vertex comes first";
}

TEST(DistanceSegment, MeasuresOnlyWhatTheEngineHandsOver) {
    EXPECT_EQ(DistanceSegment(tarn::SegmentData{0, 0, 0, 3, 4, 0}).get_Length(), 5.0);
    EXPECT_EQ(DistanceSegment(tarn::SegmentData{1, 1, 1, 1, 1, 3}).get_Length(), 2.0);
    const DistanceSegment taken(1, 2, 3, 4, 5, 6, -7);
    EXPECT_EQ(taken.get_P1X(), 1);
    EXPECT_EQ(taken.get_P1Y(), 2);
    EXPECT_EQ(taken.get_P1Z(), 3);
    EXPECT_EQ(taken.get_P2X(), 4);
    EXPECT_EQ(taken.get_P2Y(), 5);
    EXPECT_EQ(taken.get_P2Z(), 6);
    EXPECT_EQ(taken.get_Length(), -7);
    EXPECT_EQ(DistanceSegment().get_Length(), 0.0);
}

TEST(ProximitySetting, TakesClearancesThatAreNotNegative) {
    EXPECT_FALSE(ProximitySetting().get_Enable());
    EXPECT_EQ(ProximitySetting().get_Clearance(), 0.0);
    EXPECT_TRUE(ProximitySetting(2.5).get_Enable());
    EXPECT_EQ(ProximitySetting(2.5).get_Clearance(), 2.5);
    const std::string negative = "ArgumentOutOfRangeException: Value can not be negative (parameter '";
    EXPECT_EQ(ErrorOf([] { ProximitySetting(true, -0.001); }), negative + "clearance')");
    EXPECT_EQ(ErrorOf([] { ProximitySetting(false, -1.0); }), negative + "clearance')");
    EXPECT_EQ(ErrorOf([] { ProximitySetting(-1.0); }), negative + "clearance')");
    EXPECT_EQ(ErrorOf([] { ProximitySetting(tarn::ProximitySetting{true, -1.0}); }), negative + "setting')");
    EXPECT_TRUE(std::signbit(ProximitySetting(true, -0.0).get_Clearance()));
    EXPECT_TRUE(std::isnan(ProximitySetting(true, kNaN).get_Clearance()));
    EXPECT_TRUE(std::isnan(ProximitySetting(tarn::ProximitySetting{true, kNaN}).get_Clearance()));
    const tarn::ProximitySetting native = ProximitySetting(true, 1.5).ToNative();
    EXPECT_TRUE(native.enable);
    EXPECT_EQ(native.clearance, 1.5);
}

TEST(ProximitySetting, ComparesValuesOnRequestAndIdentityOtherwise) {
    const auto setting = std::make_shared<ProximitySetting>(true, 1.0);
    const auto not_a_number = std::make_shared<ProximitySetting>(true, kNaN);
    const auto clone = setting->Clone();
    EXPECT_NE(clone, setting);
    EXPECT_TRUE(setting->Equals(clone));
    EXPECT_FALSE(setting->Equals(std::make_shared<ProximitySetting>(false, 1.0)));
    EXPECT_FALSE(setting->Equals(std::make_shared<ProximitySetting>(true, 1.5)));
    EXPECT_FALSE(not_a_number->Equals(not_a_number));
    EXPECT_TRUE(ProximitySetting(true, 0.0).Equals(std::make_shared<ProximitySetting>(true, -0.0)));
    EXPECT_FALSE(setting->Equals(nullptr));
    EXPECT_FALSE(setting->Equals(std::shared_ptr<ProximitySetting>()));
    const Object& as_object = *setting;
    EXPECT_FALSE(as_object.Equals(clone.get()));
    EXPECT_NE(setting->GetHashCode(), clone->GetHashCode());
}

TEST(Couples, TestTheirArgumentsInOrder) {
    const auto part = std::make_shared<Part>();
    const auto setting = std::make_shared<ProximitySetting>(1.0);
    const auto couple = [](auto... arguments) { return [=] { CollisionCouple(arguments...); }; };
    constexpr auto kTouch = CheckCoupleConfiguration::AllowTouch;
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
    CollisionCouple collision(first, second, CheckCoupleConfiguration::AllowTouch, 0.25);
    EXPECT_EQ(collision.get_Element1(), first);
    EXPECT_EQ(collision.get_Element2(), second);
    EXPECT_EQ(collision.get_CheckConfiguration(), CheckCoupleConfiguration::AllowTouch);
    EXPECT_EQ(collision.get_Clearance(), 0.25);
    collision.Dispose();
    collision.Dispose();
    EXPECT_EQ(ErrorOf([&] { (void)collision.get_Element1(); }), kDisposedError);
    EXPECT_EQ(ErrorOf([&] { (void)collision.get_Element2(); }), kDisposedError);
    EXPECT_EQ(ErrorOf([&] { (void)collision.get_CheckConfiguration(); }), kDisposedError);
    EXPECT_EQ(ErrorOf([&] { (void)collision.get_Clearance(); }), kDisposedError);

    const auto setting = std::make_shared<ProximitySetting>(1.0);
    ProximityCouple proximity(first, second, setting);
    EXPECT_EQ(proximity.get_Element1(), first);
    EXPECT_EQ(proximity.get_Element2(), second);
    EXPECT_NE(proximity.get_Setting(), proximity.get_Setting());
    EXPECT_TRUE(proximity.get_Setting()->Equals(setting));
    proximity.Dispose();
    EXPECT_EQ(ErrorOf([&] { (void)proximity.get_Element1(); }), kDisposedError);
    EXPECT_EQ(ErrorOf([&] { (void)proximity.get_Element2(); }), kDisposedError);
    EXPECT_EQ(ErrorOf([&] { (void)proximity.get_Setting(); }), kDisposedError);

    const auto segment = std::make_shared<DistanceSegment>(1, 2, 3, 4, 5, 6, 7);
    EXPECT_TRUE(InterferenceCouple(first, second, 0.5).get_Intersecting());
    EXPECT_EQ(InterferenceCouple(first, second, 0.5).get_DistanceSegment()->get_Length(), 0.0);
    EXPECT_FALSE(InterferenceCouple(first, second, 0.5, segment).get_Intersecting());
    InterferenceCouple interference(first, second, true, 0.5, segment);
    EXPECT_TRUE(interference.get_Intersecting());
    EXPECT_EQ(interference.get_Element1(), first);
    EXPECT_EQ(interference.get_Element2(), second);
    EXPECT_EQ(interference.get_DistanceSegment(), segment);
    EXPECT_EQ(interference.get_Clearance(), 0.5);
    interference.Dispose();
    EXPECT_EQ(ErrorOf([&] { (void)interference.get_Element1(); }), kDisposedError);
    EXPECT_EQ(ErrorOf([&] { (void)interference.get_Element2(); }), kDisposedError);
    EXPECT_EQ(ErrorOf([&] { (void)interference.get_DistanceSegment(); }), kDisposedError);
    EXPECT_EQ(ErrorOf([&] { (void)interference.get_Clearance(); }), kDisposedError);
    EXPECT_EQ(ErrorOf([&] { (void)interference.get_Intersecting(); }), kDisposedError);
}

TEST(NearElementsCouple, KeepsAnsweringButForItsSegment) {
    const auto part = std::make_shared<Part>();
    const auto couple =
        std::make_shared<CollisionCouple>(part, part, CheckCoupleConfiguration::Intersection, 0.0);
    const auto segment = std::make_shared<DistanceSegment>(1, 2, 3, 4, 5, 6, 7);
    NearElementsCouple near(couple, segment);
    EXPECT_EQ(near.get_DistanceSegment(), segment);
    near.Dispose();
    EXPECT_EQ(ErrorOf([&] { (void)near.get_DistanceSegment(); }), kDisposedError);
    EXPECT_EQ(near.get_CollisionCouple(), couple);
    EXPECT_EQ((std::array{near.get_P1X(), near.get_P1Y(), near.get_P1Z(), near.get_P2X(), near.get_P2Y(),
                          near.get_P2Z(), near.get_Length()}),
              (std::array{1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0}));
}

}  // namespace
}  // namespace Ostrel::Quarrix::Collisions
