#include "detector/detector_arguments.h"

#include "ostrel/quarrix/exceptions.h"

#include "tarn/exception.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <locale>
#include <ostream>
#include <sstream>
#include <string_view>

namespace Ostrel::Quarrix::Collisions {

namespace {

/// White space as Unicode has it, in UTF-8.
constexpr std::string_view kBlanks[] = {" ",
                                        "\t",
                                        "\n",
                                        "\v",
                                        "\f",
                                        "\r",
                                        "\xC2\x85",
                                        "\xC2\xA0",
                                        "\xE1\x9A\x80",
                                        "\xE2\x80\x80",
                                        "\xE2\x80\x81",
                                        "\xE2\x80\x82",
                                        "\xE2\x80\x83",
                                        "\xE2\x80\x84",
                                        "\xE2\x80\x85",
                                        "\xE2\x80\x86",
                                        "\xE2\x80\x87",
                                        "\xE2\x80\x88",
                                        "\xE2\x80\x89",
                                        "\xE2\x80\x8A",
                                        "\xE2\x80\xA8",
                                        "\xE2\x80\xA9",
                                        "\xE2\x80\xAF",
                                        "\xE2\x81\x9F",
                                        "\xE3\x80\x80"};

bool IsBlank(std::string_view text) {
    while (!text.empty()) {
        const auto* const blank =
            std::ranges::find_if(kBlanks, [text](std::string_view each) { return text.starts_with(each); });
        if (blank == std::end(kBlanks)) return false;
        text.remove_prefix(blank->size());
    }
    return true;
}

}  // namespace

tarn::CheckPolicy PolicyOf(CheckResultType check_type) {
    switch (check_type) {
        case CheckResultType::FirstInterferenceStop:
            return tarn::CheckPolicy::FirstInterferenceStop;
        case CheckResultType::FirstInterferenceStopWithTriangles:
            return tarn::CheckPolicy::FirstInterferenceStopWithTriangles;
        case CheckResultType::AllInterferences:
            return tarn::CheckPolicy::AllInterferences;
        case CheckResultType::AllInterferencesWithTriangles:
            return tarn::CheckPolicy::AllInterferencesWithTriangles;
    }
    throw Exception();
}

std::string RequirePath(Text file_path, const void* configuration) {
    if (file_path.IsNull()) throw ArgumentNullException("filePath");
    if (!configuration) throw ArgumentNullException("configuration");
    return RequirePath(file_path);
}

std::string RequirePath(Text file_path) {
    if (file_path.IsNull()) throw ArgumentNullException("filePath");
    if (IsBlank(file_path.View())) throw ArgumentException("Parameter can't be empty", "filePath");
    return file_path.ToString();
}

void DumpToFile(const std::string& path, const std::function<void(std::ostream&)>& dump) {
    std::ofstream stream(path);
    // Whatever the program's locale: STL has decimal points.
    stream.imbue(std::locale::classic());
    if (stream) {
        dump(stream);
        stream.close();
    }
    if (!stream) throw tarn::RuntimeException("The dump cannot be written", path);
}

void DumpToWriter(std::ostream* writer,
                  const void* configuration,
                  const std::function<void(std::ostream&)>& dump) {
    if (!writer) throw ArgumentNullException("writer");
    if (!configuration) throw ArgumentNullException("configuration");
    std::ostringstream text;
    text.imbue(std::locale::classic());
    dump(text);
    *writer << text.str() << std::flush;
}

std::vector<std::shared_ptr<Triangle>> TrianglesOf(const std::vector<tarn::TriangleDataPair>& pairs) {
    std::vector<std::shared_ptr<Triangle>> triangles;
    triangles.reserve(2 * pairs.size());
    for (const tarn::TriangleDataPair& pair : pairs) {
        triangles.push_back(std::make_shared<Triangle>(pair.first));
        triangles.push_back(std::make_shared<Triangle>(pair.second));
    }
    return triangles;
}

}  // namespace Ostrel::Quarrix::Collisions
