#include "config/failing_allocation.h"
#include "support/owned_scene.h"
#include "support/scene.h"
#include "support/scene_content.h"
#include "tools/temporary_folder.h"

#include "tarn/exception.h"
#include "tarn/thread_limit.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <iterator>

/// The sanitizers see what is read or freed in a wrong way; what is kept is counted here, in every build.

namespace tarn {
namespace {

using program::TemporaryFolder;
using test::ContentOf;

std::ptrdiff_t OpenFileCount() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

/// Runs `work` with no allocation, with one, and so on until it succeeds. What fails must leave nothing.
void FailAtEachAllocation(const std::function<void()>& work, const std::function<void()>& after_failure) {
    const std::ptrdiff_t open_files = OpenFileCount();
    bool is_failing = true;
    for (int allocations = 0; is_failing; ++allocations) {
        ASSERT_LT(allocations, 10'000);
        bool is_reported = false;
        const std::ptrdiff_t kept = test::LiveAllocations();
        is_failing = test::RunsOutOfMemory(allocations, [&] {
            try {
                work();
            } catch (const RuntimeException&) {  // streams swallow what happens in them
                is_reported = true;
            }
        });
        is_failing = is_failing || is_reported;
        if (!is_failing) continue;
        EXPECT_EQ(test::LiveAllocations(), kept) << "after " << allocations << " allocations";
        EXPECT_EQ(OpenFileCount(), open_files) << "after " << allocations << " allocations";
        after_failure();
    }
}

TEST(OutOfMemory, LeavesTheOlderFileAndNothingElse) {
    const TemporaryFolder folder;
    const std::string path = folder.Write("scene.xml", "older");
    test::Scene scene;
    ICollisionElement* const box = scene.AddElement(test::BoxMesh(0, 0, 0, 1, 1, 1));
    scene.Add(1, 1, "a name too long for small strings", 5, {box});
    scene.Add(2, 2, "<b>", 5, {box});
    scene.Clearances().ConfigAllCouples({true, 0.1});
    const auto recorder = make_unique_recorder();
    FailAtEachAllocation([&] { recorder->Store(&scene.Clearances(), path); },
                         [&] {
                             EXPECT_EQ(program::FileText(path), "older");
                             EXPECT_EQ(folder.FileCount(), 1U);
                         });
    IProximityConfiguration* retrieved = nullptr;
    // The limit outside: oneTBB waits for ever where memory for its first arena fails.
    RunWithThreadLimit(1, [&] {
        FailAtEachAllocation([&] { recorder->Retrieve(path, &retrieved); },
                             [&] { EXPECT_EQ(retrieved, nullptr); });
    });
    const test::OwnedScene<IProximityConfiguration> owned(retrieved);
    EXPECT_TRUE(owned && ContentOf(*owned) == ContentOf(scene.Clearances()));
}

}  // namespace
}  // namespace tarn
