#include "record/whole_file.h"

#include "tools/temporary_folder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <ostream>
#include <stdexcept>
#include <thread>

namespace tarn::details {
namespace {

namespace fs = std::filesystem;
using program::FileText;
using program::TemporaryFolder;

std::error_code WriteNew(const fs::path& target) {
    return WriteWholeFile(target, [](std::ostream& stream) { stream << "new"; });
}

TEST(WholeFile, TakesThePlaceOfAnOlderFileAndKeepsItsPermissions) {
    const TemporaryFolder folder;
    folder.Write("file", "older and longer");
    const fs::perms permissions = fs::perms::owner_read | fs::perms::owner_write | fs::perms::others_read;
    fs::permissions(folder / "file", permissions);
    EXPECT_FALSE(WriteNew(folder / "file"));
    EXPECT_EQ(FileText(folder / "file"), "new");
    EXPECT_EQ(fs::status(folder / "file").permissions(), permissions);
    EXPECT_EQ(folder.FileCount(), 1U);
}

TEST(WholeFile, SymbolicLinksStayAndTheirTargetsAreWritten) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "deep");
    fs::create_symlink("deep/file", folder / "link");
    fs::create_symlink("link", folder / "chain");
    for (const char* const older : {"", "older"}) {
        if (*older != '\0') folder.Write("deep/file", older);
        EXPECT_FALSE(WriteNew(folder / "chain"));
        EXPECT_EQ(FileText(folder / "deep/file"), "new");
        EXPECT_TRUE(fs::is_symlink(folder / "link") && fs::is_symlink(folder / "chain"));
    }
    fs::create_symlink("circle", folder / "circle");
    EXPECT_TRUE(WriteNew(folder / "circle"));
}

TEST(WholeFile, AFailureLeavesTheOlderFileAndNothingElse) {
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
    EXPECT_THROW((void)WriteWholeFile(folder / "file", throws), std::runtime_error);
    EXPECT_TRUE(WriteWholeFile(folder / "file", breaks));
    EXPECT_EQ(FileText(folder / "file"), "older");
    EXPECT_TRUE(WriteWholeFile(folder / "fresh", breaks));
    EXPECT_EQ(folder.FileCount(), 1U);
}

TEST(WholeFile, DevicesAndPipesAreWrittenDirectlyAndFoldersRefused) {
    const TemporaryFolder folder;
    folder.Write("file", "older");
    EXPECT_FALSE(WriteNew("/dev/null"));
    EXPECT_FALSE(fs::is_regular_file("/dev/null"));
    EXPECT_EQ(WriteNew("/dev/full"), std::errc::no_space_on_device);
    EXPECT_EQ(WriteNew(folder / ""), std::errc::is_a_directory);
    EXPECT_EQ(WriteNew(folder / "missing/file"), std::errc::no_such_file_or_directory);
    EXPECT_EQ(WriteNew(folder / "file/below"), std::errc::not_a_directory);
    EXPECT_EQ(folder.FileCount(), 1U);
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    std::string read;
    std::thread reader([&] { read = FileText(folder / "pipe"); });
    EXPECT_FALSE(WriteNew(folder / "pipe"));
    reader.join();
    EXPECT_EQ(read, "new");
}

/// Without the rights of root while it lives.
class Nobody final {
public:
    Nobody() : is_root_(geteuid() == 0) {
        if (is_root_) works_ = seteuid(65534) == 0;
    }
    Nobody(const Nobody&) = delete;
    Nobody& operator=(const Nobody&) = delete;
    ~Nobody() {
        if (is_root_ && works_) works_ = seteuid(0) == 0;
    }
    bool works() const { return works_; }

private:
    bool is_root_;
    bool works_ = true;
};

TEST(WholeFile, WhereAFolderTakesNoFileOnlyWritableOnesAreWritten) {
    const TemporaryFolder folder;
    folder.Write("protected", "older");
    folder.Write("writable", "older");
    fs::permissions(folder / "protected", fs::perms(0444));
    fs::permissions(folder / "writable", fs::perms(0666));
    fs::permissions(folder / "", fs::perms(0555));
    {
        const Nobody nobody;
        if (!nobody.works() || access((folder / "").c_str(), R_OK | X_OK) != 0)
            GTEST_SKIP() << "the temporary folder is not for everybody";
        EXPECT_EQ(WriteNew(folder / "fresh"), std::errc::permission_denied);
        EXPECT_EQ(WriteNew(folder / "protected"), std::errc::permission_denied);
        EXPECT_FALSE(WriteNew(folder / "writable"));
    }
    EXPECT_EQ(FileText(folder / "protected"), "older");
    EXPECT_EQ(FileText(folder / "writable"), "new");
    EXPECT_EQ(folder.FileCount(), 2U);
    fs::permissions(folder / "", fs::perms(0777));
    // A writable folder is no leave to replace what is protected.
    const Nobody nobody;
    EXPECT_EQ(WriteNew(folder / "protected"), std::errc::permission_denied);
}

}  // namespace
}  // namespace tarn::details
