#include "couple_choice.h"

#include "name_pattern.h"
#include "readers/program_error.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>

namespace tarn::program {
namespace {

class CoupleChooser {
public:
    CoupleChooser(Assembly& assembly, const std::vector<Part>& parts, const std::vector<std::string>& owners)
        : assembly_(assembly),
          parts_(parts),
          owners_(owners) {}

    void EnableScope(CoupleScope scope) {
        tarn::ICollisionConfiguration& configuration = assembly_.configuration();
        if (scope != CoupleScope::WithinOwners) configuration.EnableAllCouples();
        if (scope == CoupleScope::All) return;
        for (std::size_t owner = 0; owner < owners_.size(); ++owner) {
            configuration.ConfigIntraOwner(owner, scope == CoupleScope::WithinOwners);
        }
    }

    void EnableAgainst(const std::string& text) {
        const std::vector<bool> is_matched = MatchedParts(text);
        if (!Any(is_matched))
            throw ProgramError(fmt::format("--against: no part or owner is named '{}'", text));
        for (std::size_t part = 0; part < parts_.size(); ++part) {
            if (is_matched[part]) {
                assembly_.configuration().ConfigElementAgainstAll(&assembly_.body(part), true);
            }
        }
    }

    /// Returns warnings.
    std::vector<std::string> Ignore(const std::string& first_text, const std::string& second_text) {
        const std::vector<bool> is_first = MatchedParts(first_text);
        const std::vector<bool> is_second = MatchedParts(second_text);
        std::vector<tarn::CollisionPair> couples;
        for (const tarn::CollisionPair& couple : assembly_.configuration().RetrieveCouples(couples)) {
            const std::size_t first = PartOf(*couple.First);
            const std::size_t second = PartOf(*couple.Second);
            if ((is_first[first] && is_second[second]) || (is_first[second] && is_second[first])) {
                assembly_.configuration().ConfigCouple(couple.First, couple.Second, false);
            }
        }
        std::vector<std::string> warnings;
        for (const auto& [text, is_matched] :
             {std::pair(&first_text, &is_first), {&second_text, &is_second}}) {
            if (!Any(*is_matched)) warnings.push_back(fmt::format("no part or owner is named '{}'", *text));
        }
        return warnings;
    }

private:
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

    Assembly& assembly_;
    const std::vector<Part>& parts_;
    const std::vector<std::string>& owners_;
};

}  // namespace

std::vector<std::string> EnableCouples(Assembly& assembly,
                                       const std::vector<Part>& parts,
                                       const std::vector<std::string>& owners,
                                       const CoupleChoice& choice) {
    CoupleChooser chooser(assembly, parts, owners);
    if (choice.against) {
        chooser.EnableAgainst(*choice.against);
    } else {
        chooser.EnableScope(choice.scope);
    }
    std::vector<std::string> warnings;
    for (const auto& [first, second] : choice.ignored) {
        for (std::string& warning : chooser.Ignore(first, second)) warnings.push_back(std::move(warning));
    }
    return warnings;
}

}  // namespace tarn::program
