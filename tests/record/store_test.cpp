#include "support/foreign_classes.h"
#include "support/owned_scene.h"
#include "support/scene.h"
#include "support/scene_content.h"
#include "tools/temporary_folder.h"

#include "tarn/exception.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

namespace tarn {
namespace {

using program::FileText;
using program::TemporaryFolder;
using test::ContentOf;
using test::Scene;

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

struct SmallScene : Scene {
    SmallScene() {
        ICollisionElement* const left = AddElement({{0.1, -0.0, 0, 1, 0, 0, 0, 1e300, 0}});
        ICollisionElement* const right = AddElement({{10, 0, 0, 11.5, 0, 0, 10, 1, 1e-9}});
        Add(4294967295, 5, "<\"tag\" & 'more'>\n", 1, {left, right});
        Add(1, 0xffffffffffffffffU, "\xe4", 0, {});
        Add(2, 3, "b", 7, {left});
        Configuration().ConfigCouple(Bodies()[0].get(), Bodies()[2].get(), true);
        Clearances().ConfigCouple(Bodies()[0].get(), Bodies()[2].get(), {true, 0.1});
    }
};

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

std::string SmallSceneText(const std::string& type, const std::string& clearance) {
    return "<scene type=\"" + type + "\">\n" + kElementsText +
           "    <configuration>\n        <pair first=\"4294967295\" second=\"2\"" + clearance +
           "/>\n    </configuration>\n</scene>\n";
}

TEST(Store, WritesTheSceneLiterally) {
    const SmallScene scene;
    EXPECT_EQ(StoredText(scene.Configuration()), SmallSceneText("collision", ""));
    EXPECT_EQ(StoredText(scene.Clearances()),
              SmallSceneText("proximity", " clearance=\"0.10000000000000001\""));
    EXPECT_EQ(StoredText(*make_unique_configuration()),
              "<scene type=\"collision\">\n    <owners/>\n    <elements/>\n    <configuration/>\n</scene>\n");
    ListOfForeigners foreigners;
    EXPECT_NE(StoredText(foreigners)
                  .find("        <element owner=\"0\" name=\"foreign\" id=\"12\" leaves=\"0\" depth=\"0\">\n"
                        "            <stl>Error while retrieving triangles information</stl>\n"),
              std::string::npos);
}

/// Storing must fail with this message and leave what was there.
template <typename Error, typename Configuration>
void ExpectRefusal(Configuration& configuration, const std::string& path, const std::string& message) {
    try {
        make_unique_recorder()->Store(&configuration, path);
        ADD_FAILURE() << "stored: " << message;
    } catch (const Error& error) {
        EXPECT_EQ(error.message(), message);
    }
}

TEST(Store, RefusesWhatCouldNotBeReadAgain) {
    const TemporaryFolder folder;
    const std::string path = folder.Write("scene.xml", "older");
    const auto expect = [&](auto& configuration, const std::string& body, const std::string& fault) {
        ExpectRefusal<InvalidArgumentException>(configuration, path,
                                                "Body '" + body + " cannot be stored: " + fault);
        EXPECT_EQ(FileText(path), "older");
    };
    for (char character = 0; character < ' '; ++character) {
        if (character == '\t' || character == '\n' || character == '\r') continue;
        const std::string name = std::string("a") + character;
        Scene scene;
        scene.Add(3, 1, name, 1, {});
        expect(scene.Configuration(), name + "' (id 3)",
               "its name has control characters that XML does not carry");
    }
    Scene endless;
    endless.AddBody({{0, 0, 0, 1, 0, 0, std::numeric_limits<double>::infinity(), 1, 0}});
    expect(endless.Clearances(), "body 1' (id 1)", "it has a triangle whose coordinates are not finite");
    Scene negative;
    details::CollisionBody* const body = negative.AddBody(test::Mesh());
    negative.Clearances().AddElement(negative.AddBody(test::Mesh()), {true, -1e-300});
    std::vector<ProximityPair> couples;
    ASSERT_EQ(negative.Clearances().RetrieveCouples(couples, body).size(), 1U);
    expect(negative.Clearances(),
           couples[0].First->GetName() + "' (id " + std::to_string(couples[0].First->GetId()) + ")",
           "it is in a couple with a negative clearance");
    EXPECT_THROW(make_unique_recorder()->Store(static_cast<ICollisionConfiguration*>(nullptr), "/dev/null"),
                 NullPointerException);
    EXPECT_THROW(make_unique_recorder()->Store(static_cast<IProximityConfiguration*>(nullptr), "/dev/null"),
                 NullPointerException);
}

TEST(Store, NoticesThatAFileWasNotWrittenWhole) {
    const TemporaryFolder folder;
    const std::string file = folder.Write("file", "older");
    Scene scene;
    scene.AddBody(test::BallMesh(1, 20));
    const auto expect = [](auto& configuration, const std::string& path, const std::string& cause) {
        ExpectRefusal<RuntimeException>(
            configuration, path,
            "Error=XML_ERROR_FILE_COULD_NOT_BE_OPENED ErrorID=4: filename=" + path + " (" + cause + ")");
    };
    expect(scene.Configuration(), "/dev/full", "No space left on device");
    expect(scene.Clearances(), folder.Path("missing/scene.xml"), "No such file or directory");
    expect(scene.Clearances(), file + "/below", "Not a directory");
    EXPECT_EQ(FileText(file), "older");
    EXPECT_EQ(folder.FileCount(), 1U);
}

TEST(Store, NeitherWritesNorReadsNumbersInTheWayOfTheLocale) {
    const SmallScene scene;
    const std::string expected = StoredText(scene.Clearances());
    const std::string older = std::setlocale(LC_ALL, nullptr);
    setenv("LOCPATH", TARN_LOCALES, 1);
    const bool is_there = std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
    unsetenv("LOCPATH");
    if (!is_there) GTEST_SKIP() << "no locale with a decimal comma";
    ASSERT_EQ(std::localeconv()->decimal_point, std::string(","));

    EXPECT_EQ(StoredText(scene.Clearances()), expected);
    const TemporaryFolder folder;
    const auto again = test::RetrieveScene<IProximityConfiguration>(folder.Write("scene.xml", expected));
    EXPECT_TRUE(ContentOf(*again).couples == ContentOf(scene.Clearances()).couples);
    EXPECT_TRUE(ContentOf(*again).bodies[0] == ContentOf(scene.Clearances()).bodies[0]);
    std::string comma = expected;
    comma.replace(comma.find("clearance=\"0.1"), 14, "clearance=\"0,1");
    EXPECT_THROW(test::RetrieveScene<IProximityConfiguration>(folder.Write("comma.xml", comma)),
                 InconsistentDataException);
    std::setlocale(LC_ALL, older.c_str());
}

}  // namespace
}  // namespace tarn
