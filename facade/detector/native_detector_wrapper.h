#pragma once

#include "detector/detector_arguments.h"
#include "ostrel/quarrix/exceptions.h"

#include "tarn/factory.h"

#include <iosfwd>
#include <memory>
#include <string>
#include <utility>

namespace Ostrel::Quarrix::Collisions {

/// What the detectors of both kinds have in common. `PublicInterface` is what callers see, `Native` the
/// engine's detector. `NativeOf` finds the wrapper of a configuration; it throws `NullReferenceException` for
/// null and for a class that is not of this library.
template <typename PublicInterface, typename Configuration, typename Native>
class NativeDetectorWrapper : public PublicInterface {
public:
    void Dispose() override { detector_.reset(); }

    using PublicInterface::Check;
    bool Check(const std::shared_ptr<Configuration>& configuration) override {
        Native& detector = Live();
        return detector.Check(NativeOf(configuration)->Live()->Native());
    }
    void Dump(const std::shared_ptr<Configuration>& configuration, std::ostream* writer) override {
        Native& detector = Live();
        DumpToWriter(writer, configuration.get(), [&](std::ostream& stream) {
            detector.Dump(NativeOf(configuration)->Live()->Native(), tarn::DumpType::Triangles, stream);
        });
    }
    void Dump(const std::shared_ptr<Configuration>& configuration, Text filePath) override {
        Native& detector = Live();
        const std::string path = RequirePath(filePath, configuration.get());
        // Before the file is opened: an older one is not lost to a configuration that cannot be dumped.
        const auto operation = NativeOf(configuration)->Live();
        DumpToFile(path, [&](std::ostream& stream) {
            detector.Dump(operation->Native(), tarn::DumpType::Triangles, stream);
        });
    }
    void Store(const std::shared_ptr<Configuration>& configuration, Text filePath) override {
        Live();
        const std::string path = RequirePath(filePath, configuration.get());
        tarn::make_unique_recorder()->Store(&NativeOf(configuration)->Live()->Native(), path);
    }

protected:
    explicit NativeDetectorWrapper(std::unique_ptr<Native> detector) : detector_(std::move(detector)) {}

    /// Throws `ObjectDisposedException` after disposal.
    Native& Live() const {
        if (!detector_) throw ObjectDisposedException("");
        return *detector_;
    }

private:
    /// Null after disposal.
    std::unique_ptr<Native> detector_;
};

}  // namespace Ostrel::Quarrix::Collisions
