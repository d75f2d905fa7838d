#include "output_file.h"

#include "readers/file_content.h"
#include "readers/program_error.h"
#include "temporary_folder.h"

#include <gtest/gtest.h>

#include <ostream>

namespace tarn::program {
namespace {

std::string Failure(const std::filesystem::path& target) {
    try {
        WriteOutputFile(target, [](std::ostream& stream) { stream << "new"; });
    } catch (const ProgramError& error) {
        return error.what();
    }
    return {};
}

TEST(OutputFile, FailuresNameTheTargetAndTheCause) {
    const TemporaryFolder folder;
    EXPECT_EQ(Failure(folder / "file"), "");
    EXPECT_EQ(ReadWholeFile(folder / "file"), "new");
    EXPECT_EQ(Failure("/dev/full"), "/dev/full: cannot be written (No space left on device)");
    const std::string missing = (folder / "missing/file").string();
    EXPECT_EQ(Failure(missing), missing + ": cannot be written (No such file or directory)");
}

TEST(OutputFile, OneFileHasManyNames) {
    const TemporaryFolder folder;
    folder.Write("file", "");
    std::filesystem::create_symlink("file", folder / "link");
    EXPECT_TRUE(IsSameFile(folder / "link", folder / "./file"));
    EXPECT_FALSE(IsSameFile(folder / "file", folder / "fresh"));
    EXPECT_FALSE(IsSameFile("/dev/null", "/dev/null")) << "what is written there destroys nothing";
}

}  // namespace
}  // namespace tarn::program
