#pragma once

#include "ostrel/quarrix/enumerations.h"
#include "ostrel/quarrix/text.h"
#include "ostrel/quarrix/triangle.h"

#include "tarn/check_policy.h"
#include "tarn/triangle_data.h"

#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

/// \file
/// What the detectors of both kinds do with their arguments and answers.

namespace Ostrel::Quarrix::Collisions {

/// The engine's policy of the same number. Throws the plain `Exception` for a value that is none.
tarn::CheckPolicy PolicyOf(CheckResultType check_type);

/// The tests of a path and of a configuration, which may be given as null: a null path comes first, then a
/// null configuration, then an empty or blank path. Returns the path.
std::string RequirePath(Text file_path, const void* configuration);
/// Those of a path alone.
std::string RequirePath(Text file_path);

/// Writes what `dump` writes to a text file, which is replaced. Throws `tarn::RuntimeException`, naming the
/// path, where that fails.
void DumpToFile(const std::string& path, const std::function<void(std::ostream&)>& dump);

/// Writes what `dump` writes to the writer, in one piece. Throws `ArgumentNullException` ("writer", then
/// "configuration").
void DumpToWriter(std::ostream* writer,
                  const void* configuration,
                  const std::function<void(std::ostream&)>& dump);

/// The triangles of each pair in turn, as objects.
std::vector<std::shared_ptr<Triangle>> TrianglesOf(const std::vector<tarn::TriangleDataPair>& pairs);

}  // namespace Ostrel::Quarrix::Collisions
