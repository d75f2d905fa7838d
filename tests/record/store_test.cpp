#include "record/assembly.h"
#include "support/foreign_classes.h"
#include "support/owned_scene.h"
#include "support/scene_content.h"
#include "tools/temporary_folder.h"

#include "tarn/exception.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <array>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

namespace tarn {
namespace {

using program::TemporaryFolder;
using test::Assembly;
using test::ContentOf;
using test::FileText;

class ListOfForeigners final
    : public test::ForeignConfigurationOf<ICollisionConfiguration, bool, CollisionPair> {
public:
    void EnableAllCouples() override {}
    std::vector<ICollisionBody*> RetrieveElements() const override { return {&body_}; }

private:
    mutable test::ForeignBody body_{12};
};

template <typename Configuration>
std::string StoredText(Configuration& configuration) {
    const TemporaryFolder folder;
    make_unique_recorder()->Store(&configuration, folder / "scene.xml");
    return FileText(folder / "scene.xml");
}

Assembly SmallAssembly() {
    Assembly assembly;
    const TriangleData left = {0.1, -0.0, 0, 1, 0, 0, 0, 1e300, 0};
    const TriangleData right = {10, 0, 0, 11.5, 0, 0, 10, 1, 1e-9};
    assembly.Add(4294967295, 5, "<\"tag\" & 'more'>\n", 1, {{left}, {right}});
    assembly.Add(1, 0xffffffffffffffffU, "\xe4", 0, {});
    assembly.Add(2, 3, "b", 7, {{left}});
    return assembly;
}

constexpr const char* kElementsText = R"(    <owners>
        <owner id="3"/>
        <owner id="5"/>
        <owner id="-1"/>
    </owners>
    <elements>
        <element owner="5" name="&lt;&quot;tag&quot; &amp; &apos;more&apos;&gt;&#10;" id="4294967295" leaves="1" depth="1">
            <stl count="2">
                <triangle x0="0.10000000000000001" y0="-0" z0="0" x1="1" y1="0" z1="0" x2="0" y2="1.0000000000000001e+300" z2="0"/>
                <triangle x0="10" y0="0" z0="0" x1="11.5" y1="0" z1="0" x2="10" y2="1" z2="1.0000000000000001e-09"/>
            </stl>
        </element>
        <element owner="-1" name=")"
                                      "\xe4"
                                      R"(" id="1" leaves="0" depth="0">
            <stl count="0"/>
        </element>
        <element owner="3" name="b" id="2" leaves="7" depth="0">
            <stl count="1">
                <triangle x0="0.10000000000000001" y0="-0" z0="0" x1="1" y1="0" z1="0" x2="0" y2="1.0000000000000001e+300" z2="0"/>
            </stl>
        </element>
    </elements>
)";

TEST(Store, WritesTheSceneLiterally) {
    const Assembly assembly = SmallAssembly();
    assembly.collisions->ConfigCouple(assembly.bodies[0].get(), assembly.bodies[2].get(), true);
    assembly.clearances->ConfigCouple(assembly.bodies[0].get(), assembly.bodies[2].get(), {true, 0.1});
    EXPECT_EQ(StoredText(*assembly.collisions), std::string("<scene type=\"collision\">\n") + kElementsText +
                                                    "    <configuration>\n"
                                                    "        <pair first=\"4294967295\" second=\"2\"/>\n"
                                                    "    </configuration>\n</scene>\n");
    EXPECT_EQ(StoredText(*assembly.clearances),
              std::string("<scene type=\"proximity\">\n") + kElementsText +
                  "    <configuration>\n"
                  "        <pair first=\"4294967295\" second=\"2\" clearance=\"0.10000000000000001\"/>\n"
                  "    </configuration>\n</scene>\n");
    EXPECT_EQ(StoredText(*make_unique_configuration()),
              "<scene type=\"collision\">\n    <owners/>\n    <elements/>\n    <configuration/>\n</scene>\n");
    ListOfForeigners foreigners;
    EXPECT_NE(StoredText(foreigners)
                  .find("        <element owner=\"0\" name=\"foreign\" id=\"12\" leaves=\"0\" depth=\"0\">\n"
                        "            <stl>Error while retrieving triangles information</stl>\n"),
              std::string::npos);
}

template <typename Configuration>
void ExpectRefusal(Configuration& configuration, const std::string& message) {
    const TemporaryFolder folder;
    const std::string path = folder.Write("scene.xml", "older");
    try {
        make_unique_recorder()->Store(&configuration, path);
        ADD_FAILURE() << "stored: " << message;
    } catch (const InvalidArgumentException& error) {
        EXPECT_EQ(error.message(), message);
    }
    EXPECT_EQ(FileText(path), "older");
}

TEST(Store, RefusesWhatCouldNotBeReadAgain) {
    for (char character = 0; character < ' '; ++character) {
        if (character == '\t' || character == '\n' || character == '\r') continue;
        Assembly assembly;
        const std::string name = std::string("a") + character;
        assembly.Add(3, 1, name, 1, {});
        ExpectRefusal(
            *assembly.collisions,
            "Body '" + name +
                "' (id 3) cannot be stored: its name has control characters that XML does not carry");
    }
    Assembly endless;
    endless.Add(4, 1, "endless", 1, {{{0, 0, 0, 1, 0, 0, std::numeric_limits<double>::infinity(), 1, 0}}});
    ExpectRefusal(
        *endless.clearances,
        "Body 'endless' (id 4) cannot be stored: it has a triangle whose coordinates are not finite");
    Assembly negative;
    negative.Add(5, 1, "a", 1, {});
    negative.Add(6, 1, "b", 1, {});
    negative.clearances->ConfigAllCouples({true, -1e-300});
    std::vector<ProximityPair> couples;
    const std::string first = negative.clearances->RetrieveCouples(couples).at(0).First->GetId() == 5
                                  ? "Body 'a' (id 5)"
                                  : "Body 'b' (id 6)";
    ExpectRefusal(*negative.clearances,
                  first + " cannot be stored: it is in a couple with a negative clearance");
    EXPECT_THROW(make_unique_recorder()->Store(static_cast<ICollisionConfiguration*>(nullptr), "/dev/null"),
                 NullPointerException);
    EXPECT_THROW(make_unique_recorder()->Store(static_cast<IProximityConfiguration*>(nullptr), "/dev/null"),
                 NullPointerException);
}

template <typename Configuration>
void ExpectSaveError(Configuration& configuration, const std::string& path, const std::string& cause) {
    try {
        make_unique_recorder()->Store(&configuration, path);
        ADD_FAILURE() << path << " was written";
    } catch (const RuntimeException& error) {
        EXPECT_EQ(error.message(), "Error=XML_ERROR_FILE_COULD_NOT_BE_OPENED ErrorID=4: filename=" + path +
                                       " (" + cause + ")");
    }
}

/// While it lives, writing a file beyond so many bytes fails, as on a full disk.
class FileSizeLimit final {
public:
    explicit FileSizeLimit(rlim_t bytes) : older_handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &older_);
        const rlimit limit{bytes, older_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &older_);
        std::signal(SIGXFSZ, older_handler_);
    }

private:
    rlimit older_{};
    void (*older_handler_)(int);
};

TEST(Store, NoticesThatAFileWasNotWrittenWhole) {
    const TemporaryFolder folder;
    const std::string file = folder.Write("file", "older");
    Assembly assembly;
    assembly.Add(1, 1, "ball", 5, {test::BallMesh(1, 20)});
    ExpectSaveError(*assembly.collisions, "/dev/full", "No space left on device");
    ExpectSaveError(*assembly.clearances, folder / "missing/scene.xml", "No such file or directory");
    {
        // Cut in the middle, and where nothing is left to write but the last buffer.
        const auto whole = static_cast<rlim_t>(StoredText(*assembly.collisions).size());
        for (const rlim_t bytes : {rlim_t{0}, whole / 2, whole - 1}) {
            const FileSizeLimit limit(bytes);
            ExpectSaveError(*assembly.collisions, file, "File too large");
        }
    }
    EXPECT_EQ(FileText(file), "older");
    EXPECT_EQ(folder.FileCount(), 1U);
}

TEST(Store, NeitherWritesNorReadsNumbersInTheWayOfTheLocale) {
    const Assembly assembly = SmallAssembly();
    assembly.clearances->ConfigAllCouples({true, 0.5});
    const std::string expected = StoredText(*assembly.clearances);
    const std::string older = std::setlocale(LC_ALL, nullptr);
    setenv("LOCPATH", TARN_LOCALES, 1);
    const bool is_there = std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
    unsetenv("LOCPATH");
    if (!is_there) GTEST_SKIP() << "no locale with a decimal comma";
    std::array<char, 8> text{};
    std::snprintf(text.data(), text.size(), "%.1f", 0.5);
    EXPECT_STREQ(text.data(), "0,5");

    const TemporaryFolder folder;
    const std::string path = folder / "scene.xml";
    make_unique_recorder()->Store(assembly.clearances.get(), path);
    EXPECT_EQ(FileText(path), expected);
    const auto again = test::RetrieveScene<IProximityConfiguration>(path);
    EXPECT_TRUE(ContentOf(*again).couples == ContentOf(*assembly.clearances).couples);
    EXPECT_TRUE(ContentOf(*again).bodies[0] == ContentOf(*assembly.clearances).bodies[0]);
    std::string comma = expected;
    comma.replace(comma.find("clearance=\"0.5"), 14, "clearance=\"0,5");
    EXPECT_THROW(test::RetrieveScene<IProximityConfiguration>(folder.Write("comma.xml", comma)),
                 InconsistentDataException);
    std::setlocale(LC_ALL, older.c_str());
}

}  // namespace
}  // namespace tarn
