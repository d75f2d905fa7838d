#include "output_file.h"

#include "readers/file_content.h"
#include "readers/program_error.h"
#include "temporary_folder.h"

#include <gtest/gtest.h>

#include <ostream>
#include <stdexcept>

namespace tarn::program {
namespace {

namespace fs = std::filesystem;

void WriteNew(const fs::path& target) {
    WriteOutputFile(target, [](std::ostream& stream) { stream << "new"; });
}

TEST(OutputFile, TakesThePlaceOfAnOlderFileAndKeepsItsPermissions) {
    const TemporaryFolder folder;
    folder.Write("file", "older and longer");
    const fs::perms permissions = fs::perms::owner_read | fs::perms::owner_write | fs::perms::others_read;
    fs::permissions(folder / "file", permissions);
    WriteNew(folder / "file");
    EXPECT_EQ(ReadWholeFile(folder / "file"), "new");
    EXPECT_EQ(fs::status(folder / "file").permissions(), permissions);
    EXPECT_EQ(folder.FileCount(), 1U);
}

TEST(OutputFile, SymbolicLinksStayAndTheirTargetsAreWritten) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "deep");
    fs::create_symlink("deep/file", folder / "link");
    fs::create_symlink("link", folder / "chain");
    for (const char* const older : {"", "older"}) {
        if (*older != '\0') folder.Write("deep/file", older);
        WriteNew(folder / "chain");
        EXPECT_EQ(ReadWholeFile(folder / "deep/file"), "new");
        EXPECT_TRUE(fs::is_symlink(folder / "link") && fs::is_symlink(folder / "chain"));
    }
    fs::create_symlink("circle", folder / "circle");
    EXPECT_THROW(WriteNew(folder / "circle"), ProgramError);
}

TEST(OutputFile, AFailureLeavesTheOlderFileAndNothingElse) {
    const TemporaryFolder folder;
    folder.Write("file", "older");
    const auto throws = [](std::ostream& stream) {
        stream << "half";
        throw std::runtime_error("no more");
    };
    const auto breaks = [](std::ostream& stream) {
        stream << "half";
        stream.setstate(std::ios::badbit);
    };
    EXPECT_THROW(WriteOutputFile(folder / "file", throws), std::runtime_error);
    EXPECT_THROW(WriteOutputFile(folder / "file", breaks), ProgramError);
    EXPECT_EQ(ReadWholeFile(folder / "file"), "older");
    EXPECT_THROW(WriteOutputFile(folder / "fresh", breaks), ProgramError);
    EXPECT_EQ(folder.FileCount(), 1U);
}

TEST(OutputFile, DevicesAreWrittenDirectlyAndFoldersRefused) {
    const TemporaryFolder folder;
    folder.Write("file", "older");
    WriteNew("/dev/null");
    EXPECT_FALSE(fs::is_regular_file("/dev/null"));
    EXPECT_THROW(WriteNew("/dev/full"), ProgramError);
    EXPECT_THROW(WriteNew(folder / ""), ProgramError);
    EXPECT_THROW(WriteNew(folder / "missing/file"), ProgramError);
    EXPECT_THROW(WriteNew(folder / "file/below"), ProgramError);
    EXPECT_EQ(folder.FileCount(), 1U);
}

}  // namespace
}  // namespace tarn::program
