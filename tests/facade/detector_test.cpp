#include "ostrel/quarrix/collisions.h"
#include "part.h"
#include "support/meshes.h"
#include "tools/temporary_folder.h"

#include "tarn/exception.h"
#include "tarn/factory.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <locale>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace Ostrel::Quarrix::Collisions::test {
namespace {

constexpr auto kIntersection = CheckCoupleConfiguration::Intersection;
constexpr auto kAll = CheckResultType::AllInterferencesWithTriangles;
constexpr auto kNoCheckType = static_cast<CheckResultType>(4);

std::shared_ptr<Part> Box(const std::string& name, double x, double y = 0.0, double z = 0.0) {
    auto box = std::make_shared<Part>(name, tarn::test::BoxMesh(0, y, z, 10, y + 10, z + 10));
    box->MoveToX(x);
    return box;
}

std::shared_ptr<ProximitySetting> Within(double clearance) {
    return std::make_shared<ProximitySetting>(clearance);
}

std::string ContentOf(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

const std::string kIsBlank = "ArgumentException: Parameter can't be empty (parameter 'filePath')";
const std::string kNullReference = "NullReferenceException";

class Detectors : public RegistryTest<> {
protected:
    std::string Path(const std::string& name) const { return folder_ / name; }

    CollisionFactory factory_;

private:
    tarn::program::TemporaryFolder folder_;
};

/// What the detectors of the factory, of both kinds, say to arguments and after disposal.
template <typename Detector, typename Configuration>
void TestArguments(const std::shared_ptr<Detector>& detector,
                   const std::shared_ptr<Configuration>& configuration) {
    using D = Detector;
    const std::shared_ptr<Configuration> none;
    std::ostringstream stream;
    std::ostream* const no_writer = nullptr;
    const Calls<D> calls{{[&](D& d) { d.Dump(none, no_writer); }, NullError("writer")},
                         {[&](D& d) { d.Dump(none, &stream); }, NullError("configuration")},
                         {[&](D& d) { d.Dump(none, Text(nullptr)); }, NullError("filePath")},
                         {[&](D& d) { d.Dump(none, "  "); }, NullError("configuration")},
                         {[&](D& d) { d.Dump(configuration, "   "); }, kIsBlank},
                         {[&](D& d) { d.Store(none, nullptr); }, NullError("filePath")},
                         {[&](D& d) { d.Store(none, ""); }, NullError("configuration")},
                         {[&](D& d) { d.Store(configuration, ""); }, kIsBlank},
                         {[](D& d) { d.Retrieve(nullptr); }, NullError("filePath")},
                         {[](D& d) { d.Retrieve("\t\r\n\xE3\x80\x80 \xC2\xA0"); }, kIsBlank},
                         {[&](D& d) { d.Check(configuration, kNoCheckType); }, "Exception"},
                         {[&](D& d) { d.Check(none, kNoCheckType); }, "Exception"},
                         {[&](D& d) { d.Check(none, kAll); }, kNullReference},
                         {[&](D& d) { d.Check(none); }, kNullReference}};
    ExpectErrors(*detector, calls);
    EXPECT_THROW(detector->Store(configuration, "/nowhere/scene.xml"), tarn::RuntimeException);
    EXPECT_THROW(detector->Dump(configuration, "/nowhere/dump.stl"), tarn::RuntimeException);
    EXPECT_THROW(detector->Retrieve("/nowhere/\xE3\x80\x81.xml"), tarn::RuntimeException) << "not a blank";
    const auto gone = configuration->Clone();
    gone->Dispose();
    ExpectDisposed([&] { detector->Check(gone); }, [&] { detector->Dump(gone, &stream); });
    detector->Dispose();
    detector->Dispose();
    ExpectAllDisposed(*detector, calls);
}

TEST_F(Detectors, OfTheFactoryTestArgumentsInOrder) {
    TestArguments(factory_.MakeProximityDetector(), factory_.MakeProximityConfiguration());
    const auto detector = factory_.MakeCollisionDetector();
    TestArguments(detector, factory_.MakeCollisionConfiguration());
    EXPECT_TRUE(detector->CreateNewConfiguration()) << "works after disposal";
}

TEST_F(Detectors, ThePublicOneLooksAtTheConfigurationFirst) {
    CollisionDetector detector(12.5);
    const auto good = detector.CreateNewConfiguration();
    const auto gone = detector.CreateNewConfiguration();
    gone->Dispose();
    const std::shared_ptr<ICollisionConfiguration> none;
    std::ostream* const no_writer = nullptr;
    const std::string missing = "NotImplementedException";
    using D = CollisionDetector;
    const Calls<D> calls{{[&](D& d) { d.Check(none, kNoCheckType); }, kNullReference},
                         {[&](D& d) { d.Check(none); }, kNullReference},
                         {[&](D& d) { d.Dump(none, no_writer); }, kNullReference},
                         {[&](D& d) { d.Dump(none, Text(nullptr), true); }, kNullReference},
                         {[&](D& d) { d.Store(none, nullptr); }, kNullReference},
                         {[&](D& d) { d.Store(gone, nullptr); }, kDisposedError},
                         {[&](D& d) { d.Store(good, nullptr); }, NullError("filePath")},
                         {[&](D& d) { d.Dump(good, no_writer, false); }, NullError("writer")},
                         {[&](D& d) { d.Dump(good, "   ", true); }, kIsBlank},
                         {[&](D& d) { d.Retrieve(nullptr); }, NullError("filePath")},
                         {[&](D& d) { d.DumpAllStl(none, nullptr); }, missing},
                         {[&](D& d) { d.DumpPosition(none, nullptr); }, missing},
                         {[](D& d) { d.SetGlobalClearance(1.0); }, missing},
                         {[](D& d) { EXPECT_EQ(d.get_ConcurrencyMode(), ConcurrencyMode::Single); }, ""},
                         {[](D& d) { d.set_ConcurrencyMode(ConcurrencyMode::Single); }, ""},
                         {[](D& d) { d.CreateNewConfiguration(); }, ""}};
    ExpectErrors(detector, calls);
    detector.Dispose();
    ExpectAllDisposed(detector, calls);
    CollisionDetector::ClearAll();
}

TEST_F(Detectors, CollisionResultsNameTheCallersElements) {
    const auto a = Box("a", 0);
    const auto b = Box("b", 8, 3, 2);
    const auto c = Box("c", 100);
    const auto d = Box("d", 107, 1, 4);
    const auto configuration = factory_.MakeCollisionConfiguration();
    configuration->AddElements({a, b, c, d}, kIntersection, 0.0);
    const auto detector = factory_.MakeCollisionDetector();

    using Couple = std::set<std::shared_ptr<ICollisionConfigurationElement>>;
    const std::set<Couple> expected{{a, b}, {c, d}};
    const auto all = detector->Check(configuration, kAll);
    std::set<Couple> found;
    for (const auto& couple : all->get_CollidingElementCouples()) {
        found.insert({couple->get_Element1(), couple->get_Element2()});
        EXPECT_EQ(couple->get_CheckConfiguration(), kIntersection);
        EXPECT_EQ(couple->get_Clearance(), 0.0);
    }
    EXPECT_EQ(found, expected);
    EXPECT_TRUE(all->get_Result());
    EXPECT_EQ(all->get_InterferenceType(), InterferenceResultType::Intersect);
    EXPECT_TRUE(all->get_AlmostCollidingElementsCouples().empty());
    EXPECT_EQ(all->get_IntersectingTriangles().size(), 2U) << "those of the first couple";
    EXPECT_TRUE(detector->Check(configuration));

    const auto size = [&](CheckResultType type) {
        const auto result = detector->Check(configuration, type);
        return std::pair(result->get_CollidingElementCouples().size(),
                         result->get_IntersectingTriangles().size());
    };
    EXPECT_EQ(size(CheckResultType::FirstInterferenceStop), std::pair(1UL, 0UL));
    EXPECT_EQ(size(CheckResultType::FirstInterferenceStopWithTriangles), std::pair(1UL, 2UL));
    EXPECT_EQ(size(CheckResultType::AllInterferences), std::pair(2UL, 0UL));

    // The first triangle is of the first element, the second of the second, both in world coordinates.
    const auto couple = all->get_CollidingElementCouples().front();
    const auto corner = [&](std::size_t i) { return all->get_IntersectingTriangles()[i]->get_V0()[0]; };
    const double first_x = couple->get_Element1()->get_Position()[3];
    const double second_x = couple->get_Element2()->get_Position()[3];
    EXPECT_TRUE(corner(0) == first_x || corner(0) == first_x + 10);
    EXPECT_TRUE(corner(1) == second_x || corner(1) == second_x + 10);

    configuration->Dispose();
    EXPECT_EQ(all->get_CollidingElementCouples().front()->get_Element1()->get_Name().size(), 1U);
    all->Dispose();
    ExpectDisposed([&] { all->get_Result(); }, [&] { all->get_InterferenceType(); },
                   [&] { all->get_CollidingElementCouples(); },
                   [&] { all->get_AlmostCollidingElementsCouples(); },
                   [&] { all->get_IntersectingTriangles(); }, [&] { all->get_CollisionCenter(); });
    EXPECT_TRUE(all->GetIntersectingSubElements(couple).empty());
}

TEST_F(Detectors, ThePublicOneReturnsWholeResultsAndIgnoresItsConcurrencyMode) {
    const auto configuration = std::make_shared<CollisionConfiguration>();
    const auto other = factory_.MakeCollisionConfiguration();
    ASSERT_NE(other, factory_.MakeCollisionConfiguration());
    for (const auto& element : {Box("a", 0), Box("b", 4, 4, 4)}) {
        configuration->AddElement(element, kIntersection, 0.0);
        other->AddElement(element, kIntersection, 0.0);
        EXPECT_EQ(registry_.GetReferenceCount(element), 2);
    }
    CollisionDetector detector;
    for (const auto mode : {ConcurrencyMode::Multiple, ConcurrencyMode::Single}) {
        detector.set_ConcurrencyMode(mode);
        EXPECT_EQ(detector.get_ConcurrencyMode(), mode);
        EXPECT_EQ(detector.Check(configuration)->get_CollidingElementCouples().size(), 1U);
        EXPECT_TRUE(detector.Check(configuration)->get_IntersectingTriangles().empty());
        EXPECT_EQ(detector.Check(other, kAll)->get_IntersectingTriangles().size(), 2U);
    }
    EXPECT_TRUE(factory_.MakeCollisionDetector()->Check(configuration));
}

TEST_F(Detectors, TheCentreIsTheMiddleOfTheFirstCrossing) {
    const auto triangle = [](double x, double z) {
        return std::make_shared<Triangle>(tarn::TriangleData{x, 0, z, x + 3, 0, z, x, 3, z});
    };
    const auto centre = [](std::vector<std::shared_ptr<Triangle>> triangles) {
        return CollisionResult(true, InterferenceResultType::Intersect, std::move(triangles), {})
            .get_CollisionCenter();
    };
    using Point = std::array<double, 3>;
    const auto upright = std::make_shared<Triangle>(tarn::TriangleData{1, 1, -2, 1, 1, 4, 9, 1, 4});
    // Upright stands in y = 1 and meets z = 0 where x is from 1 to 1 + 8 / 3; the flat one has x up to 2 there.
    const Point crossing = centre({triangle(0, 0), upright, triangle(50, 0), triangle(60, 0)});
    EXPECT_DOUBLE_EQ(crossing[0], 1.5);
    EXPECT_DOUBLE_EQ(crossing[1], 1.0);
    EXPECT_DOUBLE_EQ(crossing[2], 0.0);
    EXPECT_EQ(centre({triangle(0, 0), triangle(3, 6)}), (Point{2.5, 1, 3})) << "between the centroids";
    EXPECT_EQ(centre({triangle(5, 5)}), Point{});

    const CollisionResult empty;
    EXPECT_FALSE(empty.get_Result());
    EXPECT_EQ(empty.get_InterferenceType(), InterferenceResultType::None);
    EXPECT_EQ(empty.get_CollisionCenter(), Point{});
    EXPECT_EQ(&empty.get_CollisionCenter(), &empty.get_CollisionCenter());

    const auto nothing = factory_.MakeCollisionDetector()->Check(factory_.MakeCollisionConfiguration(), kAll);
    EXPECT_FALSE(nothing->get_Result());
    EXPECT_EQ(nothing->get_InterferenceType(), InterferenceResultType::Intersect);
    EXPECT_EQ(nothing->get_CollisionCenter(), Point{});
}

TEST_F(Detectors, ProximityResultsTellHowNear) {
    const auto a = Box("a", 0);
    const auto b = Box("b", 12.5, 1, 1);
    const auto c = Box("c", 1, 4, 5);
    const auto configuration = factory_.MakeProximityConfiguration();
    configuration->AddElements({a, b}, Within(3.0));
    const auto detector = factory_.MakeProximityDetector();
    EXPECT_TRUE(detector->Check(configuration));
    const auto near = detector->Check(configuration, kAll);
    ASSERT_EQ(near->get_ElementCouples().size(), 1U);
    const auto couple = near->get_ElementCouples().front();
    EXPECT_EQ(couple->get_Element1(), b) << "the engine's order: what was added last comes first";
    EXPECT_EQ(couple->get_Element2(), a);
    EXPECT_FALSE(couple->get_Intersecting());
    EXPECT_EQ(couple->get_Clearance(), 3.0);
    EXPECT_EQ(couple->get_DistanceSegment()->get_P1X(), 12.5);
    EXPECT_EQ(couple->get_DistanceSegment()->get_P2X(), 10.0);
    EXPECT_NEAR(couple->get_DistanceSegment()->get_Length(), 2.5, 1e-6);
    EXPECT_EQ(near->get_NearestTriangles().size(), 2U);
    EXPECT_TRUE(near->get_Result());

    a->MoveToX(-0.6);
    EXPECT_FALSE(detector->Check(configuration));
    EXPECT_FALSE(detector->Check(configuration, kAll)->get_Result());

    configuration->AddElement(c, Within(0.5));
    const auto crossing = detector->Check(configuration, CheckResultType::AllInterferences);
    ASSERT_EQ(crossing->get_ElementCouples().size(), 1U);
    EXPECT_TRUE(crossing->get_ElementCouples().front()->get_Intersecting());
    EXPECT_EQ(crossing->get_ElementCouples().front()->get_Clearance(), 0.5);
    EXPECT_EQ(crossing->get_ElementCouples().front()->get_DistanceSegment()->get_Length(), 0.0);
    EXPECT_TRUE(crossing->get_NearestTriangles().empty());

    crossing->Dispose();
    ExpectDisposed([&] { crossing->get_Result(); }, [&] { crossing->get_ElementCouples(); },
                   [&] { crossing->get_NearestTriangles(); });
    EXPECT_FALSE(ProximityResult().get_Result());
}

/// Writes numbers with a comma, as in many countries.
struct Comma : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
};

TEST_F(Detectors, DumpsAreTheEnginesWhateverTheLocale) {
    const auto configuration = std::make_shared<CollisionConfiguration>();
    configuration->AddElement(Box("a", 0.5), kIntersection, 0.0);
    const auto clearances = factory_.MakeProximityConfiguration();
    clearances->AddElement(configuration->RetrieveElements()[0], Within(1.0));

    const auto mesh = tarn::make_unique_element("a", tarn::test::BoxMesh(0.5, 0, 0, 10.5, 10, 10));
    const auto body = tarn::make_unique_body(1, 0, "a");
    body->AddElement(mesh.get());
    body->SetLeafNumber(5);
    const auto native = tarn::make_unique_configuration();
    native->AddElement(body.get());
    std::ostringstream expected;
    tarn::make_unique_detector()->Dump(*native, tarn::DumpType::Triangles, expected);

    const std::locale before = std::locale::global(std::locale(std::locale::classic(), new Comma));
    std::ostringstream written;
    CollisionDetector().Dump(configuration, &written, true);
    factory_.MakeProximityDetector()->Dump(clearances, &written);
    CollisionDetector().Dump(configuration, Path("a.stl"));
    factory_.MakeProximityDetector()->Dump(clearances, Path("b.stl"));
    std::locale::global(before);
    EXPECT_EQ(written.str(), expected.str() + expected.str());
    EXPECT_EQ(ContentOf(Path("a.stl")), expected.str());
    EXPECT_EQ(ContentOf(Path("b.stl")), expected.str());
    configuration->Dispose();
    EXPECT_THROW(factory_.MakeCollisionDetector()->Dump(configuration, Path("a.stl")),
                 ObjectDisposedException);
    EXPECT_EQ(ContentOf(Path("a.stl")), expected.str()) << "not lost";
}

TEST_F(Detectors, AStoredSceneComesBackWithOwnElements) {
    const auto owner = std::make_shared<Owner>();
    const auto configuration = std::make_shared<CollisionConfiguration>();
    std::vector<std::shared_ptr<Part>> boxes;
    for (const char* name : {"one", "two", "three"}) {
        boxes.push_back(std::make_shared<Part>(name, tarn::test::BoxMesh(0, 0, 0, 1, 2, 3), owner));
        configuration->AddElement(boxes.back(), kIntersection, 0.0);
    }
    boxes[0]->MoveToX(100);
    configuration->ConfigCouple(boxes[0], boxes[1], CheckCoupleConfiguration::None, 0.0);
    CollisionDetector detector;
    detector.Store(configuration, Path("scene.xml"));
    EXPECT_EQ(ContentOf(Path("scene.xml.stl")).find("solid configuration\n"), 0U);
    factory_.MakeCollisionDetector()->Store(configuration, Path("alone.xml"));
    EXPECT_EQ(ContentOf(Path("alone.xml")), ContentOf(Path("scene.xml")));
    EXPECT_FALSE(std::filesystem::exists(Path("alone.xml.stl")));

    configuration->Dispose();
    const auto back = detector.Retrieve(Path("scene.xml"));
    const auto elements = back->RetrieveElements();
    ASSERT_EQ(elements.size(), 3U);
    std::set<std::shared_ptr<ICollisionElementOwner>> owners;
    for (std::size_t i = 0; i < elements.size(); ++i) {
        EXPECT_EQ(elements[i]->get_Name(), boxes[i]->get_Name());
        EXPECT_EQ(elements[i]->get_Owner()->get_Parent(), nullptr);
        owners.insert(elements[i]->get_Owner());
    }
    EXPECT_EQ(owners.size(), 3U);
    EXPECT_FALSE(back->CoupleIsEnable(elements[0], elements[1]));
    EXPECT_TRUE(back->CoupleIsEnable(elements[0], elements[2]));
    EXPECT_TRUE(back->CoupleIsEnable(elements[1], elements[2]));
    EXPECT_EQ(factory_.MakeCollisionDetector()->Retrieve(Path("scene.xml"))->RetrieveCouplesCount(), 2);
    EXPECT_THROW(factory_.MakeProximityDetector()->Retrieve(Path("scene.xml")), tarn::Exception);
}

TEST_F(Detectors, AStoredProximitySceneKeepsTheSettingsOfItsPairs) {
    const auto configuration = factory_.MakeProximityConfiguration();
    const auto a = Box("a", 0);
    configuration->AddElements({a, Box("b", 1)}, Within(2.5));
    configuration->AddElement(Box("c", 2), Within(0.75));
    configuration->DisableAllChecks();
    configuration->ConfigCouple(a, configuration->RetrieveElements()[1], Within(2.5));
    const auto detector = factory_.MakeProximityDetector();
    detector->Store(configuration, Path("clearances.xml"));
    const auto back = detector->Retrieve(Path("clearances.xml"));
    const auto elements = back->RetrieveElements();
    ASSERT_EQ(elements.size(), 3U);
    EXPECT_TRUE(back->CoupleIsEnable(elements[1], elements[0])->Equals(Within(2.5)));
    EXPECT_EQ(back->RetrieveCouplesCount(), 1);
}

}  // namespace
}  // namespace Ostrel::Quarrix::Collisions::test
