#include "record/scene_visitors.h"

#include "record/scene_format.h"
#include "record/scene_numbers.h"

#include "tarn/exception.h"
#include "tarn/proximity_setting.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <optional>
#include <string_view>
#include <utility>

namespace tarn::details {

namespace {

using tinyxml2::XMLAttribute;
using tinyxml2::XMLElement;

bool IsNamed(const XMLElement& element, std::string_view name) {
    const auto is_same = [](char of_file, char lower) {
        return (of_file >= 'A' && of_file <= 'Z' ? of_file - 'A' + 'a' : of_file) == lower;
    };
    return std::ranges::equal(std::string_view(element.Name()), name, is_same);
}

/// "'triangle' (line 12)".
std::string Place(const XMLElement& element) {
    return "'" + std::string(element.Name()) + "' (line " + std::to_string(element.GetLineNum()) + ")";
}

/// Values of any length come from the file, messages stay readable.
std::string Quoted(std::string_view value) {
    constexpr std::size_t kMostCharacters = 40;
    return value.size() <= kMostCharacters ? "'" + std::string(value) + "'"
                                           : "'" + std::string(value.substr(0, kMostCharacters)) + "...'";
}

/// What is wrong with an attribute, for the exception that says what it means.
InconsistentDataException AttributeFault(const XMLElement& element, const char* attribute) {
    const char* const value = element.Attribute(attribute);
    const std::string place = "attribute '" + std::string(attribute) + "' of " + Place(element);
    return InconsistentDataException(value ? "Unreadable " + place + ": " + Quoted(value)
                                           : "Missing " + place);
}

template <typename Integer>
std::optional<Integer> ReadInteger(const XMLElement& element, const char* attribute) {
    const char* const text = element.Attribute(attribute);
    return text ? ParseInteger<Integer>(text) : std::nullopt;
}

std::optional<double> ReadDouble(const XMLElement& element, const char* attribute) {
    const char* const text = element.Attribute(attribute);
    return text ? ParseDouble(text) : std::nullopt;
}

/// An attribute of an `element` that must be a number; the unreadable one is named.
template <typename Integer>
Integer RequireInteger(const XMLElement& element, const char* attribute) {
    const std::optional<Integer> value = ReadInteger<Integer>(element, attribute);
    if (!value) throw AttributeFault(element, attribute);
    return *value;
}

/// NaN and infinite vertices make hierarchies that find nothing; nobody stores them.
double RequireCoordinate(const XMLElement& triangle, const char* attribute) {
    const std::optional<double> value = ReadDouble(triangle, attribute);
    if (!value || !std::isfinite(*value)) throw AttributeFault(triangle, attribute);
    return *value;
}

struct BodyPair {
    CollisionBody* first;
    CollisionBody* second;
};

CollisionBody* FindBody(const BodiesById& bodies, std::uint32_t id) {
    const auto found = bodies.find(id);
    return found == bodies.end() ? nullptr : found->second;
}

/// The bodies of a `pair`. Nothing where one of them is unknown.
std::optional<BodyPair> ReadPair(const XMLElement& pair, const BodiesById& bodies) {
    std::array<std::uint32_t, 2> ids{};
    for (std::size_t i = 0; i < ids.size(); ++i) {
        const char* const attribute = i == 0 ? scene::kFirst : scene::kSecond;
        const std::optional<std::uint32_t> id = ReadInteger<std::uint32_t>(pair, attribute);
        if (!id) {
            throw InconsistentDataException(
                "No 'id' attribute found for pair '" + std::string(pair.Name()) + "'",
                AttributeFault(pair, attribute));
        }
        ids[i] = *id;
    }
    const BodyPair found{FindBody(bodies, ids[0]), FindBody(bodies, ids[1])};
    return found.first && found.second ? std::optional(found) : std::nullopt;
}

}  // namespace

bool Recorder::XMLOwnersVisitor::VisitEnter(const XMLElement& element, const XMLAttribute* /*attributes*/) {
    if (!IsNamed(element, scene::kOwner)) return true;
    if (!ReadInteger<std::int64_t>(element, scene::kId)) {
        throw InconsistentDataException(
            "No 'id' attribute found for owner '" + std::string(element.Name()) + "'",
            AttributeFault(element, scene::kId));
    }
    return true;
}

Recorder::XMLElementsVisitor::Attributes Recorder::XMLElementsVisitor::ReadAttributes(
    const XMLElement& element) {
    for (const char* attribute : {scene::kOwner, scene::kName, scene::kId, scene::kLeaves, scene::kDepth}) {
        if (element.Attribute(attribute)) continue;
        throw InconsistentDataException(
            "No attributes found for element '" + std::string(element.Name()) + "'",
            AttributeFault(element, attribute));
    }
    Attributes attributes;
    attributes.owner = static_cast<std::uint64_t>(RequireInteger<std::int64_t>(element, scene::kOwner));
    attributes.name = element.Attribute(scene::kName);
    attributes.id = RequireInteger<std::uint32_t>(element, scene::kId);
    attributes.leaves = RequireInteger<std::int16_t>(element, scene::kLeaves);
    if (attributes.leaves < 0) throw AttributeFault(element, scene::kLeaves);
    return attributes;
}

bool Recorder::XMLElementsVisitor::VisitEnter(const XMLElement& element, const XMLAttribute* /*attributes*/) {
    if (IsNamed(element, scene::kElement)) {
        // The inner one's triangles would be taken for the outer one's, too.
        if (is_inside_element_)
            throw InconsistentDataException("Element inside another one: " + Place(element));
        attributes_ = ReadAttributes(element);
        is_inside_element_ = true;
    } else if (IsNamed(element, scene::kTriangle)) {
        if (!is_inside_element_)
            throw InconsistentDataException("Triangle outside any element: " + Place(element));
        std::array<double, 9> coordinates{};
        for (std::size_t i = 0; i < coordinates.size(); ++i)
            coordinates[i] = RequireCoordinate(element, scene::kCoordinates[i]);
        triangles_.push_back(std::bit_cast<TriangleData>(coordinates));
    }
    return true;
}

bool Recorder::XMLElementsVisitor::VisitExit(const XMLElement& element) {
    if (!IsNamed(element, scene::kElement)) return true;
    elements_.push_back(std::make_unique<CollisionElement>(attributes_.name, triangles_));
    auto body = std::make_unique<CollisionBody>(attributes_.id, attributes_.owner, attributes_.name);
    body->AddElement(elements_.back().get());
    // 0 says that the stored body had no hierarchy: this one is built with a new body's number.
    if (attributes_.leaves > 0) {
        body->SetLeafNumber(attributes_.leaves);
    } else {
        body->Rebuild();
    }
    by_id_.emplace(attributes_.id, body.get());
    bodies_.push_back(std::move(body));
    triangles_.clear();
    is_inside_element_ = false;
    return true;
}

void Recorder::XMLElementsVisitor::GiveAway() noexcept {
    for (auto& body : bodies_) static_cast<void>(body.release());
    for (auto& element : elements_) static_cast<void>(element.release());
}

bool Recorder::XMLPairsVisitor::VisitEnter(const XMLElement& element, const XMLAttribute* /*attributes*/) {
    if (!IsNamed(element, scene::kPair)) return true;
    if (const auto pair = ReadPair(element, bodies_))
        configuration_.ConfigCouple(pair->first, pair->second, true);
    return true;
}

bool Recorder::XMLProximityPairsVisitor::VisitEnter(const XMLElement& element,
                                                    const XMLAttribute* /*attributes*/) {
    if (!IsNamed(element, scene::kPair)) return true;
    const auto pair = ReadPair(element, bodies_);
    const std::optional<double> clearance = ReadDouble(element, scene::kClearance);
    // Infinite and NaN clearances are some that a configuration takes; negative ones it refuses.
    if (!clearance || *clearance < 0.0) throw AttributeFault(element, scene::kClearance);
    if (pair) configuration_.ConfigCouple(pair->first, pair->second, ProximitySetting{true, *clearance});
    return true;
}

}  // namespace tarn::details
