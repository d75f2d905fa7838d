#include "couple_choice.h"

#include "name_pattern.h"
#include "readers/program_error.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace tarn::program {
namespace {

std::vector<tarn::CollisionPair> CouplesOf(const tarn::ICollisionConfiguration& configuration) {
    std::vector<tarn::CollisionPair> couples;
    configuration.RetrieveCouples(couples);
    return couples;
}

std::vector<tarn::ProximityPair> CouplesOf(const tarn::IProximityConfiguration& configuration) {
    std::vector<tarn::ProximityPair> couples;
    configuration.RetrieveCouples(couples);
    return couples;
}

/// Serves both kinds of configuration. They have the same operations and differ in what they are told of a
/// couple, here `Setting`.
template <typename Configuration, typename Setting>
class CoupleChooser final {
public:
    CoupleChooser(Configuration& configuration,
                  Setting enabled,
                  Setting disabled,
                  Assembly& assembly,
                  const Model& model)
        : configuration_(configuration),
          enabled_(enabled),
          disabled_(disabled),
          assembly_(assembly),
          parts_(model.parts),
          owners_(model.owners) {}

    std::vector<std::string> Enable(const CoupleChoice& choice) {
        for (std::size_t part = 0; part < parts_.size(); ++part) {
            configuration_.AddElement(&assembly_.body(part));
        }
        if (choice.against) {
            EnableAgainst(*choice.against);
        } else {
            EnableScope(choice.scope);
        }
        std::vector<std::string> warnings;
        for (const auto& [first, second] : choice.ignored) {
            for (std::string& warning : Ignore(first, second)) warnings.push_back(std::move(warning));
        }
        return warnings;
    }

private:
    void EnableScope(CoupleScope scope) {
        if (scope != CoupleScope::WithinOwners) configuration_.ConfigAllCouples(enabled_);
        if (scope == CoupleScope::All) return;
        for (std::size_t owner = 0; owner < owners_.size(); ++owner) {
            configuration_.ConfigIntraOwner(owner, scope == CoupleScope::WithinOwners ? enabled_ : disabled_);
        }
    }

    void EnableAgainst(const std::string& text) {
        const std::vector<bool> is_matched = MatchedParts(text);
        if (!Any(is_matched))
            throw ProgramError(fmt::format("--against: no part or owner is named '{}'", text));
        for (std::size_t part = 0; part < parts_.size(); ++part) {
            if (is_matched[part]) {
                configuration_.ConfigElementAgainstAll(&assembly_.body(part), enabled_);
            }
        }
    }

    /// Returns warnings.
    std::vector<std::string> Ignore(const std::string& first_text, const std::string& second_text) {
        const std::vector<bool> is_first = MatchedParts(first_text);
        const std::vector<bool> is_second = MatchedParts(second_text);
        for (const auto& couple : CouplesOf(configuration_)) {
            const std::size_t first = PartOf(*couple.First);
            const std::size_t second = PartOf(*couple.Second);
            if ((is_first[first] && is_second[second]) || (is_first[second] && is_second[first])) {
                configuration_.ConfigCouple(couple.First, couple.Second, disabled_);
            }
        }
        std::vector<std::string> warnings;
        for (const auto& [text, is_matched] :
             {std::pair(&first_text, &is_first), {&second_text, &is_second}}) {
            if (!Any(*is_matched)) warnings.push_back(fmt::format("no part or owner is named '{}'", *text));
        }
        return warnings;
    }

    std::vector<bool> MatchedParts(const std::string& text) const {
        const NamePattern pattern(text);
        std::vector<bool> owner_is_matched;
        for (const std::string& owner : owners_) owner_is_matched.push_back(pattern.Matches(owner));
        std::vector<bool> is_matched;
        is_matched.reserve(parts_.size());
        for (const Part& part : parts_) {
            is_matched.push_back(owner_is_matched[part.owner] || pattern.Matches(part.name));
        }
        return is_matched;
    }

    static bool Any(const std::vector<bool>& values) {
        return std::ranges::find(values, true) != values.end();
    }

    Configuration& configuration_;
    Setting enabled_;
    Setting disabled_;
    Assembly& assembly_;
    const std::vector<Part>& parts_;
    const std::vector<std::string>& owners_;
};

}  // namespace

std::vector<std::string> EnableCouples(tarn::ICollisionConfiguration& configuration,
                                       Assembly& assembly,
                                       const Model& model,
                                       const CoupleChoice& choice) {
    return CoupleChooser(configuration, true, false, assembly, model).Enable(choice);
}

std::vector<std::string> EnableCouples(tarn::IProximityConfiguration& configuration,
                                       double clearance,
                                       Assembly& assembly,
                                       const Model& model,
                                       const CoupleChoice& choice) {
    const tarn::ProximitySetting enabled{true, clearance};
    const tarn::ProximitySetting disabled{false, clearance};
    return CoupleChooser(configuration, enabled, disabled, assembly, model).Enable(choice);
}

}  // namespace tarn::program
