#include "configuration/element_list.h"

#include <algorithm>
#include <unordered_set>

namespace Ostrel::Quarrix::Collisions {

namespace {

using Element = std::shared_ptr<ICollisionConfigurationElement>;

struct Hash {
    std::size_t operator()(const Element& element) const {
        return static_cast<std::uint32_t>(element->GetHashCode());
    }
};
struct Equal {
    bool operator()(const Element& a, const Element& b) const { return a->Equals(b.get()); }
};

}  // namespace

std::vector<Element> DistinctElements(const Sequence<Element>& elements) {
    RequireNotNull(elements, "elements");
    std::vector<Element> distinct = elements.ToVector();
    if (std::ranges::find(distinct, nullptr) != distinct.end())
        throw ArgumentNullException("Got null ICollisionConfigurationElement in a enumeration.");
    std::unordered_set<Element, Hash, Equal> seen;
    std::erase_if(distinct, [&seen](const Element& element) { return !seen.insert(element).second; });
    return distinct;
}

}  // namespace Ostrel::Quarrix::Collisions
