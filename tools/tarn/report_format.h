#pragma once

#include <string>

namespace tarn::program {

enum class ReportFormat { Table, Json, Csv };

/// A report as text. The table is for people, and the summary stands below it; JSON holds the summary too.
template <typename Report>
std::string FormatReport(const Report& report, ReportFormat format) {
    switch (format) {
        case ReportFormat::Json:
            return FormatJson(report);
        case ReportFormat::Csv:
            return FormatCsv(report);
        case ReportFormat::Table:
            break;
    }
    return FormatTable(report) + FormatSummary(report);
}

}  // namespace tarn::program
