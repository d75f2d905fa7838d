#include "info_command.h"

#include "assembly_loader.h"
#include "check_run.h"
#include "console.h"
#include "info_report.h"
#include "mesh_size_check.h"
#include "output_file.h"
#include "part_directory.h"
#include "run_steps.h"
#include "scene_file.h"

#include "tarn/collision_element.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace tarn::program {
namespace {

Extents ExtentsOf(const tarn::ICollisionBody& body, const tarn::MATRIX& placement) {
    Extents extents;
    for (const tarn::ICollisionElement* const element : body.GetElements()) {
        for (const tarn::TriangleData& t : Placed(element->GetTriangles(), placement)) {
            extents.Include({t.v0x, t.v0y, t.v0z});
            extents.Include({t.v1x, t.v1y, t.v1z});
            extents.Include({t.v2x, t.v2y, t.v2z});
        }
    }
    return extents;
}

/// What is the same of both kinds of file: bodies with the parts that they stand for.
InfoReport ReportOf(const std::vector<tarn::ICollisionBody*>& bodies, const Model& model) {
    const PartDirectory directory(bodies, model.parts, model.owners);
    InfoReport report;
    for (std::size_t number = 0; number < bodies.size(); ++number) {
        const tarn::ICollisionBody& body = *bodies[number];
        const tarn::CollisionBodyStatistics statistics = body.GetStatistics();
        const Extents extents = ExtentsOf(body, model.parts[number].placement);
        report.bodies.push_back({directory[body], statistics.triangle_count, {}, statistics.depth, extents});
        report.extents.Include(extents);
        report.summary.kept_triangle_count += statistics.triangle_count;
    }
    report.owner_count = model.owners.size();
    report.summary.body_count = bodies.size();
    report.summary.dropped_triangle_count.reset();
    return report;
}

InfoReport InfoOfMeshFile(const InfoOptions& options, Console& console) {
    const std::vector<std::string> files = {options.file};
    AssemblyLoader loader(files, console);
    loader.Load(options.unit);
    loader.Build(Placements::OfBodies);
    std::vector<tarn::ICollisionBody*> bodies;
    for (std::size_t part = 0; part < loader.model().parts.size(); ++part)
        bodies.push_back(&loader.assembly().body(part));
    InfoReport report = ReportOf(bodies, loader.model());
    for (std::size_t part = 0; part < bodies.size(); ++part)
        report.bodies[part].dropped_triangle_count = loader.triangle_counts()[part].dropped;
    report.kind = "mesh file";
    report.summary = loader.summary();
    report.summary.couple_count = bodies.size() * (bodies.size() - 1) / 2;  // all that a check would offer
    return report;
}

InfoReport InfoOf(const tarn::ICollisionConfiguration& configuration) {
    const std::vector<tarn::ICollisionBody*> bodies = configuration.RetrieveElements();
    InfoReport report = ReportOf(bodies, ModelOf(bodies));
    report.kind = "collision scene";
    report.summary.couple_count = configuration.RetrieveCouplesCount();
    return report;
}

InfoReport InfoOf(const tarn::IProximityConfiguration& configuration) {
    const std::vector<tarn::ICollisionBody*> bodies = configuration.RetrieveElements();
    InfoReport report = ReportOf(bodies, ModelOf(bodies));
    report.kind = "proximity scene";
    std::vector<tarn::ProximityPair> couples;
    configuration.RetrieveCouples(couples);
    report.summary.couple_count = couples.size();
    if (!couples.empty()) {
        const auto [least, largest] =
            std::ranges::minmax_element(couples, {}, &tarn::ProximityPair::Clearance);
        report.clearances = std::pair(least->Clearance, largest->Clearance);
    }
    return report;
}

}  // namespace

void RunInfo(const InfoOptions& options) {
    RefuseOverwriting({options.file}, {options.run.output_path});
    Console console(options.run.is_quiet);
    InfoReport report;
    LimitThreads(options.run.thread_limit, [&] {
        if (!LooksLikeScene(options.file)) {
            report = InfoOfMeshFile(options, console);
        } else {
            console.ShowStatus("loading");
            report = std::visit([](const auto& scene) { return InfoOf(*scene); }, ReadScene(options.file));
        }
    });
    console.ClearStatus();
    const std::string summary = FormatSummary(report);
    const bool is_json = options.run.format == ReportFormat::Json;
    WriteReport(is_json ? FormatJson(report) : FormatTable(report) + summary, summary, options.run);
}

}  // namespace tarn::program
