#include "readers/gltf_document.h"

#include "readers/printable_text.h"
#include "readers/program_error.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <utility>

namespace tarn::program {
namespace {

using Json = nlohmann::json;

/// Levels of nesting at most. What bears on shapes needs six; the rest is left to vendors' data.
constexpr int kDeepestNesting = 100;

enum class Kind { Index, Size, Text, Indices, Numbers };

struct Property {
    const char* name;
    Kind kind;
    bool is_required = false;
    std::size_t number_count = 0;  ///< of `Kind::Numbers`
};

[[noreturn]] void Fail(const std::string& place, std::string_view cause) {
    throw FormatError(fmt::format("{} {}", place, cause));
}

bool IsIndex(const Json& value) {
    return value.is_number_unsigned() && value.get<std::uint64_t>() <= std::numeric_limits<int>::max();
}

void RequireKind(const Json& value, const Property& property, const std::string& place) {
    const auto all = [&value](auto predicate) {
        return value.is_array() && std::ranges::all_of(value, predicate);
    };
    switch (property.kind) {
        case Kind::Index:
            if (!IsIndex(value)) Fail(place, "is not an index");
            break;
        case Kind::Size:
            if (!value.is_number_unsigned()) Fail(place, "is not a size");
            break;
        case Kind::Text:
            if (!value.is_string()) Fail(place, "is not a text");
            break;
        case Kind::Indices:
            if (!all(IsIndex)) Fail(place, "is not a list of indices");
            break;
        case Kind::Numbers:
            if (!all([](const Json& number) { return number.is_number(); }) ||
                value.size() != property.number_count) {
                Fail(place, fmt::format("is not a list of {} numbers", property.number_count));
            }
            break;
    }
}

/// A copy of an object with these properties alone.
Json Reduced(const Json& object, const std::string& place, std::initializer_list<Property> properties) {
    if (!object.is_object()) Fail(place, "is not an object");
    Json reduced = Json::object();
    for (const Property& property : properties) {
        const auto member = object.find(property.name);
        if (member == object.end()) {
            if (property.is_required) Fail(place, fmt::format("has no {}", property.name));
            continue;
        }
        RequireKind(*member, property, place + "." + property.name);
        reduced[property.name] = *member;
    }
    return reduced;
}

/// Each object of an array, reduced by a function that is given the object and its place.
template <typename Reduce>
Json ReducedArray(const Json& parent,
                  const std::string& name,
                  const std::string& prefix,
                  const Reduce& reduce) {
    Json reduced = Json::array();
    const auto array = parent.find(name);
    if (array == parent.end()) return reduced;
    if (!array->is_array()) Fail(prefix + name, "is not a list");
    for (std::size_t index = 0; index < array->size(); ++index) {
        reduced.push_back(reduce((*array)[index], fmt::format("{}{}[{}]", prefix, name, index)));
    }
    return reduced;
}

Json ReducedNode(const Json& node, const std::string& place) {
    Json reduced = Reduced(node, place,
                           {{"name", Kind::Text},
                            {"mesh", Kind::Index},
                            {"skin", Kind::Index},
                            {"children", Kind::Indices},
                            {"matrix", Kind::Numbers, false, 16},
                            {"translation", Kind::Numbers, false, 3},
                            {"rotation", Kind::Numbers, false, 4},
                            {"scale", Kind::Numbers, false, 3}});
    const bool has_parts =
        reduced.contains("translation") || reduced.contains("rotation") || reduced.contains("scale");
    if (reduced.contains("matrix") && has_parts) Fail(place, "has a matrix and also its parts");
    return reduced;
}

Json ReducedMesh(const Json& mesh, const std::string& place) {
    Json reduced = Reduced(mesh, place, {{"name", Kind::Text}});
    reduced["primitives"] =
        ReducedArray(mesh, "primitives", place + ".", [](const Json& primitive, const std::string& at) {
            Json copy = Reduced(primitive, at, {{"indices", Kind::Index}, {"mode", Kind::Index}});
            const auto attributes = primitive.find("attributes");
            if (attributes == primitive.end()) Fail(at, "has no attributes");
            copy["attributes"] = Reduced(*attributes, at + ".attributes", {{"POSITION", Kind::Index}});
            return copy;
        });
    return reduced;
}

Json ReducedAccessor(const Json& accessor, const std::string& place) {
    return Reduced(accessor, place,
                   {{"bufferView", Kind::Index},
                    {"byteOffset", Kind::Size},
                    {"componentType", Kind::Index, true},
                    {"count", Kind::Size, true},
                    {"type", Kind::Text, true}});
}

Json ReducedBufferView(const Json& view, const std::string& place) {
    return Reduced(view, place,
                   {{"buffer", Kind::Index, true},
                    {"byteOffset", Kind::Size},
                    {"byteLength", Kind::Size, true},
                    {"byteStride", Kind::Size}});
}

/// Looks at the brackets alone, which are right up to the place where the text is no JSON. The parser could
/// tell the depth as well, but then takes time with the square of an array's length.
void RefuseDeepNesting(std::string_view text) {
    std::ptrdiff_t depth = 0;
    bool is_in_string = false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char character = text[at];
        if (character == '"') {
            is_in_string = !is_in_string;
        } else if (is_in_string) {
            if (character == '\\') ++at;
        } else if (character == '[' || character == '{') {
            if (++depth > kDeepestNesting) throw FormatError("its JSON is nested too deep");
        } else if (character == ']' || character == '}') {
            --depth;
        }
    }
}

Json ParseJson(std::string_view text) {
    RefuseDeepNesting(text);
    try {
        return Json::parse(text);
    } catch (const Json::exception& error) {
        // The library's own text, without the class in brackets before it and without long words of the file.
        constexpr std::size_t kLongest = 160;
        std::string_view cause = error.what();
        if (const std::size_t bracket = cause.find("] "); bracket != std::string_view::npos) {
            cause.remove_prefix(bracket + 2);
        }
        throw FormatError(fmt::format("its JSON is broken: {}", cause.substr(0, kLongest)));
    }
}

/// Extensions that change looks alone, by the beginnings of their names.
bool ConcernsLooks(std::string_view extension) {
    constexpr std::array<std::string_view, 5> kLooks = {"KHR_materials_", "EXT_materials_", "KHR_texture_",
                                                        "EXT_texture_", "KHR_lights_"};
    return std::ranges::any_of(kLooks, [&](std::string_view begin) { return extension.starts_with(begin); });
}

void RefuseExtensions(const Json& root) {
    const auto refuse_any = [&root](const char* list, const auto& is_refused) {
        const auto names = root.find(list);
        if (names == root.end()) return;
        if (!names->is_array()) Fail(list, "is not a list");
        for (const Json& name : *names) {
            if (!name.is_string()) Fail(list, "is not a list of texts");
            const auto& extension = name.get_ref<const std::string&>();
            if (!is_refused(extension)) continue;
            throw FormatError(fmt::format("needs the extension '{}', which is not read", Excerpt(extension)));
        }
    };
    refuse_any("extensionsRequired", [](std::string_view name) { return !ConcernsLooks(name); });
    // Files that state this one as optional still hold many parts where a reader without it sees one.
    refuse_any("extensionsUsed", [](std::string_view name) { return name == "EXT_mesh_gpu_instancing"; });
}

tinygltf::Model ToStructures(const Json& reduced) {
    const std::string text = reduced.dump();
    if (text.size() > std::numeric_limits<unsigned>::max()) throw FormatError("its JSON is too long");
    tinygltf::Model model;
    tinygltf::TinyGLTF loader;
    std::string error;
    std::string warning;
    const bool is_loaded = loader.LoadASCIIFromString(&model, &error, &warning, text.data(),
                                                      static_cast<unsigned>(text.size()), "");
    if (!is_loaded || !error.empty()) throw FormatError(error.substr(0, error.find('\n')));
    return model;
}

}  // namespace

GltfDocument ParseGltfDocument(std::string_view text) {
    const Json root = ParseJson(text);
    if (!root.is_object()) throw FormatError("its JSON is not an object");
    RefuseExtensions(root);

    Json reduced = Reduced(root, "the file", {{"scene", Kind::Index}});
    const auto asset = root.find("asset");
    if (asset == root.end()) throw FormatError("has no asset, so it is no glTF");
    reduced["asset"] = Reduced(*asset, "asset", {{"version", Kind::Text, true}});
    const auto& version = reduced["asset"]["version"].get_ref<const std::string&>();
    if (!version.starts_with("2.")) {
        throw FormatError(fmt::format("is glTF of version {}, only 2 is read", Excerpt(version)));
    }
    reduced["scenes"] = ReducedArray(root, "scenes", "", [](const Json& scene, const std::string& place) {
        return Reduced(scene, place, {{"nodes", Kind::Indices}});
    });
    reduced["nodes"] = ReducedArray(root, "nodes", "", ReducedNode);
    reduced["meshes"] = ReducedArray(root, "meshes", "", ReducedMesh);
    reduced["accessors"] = ReducedArray(root, "accessors", "", ReducedAccessor);
    reduced["bufferViews"] = ReducedArray(root, "bufferViews", "", ReducedBufferView);

    GltfDocument document;
    for (const Json& buffer :
         ReducedArray(root, "buffers", "", [](const Json&object, const std::string&place) {
             return Reduced(object, place, {{"uri", Kind::Text}, {"byteLength", Kind::Size, true}});
         })) {
        document.buffers.push_back(
            {buffer.value("uri", std::string()), buffer["byteLength"].get<std::size_t>()});
    }
    if (const auto accessors = root.find("accessors"); accessors != root.end()) {
        for (const Json& accessor : *accessors)
            document.accessor_is_sparse.push_back(accessor.contains("sparse"));
    }
    document.model = ToStructures(reduced);
    return document;
}

}  // namespace tarn::program
