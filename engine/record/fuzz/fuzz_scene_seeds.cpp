// Writes the seeds of the scene fuzzer: fuzz_scene_seeds FOLDER. Some are scenes that the recorder stored,
// the others are written by hand.
#include "tarn/factory.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace tarn {
namespace {

constexpr std::array<const char*, 6> kHandWritten = {
    // Upper case, hexadecimal numbers, blanks, plus signs, entities, markup of every sort.
    R"(<?xml version="1.0"?><!-- a comment --><!DOCTYPE any>
<Any type="collision"><OWNER id=" 0x2 "/><ELEMENT owner='-1' name="&lt;&#233;&quot;" id="+7" leaves="0" depth="x">
<Triangle x0="1e-320" y0="+.5" z0="0x1p3" x1=" 2" y1="0" z1="0" x2="0" y2="1" z2="1E2"/><![CDATA[ > ]]>text
</ELEMENT><pair first="7" second="7"/></Any>)",
    // A comma for the point, a missing coordinate.
    R"(<scene type="collision"><element owner="1" name="" id="1" leaves="1" depth="0"><stl>
<triangle x0="0,5" y0="1"/></stl></element></scene>)",
    // Bodies that share an identifier, unknown couples, couples of one body.
    R"(<scene type="proximity"><element owner="1" name="a" id="1" leaves="3" depth="0"/>
<element owner="9223372036854775807" name="b" id="1" leaves="32767" depth="0"/>
<pair first="1" second="1" clearance="inf"/><pair first="1" second="4294967295" clearance="-0"/>
<pair first="1" second="1" clearance="-nan"/></scene>)",
    // A triangle outside, an element inside, an owner without a number.
    R"(<scene type="collision"><triangle/></scene>)",
    R"(<scene type="collision"><element owner="1" name="a" id="1" leaves="1" depth="0"><element/></element></scene>)",
    R"(<scene type="proximity"><owner id="9223372036854775808"/></scene>)"};

void WriteStored(const std::filesystem::path& folder) {
    const auto element = make_shared_element("tetrahedron", {{0, 0, 0, 1, 0, 0, 0, 1, 0},
                                                             {0, 0, 0, 1, 0, 0, 0, 0, 1},
                                                             {0, 0, 0, 0, 1, 0, 0, 0, 1},
                                                             {1, 0, 0, 0, 1, 0, 0, 0.1, -1e-9}});
    std::vector<std::shared_ptr<ICollisionBody>> bodies;
    for (const std::uint32_t id : {0U, 1U, std::numeric_limits<std::uint32_t>::max()}) {
        bodies.push_back(make_shared_body(element.get(), id, id - 1ULL));
        bodies.back()->SetLeafNumber(static_cast<std::int16_t>(bodies.size()));
    }
    bodies.push_back(make_shared_body(9, 5, "\t\r\n<>&\"'\xe4\x80\xff"));  // not built
    const auto collisions = make_shared_configuration();
    const auto clearances = make_shared_proximity_configuration();
    const auto recorder = make_unique_recorder();
    recorder->Store(collisions.get(), (folder / "empty_collision").string());
    recorder->Store(clearances.get(), (folder / "empty_proximity").string());
    for (const auto& body : bodies) {
        collisions->AddElement(body.get(), true);
        clearances->AddElement(body.get(), {true, 0.1 * static_cast<double>(body->GetId())});
    }
    recorder->Store(collisions.get(), (folder / "collision").string());
    recorder->Store(clearances.get(), (folder / "proximity").string());
}

}  // namespace
}  // namespace tarn

int main(int argument_count, char** arguments) {
    if (argument_count != 2) {
        std::fputs("usage: fuzz_scene_seeds FOLDER\n", stderr);
        return 2;
    }
    const std::filesystem::path folder(arguments[1]);
    std::filesystem::create_directories(folder);
    for (std::size_t i = 0; i < tarn::kHandWritten.size(); ++i)
        std::ofstream(folder / ("by_hand_" + std::to_string(i))) << tarn::kHandWritten[i];
    tarn::WriteStored(folder);
    return 0;
}
