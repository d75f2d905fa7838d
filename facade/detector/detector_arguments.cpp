#include "detector/detector_arguments.h"

#include "ostrel/quarrix/exceptions.h"

#include "tarn/exception.h"

#include <fstream>
#include <locale>
#include <ostream>
#include <sstream>

namespace Ostrel::Quarrix::Collisions {

namespace {

constexpr const char* kBlanks = " \t\n\v\f\r";

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
    if (file_path.View().find_first_not_of(kBlanks) == std::string_view::npos)
        throw ArgumentException("Parameter can't be empty", "filePath");
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
