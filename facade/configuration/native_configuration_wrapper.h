#pragma once

#include "configuration/native_configuration.h"
#include "ostrel/quarrix/exceptions.h"

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace Ostrel::Quarrix::Collisions {

/// What the wrappers of both kinds have in common: their lives, and the operations that are told no setting.
/// Null configurations throw `ArgumentNullException`, and all others but the wrappers
/// `InvalidCastException`.
template <typename Kind>
class NativeConfigurationWrapper : public Kind::PublicInterface {
public:
    using Configuration = NativeConfiguration<Kind>;
    using Operation = typename Configuration::Operation;
    using Interface = typename Kind::PublicInterface;
    using typename Interface::Element;
    using typename Interface::Owner;

    void Dispose() override { configuration_.reset(); }

    void RemoveElement(const Element& element) override { Live()->RemoveElement(element); }
    void RemoveAllElements() override { Live()->RemoveAllElements(); }
    void AppendDistinctConfiguration(const std::shared_ptr<Interface>& configuration) override {
        const Operation mine = Live();
        const Operation other = LiveOf(configuration);
        mine->Append(*other);
    }
    void Swap(const std::shared_ptr<Interface>& configuration) override {
        const Operation mine = Live();
        const Operation other = LiveOf(configuration);
        if (&*other != &*mine) mine->Swap(*other);
    }
    std::shared_ptr<Interface> Clone() const override {
        return std::make_shared<typename Kind::Wrapper>(*Live());
    }
    /// Nothing is dropped before: this tells how things stand.
    std::vector<Element> RetrieveElements() const override { return RequireConfiguration()->Elements(); }
    std::int32_t RetrieveCouplesCount() const override {
        return static_cast<std::int32_t>(Live()->Pairs().size());
    }
    void DisableAllChecks(const Owner& owner) override { Live()->ConfigIntraOwner(owner, Kind::kDisabled); }
    void DisableAllChecks() override { Live()->ConfigAllCouples(Kind::kDisabled); }

    /// Begins an operation. Throws `ObjectDisposedException` after disposal.
    Operation Live() const { return Operation(RequireConfiguration()); }

protected:
    explicit NativeConfigurationWrapper(std::shared_ptr<Configuration> configuration)
        : configuration_(std::move(configuration)) {}

    static Operation LiveOf(const std::shared_ptr<Interface>& configuration) {
        if (!configuration) throw ArgumentNullException("configuration");
        const auto* wrapper = dynamic_cast<const NativeConfigurationWrapper*>(configuration.get());
        if (!wrapper) throw InvalidCastException("Can't cast 'configuration' parameter to internal class.");
        return wrapper->Live();
    }

private:
    std::shared_ptr<Configuration> RequireConfiguration() const {
        if (!configuration_) throw ObjectDisposedException("");
        return configuration_;
    }

    /// Null after disposal.
    std::shared_ptr<Configuration> configuration_;
};

}  // namespace Ostrel::Quarrix::Collisions
