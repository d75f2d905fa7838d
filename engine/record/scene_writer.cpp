#include "record/scene_writer.h"

#include "core/aabb_hierarchy.h"
#include "core/aabb_hierarchy_visitor.h"
#include "core/collision_body.h"
#include "core/stl_dump.h"
#include "record/recorder.h"
#include "record/scene_format.h"
#include "record/scene_numbers.h"
#include "record/scene_printer.h"

#include "tarn/exception.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace tarn::details {

/// Writes the triangles of the leaves that it visits, in element coordinates.
class Recorder::TrianglesXMLfierVisitor final : public AABBHierarchyNodeVisitor {
public:
    /// Into the element that the printer has open.
    explicit TrianglesXMLfierVisitor(ScenePrinter& printer) : printer_(printer) {}

    void Visit(const AABBHierarchyNode* node) override {
        if (!node) return;
        for (const Triangle& triangle : node->LocalTriangles()) Write(triangle);
    }

private:
    void Write(const TriangleData& triangle) {
        const auto coordinates = std::bit_cast<std::array<double, 9>>(triangle);
        printer_.OpenElement(scene::kTriangle);
        for (std::size_t i = 0; i < coordinates.size(); ++i)
            printer_.PushAttribute(scene::kCoordinates[i], NumberText(coordinates[i]).c_str());
        printer_.CloseElement();
    }

    ScenePrinter& printer_;
};

namespace {

[[noreturn]] void Refuse(const ICollisionBody& body, const std::string& fault) {
    throw InvalidArgumentException("Body '" + body.GetName() + "' (id " + std::to_string(body.GetId()) +
                                   ") cannot be stored: " + fault);
}

const AABBHierarchy* HierarchyOf(const ICollisionBody& body) {
    const auto* own = dynamic_cast<const CollisionBody*>(&body);
    return own ? own->Hierarchy() : nullptr;
}

/// XML carries no control characters but these three.
bool IsCarried(char character) {
    const auto byte = static_cast<unsigned char>(character);
    return byte >= 0x20 || character == '\t' || character == '\n' || character == '\r';
}

void RequireStorable(const ICollisionBody& body) {
    if (!std::ranges::all_of(body.GetName(), IsCarried))
        Refuse(body, "its name has control characters that XML does not carry");
    const AABBHierarchy* hierarchy = HierarchyOf(body);
    if (!hierarchy) return;
    for (const AABBHierarchyNode& node : hierarchy->Nodes()) {
        for (const Triangle& triangle : node.LocalTriangles()) {
            const auto coordinates = std::bit_cast<std::array<double, 9>>(triangle);
            if (!std::ranges::all_of(coordinates, [](double x) { return std::isfinite(x); }))
                Refuse(body, "it has a triangle whose coordinates are not finite");
        }
    }
}

void WriteTriangles(ScenePrinter& printer, const ICollisionBody& body) {
    printer.OpenElement(scene::kStl);
    if (!dynamic_cast<const CollisionBody*>(&body)) {
        static_cast<tinyxml2::XMLPrinter&>(printer).PushText("Error while retrieving triangles information");
    } else {
        printer.PushAttribute(scene::kCount, NumberText(body.GetStatistics().triangle_count).c_str());
        Recorder::TrianglesXMLfierVisitor visitor(printer);
        if (const AABBHierarchy* hierarchy = HierarchyOf(body)) VisitAllNodes(*hierarchy, visitor);
    }
    printer.CloseElement();
}

void WriteBody(ScenePrinter& printer, const ICollisionBody& body) {
    const CollisionBodyStatistics statistics = body.GetStatistics();
    printer.OpenElement(scene::kElement);
    printer.PushAttribute(scene::kOwner, NumberText(static_cast<std::int64_t>(body.GetOwner())).c_str());
    printer.PushText(scene::kName, body.GetName());
    printer.PushAttribute(scene::kId, NumberText(body.GetId()).c_str());
    printer.PushAttribute(scene::kLeaves, NumberText(statistics.leaf_number).c_str());
    printer.PushAttribute(scene::kDepth, NumberText(statistics.depth).c_str());
    WriteTriangles(printer, body);
    printer.CloseElement();
}

void WriteOwners(ScenePrinter& printer, std::span<ICollisionBody* const> bodies) {
    std::set<std::uint64_t> owners;
    for (const ICollisionBody* body : bodies) owners.insert(body->GetOwner());
    printer.OpenElement(scene::kOwners);
    for (const std::uint64_t owner : owners) {
        printer.OpenElement(scene::kOwner);
        printer.PushAttribute(scene::kId, NumberText(static_cast<std::int64_t>(owner)).c_str());
        printer.CloseElement();
    }
    printer.CloseElement();
}

/// What is written of a couple beyond its bodies.
void WriteParticulars(ScenePrinter& /*printer*/, const CollisionPair& /*couple*/) {}
void WriteParticulars(ScenePrinter& printer, const ProximityPair& couple) {
    printer.PushAttribute(scene::kClearance, NumberText(couple.Clearance).c_str());
}

template <typename Couple>
void WriteCouple(ScenePrinter& printer, const Couple& couple) {
    printer.OpenElement(scene::kPair);
    printer.PushAttribute(scene::kFirst, NumberText(couple.First->GetId()).c_str());
    printer.PushAttribute(scene::kSecond, NumberText(couple.Second->GetId()).c_str());
    WriteParticulars(printer, couple);
    printer.CloseElement();
}

template <typename Couple, typename Configuration>
void WriteSceneOf(const Configuration& configuration, const char* type, std::ostream& stream) {
    const std::vector<ICollisionBody*> bodies = configuration.RetrieveElements();
    ScenePrinter printer(stream);
    printer.OpenElement(scene::kScene);
    printer.PushAttribute(scene::kType, type);
    WriteOwners(printer, bodies);
    printer.OpenElement(scene::kElements);
    for (const ICollisionBody* body : bodies) {
        WriteBody(printer, *body);
        if (!stream) return;
    }
    printer.CloseElement();
    printer.OpenElement(scene::kConfiguration);
    std::vector<Couple> couples;
    for (const Couple& couple : configuration.RetrieveCouples(couples)) WriteCouple(printer, couple);
    printer.CloseElement();
    printer.CloseElement();
    printer.Flush();
}

}  // namespace

void RequireStorable(const ICollisionConfiguration& configuration) {
    for (const ICollisionBody* body : configuration.RetrieveElements()) RequireStorable(*body);
}

void RequireStorable(const IProximityConfiguration& configuration) {
    for (const ICollisionBody* body : configuration.RetrieveElements()) RequireStorable(*body);
    std::vector<ProximityPair> couples;
    for (const ProximityPair& couple : configuration.RetrieveCouples(couples)) {
        if (couple.Clearance < 0.0) Refuse(*couple.First, "it is in a couple with a negative clearance");
    }
}

void WriteScene(const ICollisionConfiguration& configuration, std::ostream& stream) {
    WriteSceneOf<CollisionPair>(configuration, scene::kCollision, stream);
}

void WriteScene(const IProximityConfiguration& configuration, std::ostream& stream) {
    WriteSceneOf<ProximityPair>(configuration, scene::kProximity, stream);
}

}  // namespace tarn::details
