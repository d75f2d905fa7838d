#include "readers/obj_reader.h"

#include "readers/coordinate.h"
#include "readers/line_words.h"
#include "readers/printable_text.h"
#include "readers/program_error.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace tarn::program {
namespace {

using Vertex = std::array<double, 3>;

/// Lines that say nothing about surfaces. What is missing here, free-form surfaces above all, might.
constexpr std::array<std::string_view, 15> kMeaningless = {
    "vt",     "vn", "vp",     "g",      "s",   "l",     "p",       "usemtl",
    "mtllib", "mg", "usemap", "maplib", "lod", "bevel", "d_interp"};

tarn::TriangleData Triangle(const Vertex& a, const Vertex& b, const Vertex& c) {
    return {a[0], a[1], a[2], b[0], b[1], b[2], c[0], c[1], c[2]};
}

class ObjReader {
public:
    ObjReader(std::string_view bytes, double millimetres_per_unit)
        : words_(bytes),
          millimetres_per_unit_(millimetres_per_unit) {}

    Model Read() {
        while (words_.NextLine()) {
            try {
                ReadLine();
            } catch (const FormatError& error) {
                throw FormatError(fmt::format("line {}: {}", words_.line(), error.what()));
            }
        }
        FinishObject();
        if (model_.parts.empty()) throw FormatError("holds no faces");
        if (unknown_count_ > 0) {
            model_.warnings.push_back(
                fmt::format("{} lines of unknown kinds were passed over, the first is line {}",
                            unknown_count_, first_unknown_line_));
        }
        return std::move(model_);
    }

private:
    void ReadLine() {
        const std::string_view keyword = words_.NextWord();
        if (keyword == "v") {
            ReadVertex();
        } else if (keyword == "f") {
            ReadFace();
        } else if (keyword == "o") {
            FinishObject();
            object_ = words_.RestOfLine();
            has_objects_ = true;
        } else if (std::ranges::find(kMeaningless, keyword) == kMeaningless.end()) {
            if (unknown_count_++ == 0) first_unknown_line_ = words_.line();
        }
    }

    void ReadVertex() {
        constexpr std::size_t kMostNumbers = 7;  // three coordinates, four for a colour
        std::array<std::string_view, kMostNumbers> numbers;
        std::size_t count = 0;
        for (std::string_view word = words_.NextWord(); !word.empty(); word = words_.NextWord()) {
            if (count == kMostNumbers) throw FormatError("a vertex of more than 7 numbers");
            numbers[count++] = word;
        }
        // x y z, then nothing, a weight, or a colour with or without its opacity.
        if (count < 3 || count == 5) throw FormatError(fmt::format("a vertex of {} numbers", count));
        if (count == 4 && ParseCoordinate(numbers[3], 1) != 1) {
            throw FormatError(fmt::format("a vertex with the fourth coordinate '{}', which must be 1",
                                          Excerpt(numbers[3])));
        }
        Vertex& vertex = vertices_.emplace_back();
        for (std::size_t axis = 0; axis < 3; ++axis) {
            vertex[axis] = ParseCoordinate(numbers[axis], millimetres_per_unit_);
        }
    }

    void ReadFace() {
        std::size_t corner_count = 0;
        Vertex first{};
        Vertex previous{};
        for (std::string_view word = words_.NextWord(); !word.empty(); word = words_.NextWord()) {
            const Vertex corner = ReadCorner(word);
            if (corner_count == 0) first = corner;
            if (corner_count >= 2) triangles_.push_back(Triangle(first, previous, corner));
            previous = corner;
            ++corner_count;
        }
        if (corner_count < 3) throw FormatError(fmt::format("a face of {} corners", corner_count));
    }

    /// "vertex", "vertex/texture", "vertex//normal" or "vertex/texture/normal".
    Vertex ReadCorner(std::string_view word) const {
        const std::string_view number = word.substr(0, word.find('/'));
        std::int64_t index = 0;
        const char* const number_end = number.data() + number.size();
        const auto [end, error] = std::from_chars(number.data(), number_end, index);
        const bool is_number = error != std::errc::invalid_argument && end == number_end;
        if (!is_number || word.find_first_not_of("0123456789-/") != std::string_view::npos) {
            throw FormatError(fmt::format("'{}' is not a corner of a face", Excerpt(word)));
        }
        const auto count = static_cast<std::int64_t>(vertices_.size());
        const bool is_present = error == std::errc() && index != 0 && index <= count && index >= -count;
        if (!is_present) {
            throw FormatError(
                fmt::format("vertex {} does not exist, there are {} so far", Excerpt(number), count));
        }
        return vertices_[static_cast<std::size_t>(index > 0 ? index - 1 : count + index)];
    }

    void FinishObject() {
        if (triangles_.empty()) return;
        if (!has_objects_) {
            // Nothing says yet whether these are all faces of the file or those before its first object.
            model_ = SinglePartModel({{}, std::exchange(triangles_, {})});
            return;
        }
        const std::string name = object_.empty() ? fmt::format("object {}", model_.parts.size()) : object_;
        model_.parts.push_back({name, model_.owners.size(), {model_.meshes.size()}, {}});
        model_.owners.push_back(name);
        model_.meshes.push_back({name, std::exchange(triangles_, {})});
    }

    LineWords words_;
    double millimetres_per_unit_;
    std::vector<Vertex> vertices_;
    std::vector<tarn::TriangleData> triangles_;  // of the object that is being read
    std::string object_;
    bool has_objects_ = false;
    Model model_;
    std::size_t unknown_count_ = 0;
    std::size_t first_unknown_line_ = 0;
};

}  // namespace

Model ReadObj(std::string_view bytes, double millimetres_per_unit) {
    return ObjReader(bytes, millimetres_per_unit).Read();
}

}  // namespace tarn::program
