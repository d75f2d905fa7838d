#include "readers/model_file.h"
#include "record/assembly.h"
#include "support/owned_scene.h"
#include "support/scene_content.h"
#include "tools/temporary_folder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

namespace tarn {
namespace {

namespace fs = std::filesystem;
using test::ContentOf;

/// Real assemblies are no part of the project: the build says where they lie, or the variable TARN_DATA does.
TEST(RealScenes, ComeBackToTheLastBit) {
    const char* const variable = std::getenv("TARN_DATA");
    const fs::path data(variable == nullptr ? TARN_DATA_DIR : variable);
    if (!fs::is_directory(data)) GTEST_SKIP() << "no folder " << data;
    for (const char* const file :
         {"bim/duplex_apartment.glb", "ur5/ur5_visual.glb", "nasty/angle_block_offset_1e9.obj"}) {
        SCOPED_TRACE(file);
        const program::Model model =
            program::ReadModelFile((data / file).string(), program::LengthUnit::Millimetre);
        test::Assembly assembly;
        for (const program::Part& part : model.parts) {
            std::vector<test::Mesh> meshes;
            for (const std::size_t mesh : part.meshes) meshes.push_back(model.meshes[mesh].triangles);
            assembly.Add(static_cast<std::uint32_t>(assembly.bodies.size()), part.owner, part.name, 5,
                         meshes);
        }
        assembly.clearances->ConfigAllCouples({true, 0.1});
        const program::TemporaryFolder folder;
        make_unique_recorder()->Store(assembly.clearances.get(), folder / "scene.xml");
        const auto again = test::RetrieveScene<IProximityConfiguration>(folder / "scene.xml");
        EXPECT_TRUE(ContentOf(*again) == ContentOf(*assembly.clearances));
    }
}

}  // namespace
}  // namespace tarn
