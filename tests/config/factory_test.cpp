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

TEST(Factory, MakesBodiesWithTheirIdentifierAsOwnerAndTheirElementsNameWhereNoneIsGiven) {
    const std::uint64_t owner = 0x123456789abcdef0U;
    const auto element = make_shared_element("part", {});
    const std::unique_ptr<ICollisionBody> alone(make_body(0xfffffff0U, "part"));
    EXPECT_EQ(alone->GetOwner(), 0xfffffff0U) << "not sign-extended";
    alone->SetOwner(owner);
    const std::unique_ptr<ICollisionBody> raw(make_body(0xfffffff0U, owner, "part"));
    const std::unique_ptr<ICollisionBody> unique = make_unique_body(0xfffffff0U, owner, "part");
    const std::shared_ptr<ICollisionBody> shared = make_shared_body(0xfffffff0U, owner, "part");
    const std::shared_ptr<ICollisionBody> over = make_shared_body(element.get(), 0xfffffff0U, owner);
    for (const ICollisionBody* body : {alone.get(), raw.get(), unique.get(), shared.get(), over.get()}) {
        EXPECT_EQ(body->GetId(), 0xfffffff0U);
        EXPECT_EQ(body->GetOwner(), owner);
        EXPECT_EQ(body->GetName(), "part");
        EXPECT_EQ(body->GetElements().size(), body == over.get() ? 1U : 0U);
    }
    EXPECT_EQ(over->GetElements()[0], element.get());
    test::ForeignElement foreign;
    EXPECT_THROW((void)make_shared_body(&foreign, 5, 50), BadCastException);
    EXPECT_THROW((void)make_shared_body(nullptr, 5, 50), NullPointerException);
}

}  // namespace
}  // namespace tarn
