#include "ostrel/quarrix/collisions.h"

#include "tarn/tarn.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <regex>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace Ostrel::Quarrix::Collisions::test {
namespace {

/// What the public headers say of names, read line by line.
struct Declarations {
    std::set<std::string> types;      ///< defined, not only announced
    std::set<std::string> functions;  ///< exported, outside classes
    std::set<std::string> hidden;     ///< private member functions, as "Class::name"
    std::set<std::string> errors;     ///< classes of the object model's exceptions

    bool Know(const std::string& name) const { return types.contains(name) || functions.contains(name); }
};

void Read(const std::filesystem::path& header, Declarations& declarations) {
    static const std::regex type(
        R"(^\s*(?:class|struct|enum class) (?:(?:TARN|QUARRIX)_API )?(\w+)(?:[^;]*$|.*\{))");
    static const std::regex function(R"(^(?:\[\[nodiscard\]\] )?TARN_API .*?(\w+)\()");
    static const std::regex member(R"((\w+)\()");
    std::ifstream stream(header);
    std::string current;
    std::string access;
    std::smatch match;
    for (std::string line; std::getline(stream, line);) {
        line = line.substr(0, line.find("//"));
        if (std::regex_search(line, match, type)) {
            declarations.types.insert(match[1]);
            if (line.find("class ") == 0) current = match[1];
            if (header.filename() == "exceptions.h") declarations.errors.insert(match[1]);
            access.clear();
        }
        if (line == "private:" || line == "public:" || line == "protected:") access = line;
        if (line == "};") access.clear();
        if (std::regex_search(line, match, function)) declarations.functions.insert(match[1]);
        if (access == "private:" && std::regex_search(line, match, member) && match[1] != current)
            declarations.hidden.insert(current + "::" + match[1].str());
    }
}

Declarations PublicDeclarations() {
    Declarations declarations;
    for (const char* folder : {TARN_PUBLIC_HEADERS, QUARRIX_PUBLIC_HEADERS}) {
        for (const auto& file : std::filesystem::directory_iterator(folder)) Read(file.path(), declarations);
    }
    return declarations;
}

/// The demangled names of all that the library defines for others.
std::vector<std::string> ExportedSymbols() {
    const std::string command = std::string(NM_PROGRAM) + " -D --defined-only -C " + QUARRIX_LIBRARY;
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::vector<std::string> symbols;
    std::array<char, 4096> line{};
    while (pipe && std::fgets(line.data(), line.size(), pipe.get())) {
        // "0000000000012345 T name\n"
        const std::string text = line.data();
        const std::size_t name = text.find(' ', text.find(' ') + 1) + 1;
        symbols.push_back(text.substr(name, text.find('\n') - name));
    }
    return symbols;
}

TEST(Exports, AreWhatThePublicHeadersDeclareAndNothingElse) {
    const Declarations declared = PublicDeclarations();
    const std::regex wrapping("^(typeinfo (name )?for |vtable for |VTT for |(non-)?virtual thunk to )");
    const std::regex start(R"(^(?:tarn|Ostrel::Quarrix::Collisions)::(\w+)(?:<.*>)?(?:::(\w+))?)");
    const std::regex mention(R"((?:tarn|Ostrel::Quarrix::Collisions)::(\w+))");
    std::set<std::string> seen;
    for (const std::string& symbol : ExportedSymbols()) {
        const std::string name = std::regex_replace(symbol, wrapping, "");
        std::smatch match;
        ASSERT_TRUE(std::regex_search(name, match, start)) << symbol;
        EXPECT_FALSE(declared.hidden.contains(match[1].str() + "::" + match[2].str())) << symbol;
        seen.insert(match[1]);
        // Internal classes must not be named anywhere, arguments and template arguments included.
        for (std::sregex_iterator each(name.begin(), name.end(), mention), end; each != end; ++each)
            EXPECT_TRUE(declared.Know((*each)[1])) << (*each)[1] << " in " << symbol;
    }
    EXPECT_GT(declared.functions.size(), 20U);
    for (const std::string& function : declared.functions) EXPECT_TRUE(seen.contains(function)) << function;
    EXPECT_EQ(declared.errors.size(), 11U);
    for (const std::string& error : declared.errors) EXPECT_TRUE(seen.contains(error)) << error;
    EXPECT_TRUE(declared.hidden.contains("CollisionDetector::Native"));
}

/// Fails while the library reads it.
class UnreadableElement final : public ICollisionElement {
public:
    std::string get_Name() const override { return "unreadable"; }
    std::shared_ptr<ICollisionElementOwner> get_Owner() const override { return nullptr; }
    std::array<double, 16> get_Position() const override { return {}; }
    std::array<double, 16> get_PositionFromBase() const override { return {}; }
    Event& get_PositionChanged() override { return event_; }
    Event& get_CollisionElementChanged() override { return event_; }
    Event& get_FromBasePositionChanged() override { return event_; }
    void Load(const TriangleCallback&) const override { throw std::domain_error("no mesh today"); }

private:
    Event event_;
};

TEST(Exports, ExceptionsAreCaughtAcrossTheLibrarysBorder) {
    CollisionFactory factory;
    const auto configuration = factory.MakeCollisionConfiguration();
    const auto add = [&](const std::shared_ptr<ICollisionConfigurationElement>& element) {
        configuration->AddElement(element, CheckCoupleConfiguration::Intersection, 0.0);
    };
    EXPECT_THROW(add(nullptr), ArgumentNullException);
    EXPECT_THROW(add(nullptr), ArgumentException);
    EXPECT_THROW(add(nullptr), Exception);
    EXPECT_THROW(add(nullptr), std::exception);
    EXPECT_THROW(add(std::make_shared<UnreadableElement>()), std::domain_error);
    const auto detector = factory.MakeCollisionDetector();
    EXPECT_THROW(detector->Retrieve("/nowhere/at/all.xml"), tarn::RuntimeException);
    EXPECT_THROW(detector->Retrieve("/nowhere/at/all.xml"), tarn::Exception);
    EXPECT_THROW(configuration->Swap(std::make_shared<CollisionConfiguration>()), InvalidCastException);
    configuration->Dispose();
    EXPECT_THROW(configuration->RetrieveElements(), ObjectDisposedException);
    EXPECT_THROW(configuration->RetrieveElements(), InvalidOperationException);
    const std::shared_ptr<Object> object = configuration;
    EXPECT_TRUE(std::dynamic_pointer_cast<ICollisionConfiguration>(object));
    EXPECT_FALSE(std::dynamic_pointer_cast<IProximityConfiguration>(object));
}

}  // namespace
}  // namespace Ostrel::Quarrix::Collisions::test
