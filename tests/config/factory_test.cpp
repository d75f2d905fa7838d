#include "tarn/factory.h"

#include "support/foreign_classes.h"
#include "support/meshes.h"

#include "tarn/exception.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace tarn {
namespace {

TEST(Factory, MakesElementsFromCopies) {
    test::Mesh mesh = test::BoxMesh(0, 0, 0, 1, 1, 1);
    const std::unique_ptr<ICollisionElement> raw(make_element("wedge", mesh));
    const std::unique_ptr<ICollisionElement> unique = make_unique_element("wedge", mesh);
    const std::shared_ptr<ICollisionElement> shared = make_shared_element("wedge", mesh);
    const double second_x = mesh[1].v1x;
    mesh.clear();
    for (const ICollisionElement* element : {raw.get(), unique.get(), shared.get()}) {
        EXPECT_EQ(element->GetName(), "wedge");
        EXPECT_EQ(element->GetTriangles().at(1).v1x, second_x);
    }
}

TEST(Factory, MakesBodiesWithTheirIdentifierAsOwnerWhereNoneIsGiven) {
    const std::unique_ptr<ICollisionBody> alone(make_body(0xfffffff0U, "part"));
    EXPECT_EQ(alone->GetOwner(), 0xfffffff0U) << "not sign-extended";
    alone->SetOwner(0x123456789abcdef0U);
    const std::unique_ptr<ICollisionBody> raw(make_body(0xfffffff0U, 0x123456789abcdef0U, "part"));
    const std::unique_ptr<ICollisionBody> unique = make_unique_body(0xfffffff0U, 0x123456789abcdef0U, "part");
    const std::shared_ptr<ICollisionBody> shared = make_shared_body(0xfffffff0U, 0x123456789abcdef0U, "part");
    for (const ICollisionBody* body : {alone.get(), raw.get(), unique.get(), shared.get()}) {
        EXPECT_EQ(body->GetId(), 0xfffffff0U);
        EXPECT_EQ(body->GetOwner(), 0x123456789abcdef0U);
        EXPECT_EQ(body->GetName(), "part");
    }
}

TEST(Factory, MakesABodyOverAnElementUnderTheElementsName) {
    const auto element = make_shared_element("ball", test::BallMesh(1, 4));
    const auto body = make_shared_body(element.get(), 5, 50);
    EXPECT_EQ(body->GetId(), 5U);
    EXPECT_EQ(body->GetOwner(), 50U);
    EXPECT_EQ(body->GetName(), "ball");
    EXPECT_EQ(body->GetElements(), std::vector<ICollisionElement*>{element.get()});
    test::ForeignElement foreign;
    EXPECT_THROW((void)make_shared_body(&foreign, 5, 50), BadCastException);
    EXPECT_THROW((void)make_shared_body(nullptr, 5, 50), NullPointerException);
}

TEST(Factory, MakesIndependentConfigurations) {
    const auto body = make_shared_body(1, 1, "body");
    const std::unique_ptr<ICollisionConfiguration> raw(make_configuration());
    raw->AddElement(body.get());
    EXPECT_TRUE(make_unique_configuration()->RetrieveElements().empty());
    EXPECT_TRUE(make_shared_configuration()->RetrieveElements().empty());
    const std::unique_ptr<IProximityConfiguration> proximity(make_proximity_configuration());
    proximity->AddElement(body.get());
    EXPECT_TRUE(make_unique_proximity_configuration()->RetrieveElements().empty());
    EXPECT_TRUE(make_shared_proximity_configuration()->RetrieveElements().empty());
}

}  // namespace
}  // namespace tarn
