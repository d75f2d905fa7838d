#pragma once

#include "assembly_summary.h"
#include "point.h"
#include "reported_part.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <optional>
#include <string>

namespace tarn::program {

using ReportJson = nlohmann::ordered_json;

/// A couple's two parts; what was found of them goes behind.
ReportJson JsonOfParts(const ReportedPart& first, const ReportedPart& second);

/// An array of coordinates with all digits, or null for no point.
ReportJson JsonOf(const std::optional<Point>& point);

/// A number with all digits, or null.
ReportJson JsonOf(const std::optional<double>& number);

ReportJson JsonOf(const std::optional<std::uint64_t>& count);

/// The summary, with the members of `findings` in its middle.
ReportJson JsonOf(const AssemblySummary& summary, const ReportJson& findings);

/// As text. Names of files may be no UTF-8, which JSON must be: such bytes are replaced.
std::string FormatJson(const ReportJson& json);

}  // namespace tarn::program
