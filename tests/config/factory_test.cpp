#include "tarn/factory.h"

#include "config/foreign_classes.h"
#include "support/meshes.h"

#include "tarn/exception.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace tarn {
namespace {

TEST(Factory, MakesElementsFromCopiesOfTheValidTriangles) {
    std::string name = "wedge";
    test::Mesh mesh = test::BoxMesh(0, 0, 0, 1, 1, 1);
    mesh.insert(mesh.begin() + 3, TriangleData{0, 0, 0, 3e-4, 0, 0, 0, 1, 0});
    const std::unique_ptr<ICollisionElement> raw(make_element(name, mesh));
    const std::unique_ptr<ICollisionElement> unique = make_unique_element(name, mesh);
    const std::shared_ptr<ICollisionElement> shared = make_shared_element(name, mesh);
    const double second_x = mesh[1].v1x;
    mesh.clear();
    name = "changed";
    for (const ICollisionElement* element : {raw.get(), unique.get(), shared.get()}) {
        EXPECT_EQ(element->GetName(), "wedge");
        ASSERT_EQ(element->GetTrianglesCount(), 12U) << "the one with an edge of 3e-4 is dropped";
        EXPECT_EQ(element->GetTriangles()[1].v1x, second_x);
    }
}

TEST(Factory, MakesBodiesWithTheirIdentifierAsOwnerWhereNoneIsGiven) {
    const std::unique_ptr<ICollisionBody> alone(make_body(0xfffffff0U, "alone"));
    EXPECT_EQ(alone->GetId(), 0xfffffff0U);
    EXPECT_EQ(alone->GetOwner(), 0xfffffff0U) << "not sign-extended";
    const std::unique_ptr<ICollisionBody> raw(make_body(7, 0x123456789abcdef0U, "part"));
    const std::unique_ptr<ICollisionBody> unique = make_unique_body(7, 0x123456789abcdef0U, "part");
    const std::shared_ptr<ICollisionBody> shared = make_shared_body(7, 0x123456789abcdef0U, "part");
    for (const ICollisionBody* body : {raw.get(), unique.get(), shared.get()}) {
        EXPECT_EQ(body->GetId(), 7U);
        EXPECT_EQ(body->GetOwner(), 0x123456789abcdef0U);
        EXPECT_EQ(body->GetName(), "part");
        EXPECT_TRUE(body->GetElements().empty());
        EXPECT_EQ(body->GetStatistics().leaf_number, 0U) << "nothing is built";
    }
}

TEST(Factory, MakesABodyOverAnElementUnderTheElementsName) {
    const auto element = make_shared_element("ball", test::BallMesh(1, 4));
    const auto body = make_shared_body(element.get(), 5, 50);
    EXPECT_EQ(body->GetId(), 5U);
    EXPECT_EQ(body->GetOwner(), 50U);
    EXPECT_EQ(body->GetName(), "ball");
    EXPECT_EQ(body->GetElements(), std::vector<ICollisionElement*>{element.get()});
    EXPECT_EQ(element.use_count(), 1) << "the element is not owned";
    body->SetLeafNumber(5);
    EXPECT_EQ(body->GetStatistics().triangle_count, element->GetTrianglesCount());

    test::ForeignElement foreign;
    EXPECT_THROW((void)make_shared_body(&foreign, 5, 50), BadCastException);
    EXPECT_THROW((void)make_shared_body(nullptr, 5, 50), NullPointerException);
}

TEST(Factory, MakesEmptyAndIndependentConfigurations) {
    const std::unique_ptr<ICollisionConfiguration> raw(make_configuration());
    const auto unique = make_unique_configuration();
    const auto shared = make_shared_configuration();
    const auto first = make_shared_body(1, 1, "first");
    const auto second = make_shared_body(2, 2, "second");
    raw->AddElement(first.get());
    raw->AddElement(second.get(), true);
    EXPECT_EQ(raw->RetrieveCouplesCount(), 1U);
    for (const ICollisionConfiguration* configuration : {unique.get(), shared.get()}) {
        EXPECT_TRUE(configuration->RetrieveElements().empty());
        EXPECT_TRUE(configuration->RetrieveOwners().empty());
        EXPECT_EQ(configuration->RetrieveCouplesCount(), 0U);
    }
}

}  // namespace
}  // namespace tarn
