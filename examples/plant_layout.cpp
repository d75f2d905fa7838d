#include "ostrel/quarrix/collisions.h"

#include <filesystem>
#include <iostream>

using namespace Ostrel::Quarrix::Collisions;

namespace {

class Machine final : public ICollisionElementOwner {
public:
    std::shared_ptr<ICollisionElementOwner> get_Parent() const override { return nullptr; }
};

// A part of the program's own model: here a box that can be moved.
class Part final : public ICollisionElement {
public:
    Part(std::string name, std::array<double, 3> size, std::shared_ptr<ICollisionElementOwner> owner)
        : name_(std::move(name)),
          size_(size),
          owner_(std::move(owner)) {}

    void MoveTo(double x, double y, double z) {
        position_ = {1, 0, 0, x, 0, 1, 0, y, 0, 0, 1, z, 0, 0, 0, 1};
        position_changed_.raise(this);  // all configurations follow
    }

    std::string get_Name() const override { return name_; }
    std::shared_ptr<ICollisionElementOwner> get_Owner() const override { return owner_; }
    std::array<double, 16> get_Position() const override { return position_; }
    std::array<double, 16> get_PositionFromBase() const override { return position_; }
    Event& get_PositionChanged() override { return position_changed_; }
    Event& get_CollisionElementChanged() override { return shape_changed_; }
    Event& get_FromBasePositionChanged() override { return base_changed_; }
    // Two triangles for each of the six sides.
    void Load(const TriangleCallback& callback) const override {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            for (const double side : {0.0, size_[axis]}) {
                const auto corner = [&](bool right, bool up) {
                    Vertex vertex{};
                    vertex[axis] = side;
                    vertex[(axis + 1) % 3] = right ? size_[(axis + 1) % 3] : 0.0;
                    vertex[(axis + 2) % 3] = up ? size_[(axis + 2) % 3] : 0.0;
                    return vertex;
                };
                callback(corner(false, false), corner(true, false), corner(true, true));
                callback(corner(false, false), corner(true, true), corner(false, true));
            }
        }
    }

private:
    std::string name_;
    std::array<double, 3> size_;
    std::shared_ptr<ICollisionElementOwner> owner_;
    std::array<double, 16> position_{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    Event position_changed_, shape_changed_, base_changed_;
};

}  // namespace

int main() {
    const auto robot = std::make_shared<Machine>();
    const auto cell = std::make_shared<Machine>();
    const auto arm = std::make_shared<Part>("arm", std::array{600.0, 80.0, 80.0}, robot);
    const auto base = std::make_shared<Part>("base", std::array{200.0, 200.0, 300.0}, robot);
    const auto fence = std::make_shared<Part>("fence", std::array{20.0, 2000.0, 1800.0}, cell);
    arm->MoveTo(100, 60, 300);
    fence->MoveTo(650, -1000, 0);

    // Interference: the robot against the cell, and not against itself.
    CollisionDetector detector;
    const auto configuration = detector.CreateNewConfiguration();
    configuration->AddElements({arm, base, fence}, CheckCoupleConfiguration::None, 0.0);
    configuration->ConfigInterOwners({robot, cell}, CheckCoupleConfiguration::Intersection, 0.0);
    const auto result = detector.Check(configuration, CheckResultType::AllInterferencesWithTriangles);
    for (const auto& couple : result->get_CollidingElementCouples())
        std::cout << couple->get_Element1()->get_Name() << " hits " << couple->get_Element2()->get_Name()
                  << '\n';
    std::cout << "at x = " << result->get_CollisionCenter()[0] << '\n';

    // Clearance, after the arm has been drawn back.
    arm->MoveTo(45, 60, 300);
    CollisionFactory factory;
    const auto clearances = factory.MakeProximityConfiguration();
    clearances->AddElements({arm, fence}, std::make_shared<ProximitySetting>(10.0));
    for (const auto& near : factory.MakeProximityDetector()
                                ->Check(clearances, CheckResultType::AllInterferences)
                                ->get_ElementCouples())
        std::cout << near->get_Element1()->get_Name() << " comes within "
                  << near->get_DistanceSegment()->get_Length() << " mm\n";

    // The scene as a file, with a mesh dump beside it, and back: elements, owners and couples, not placements.
    const auto path = std::filesystem::temp_directory_path() / "plant_layout.xml";
    detector.Store(configuration, path.string());
    std::cout << detector.Retrieve(path.string())->RetrieveCouplesCount() << " couples came back\n";
    std::filesystem::remove(path);
    std::filesystem::remove(path.string() + ".stl");
}
