#include "detect/bound_tightening.h"

#include "core/aabb_hierarchy.h"
#include "core/box_distance.h"
#include "detect/relative_frame.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace tarn::details {

namespace {

/// The result is a minimum over centre pairs, in whatever order they are looked at. So this is a search for
/// the closest pair of two sets of points, with both trees descended together, nearest first, and everything
/// left out whose boxes are no nearer than the best so far. That changes nothing, because no centre pair
/// is nearer than the boxes that hold its boxes, to the last bit (see core/box_distance.h).
class CentreSearch {
public:
    CentreSearch(const AABBHierarchy& first,
                 const AABBHierarchy& second,
                 double bound,
                 const RelativeFrame* frame)
        : first_(first),
          second_(second),
          frame_(frame),
          best_(bound) {}

    double Run() {
        pending_.reserve(kUsualDepth);
        Look({Reach::FirstCentre, &first_.Root(), &second_.Root(), 0.0});
        Look({Reach::Both, &first_.Root(), &second_.Root(), 0.0});
        return best_;
    }

private:
    using Node = AABBHierarchyNode;

    /// Which centre pairs a piece of work stands for.
    enum class Reach : std::uint8_t {
        Both,          ///< of all nodes below `a` to all leaves below `b`
        FirstCentre,   ///< of `a` alone to all leaves below `b`; if `a` is the root, to all nodes below `b`
        SecondCentre,  ///< of all nodes below `a` to the leaf `b` alone
    };
    struct Work {
        Reach reach;
        const Node* a;
        const Node* b;
        double nearest;  ///< no centre pair of this work is nearer, squared
    };

    static constexpr std::size_t kUsualDepth = 64;

    double Nearest(Reach reach, const Node& a, const Node& b) const {
        const Box& box_a = first_.WorldBox(a);
        const Box& box_b = second_.WorldBox(b);
        switch (reach) {
            case Reach::FirstCentre:
                return CentreToBoxDistanceSquared(DoubledCentre(box_a), box_b);
            case Reach::SecondCentre:
                return CentreToBoxDistanceSquared(DoubledCentre(box_b), box_a);
            case Reach::Both:
                break;
        }
        return BoxDistanceSquared(box_a, box_b);
    }

    double CentreDistance(const Node& a, const Node& b) const {
        return CentreDistanceSquared(DoubledCentre(first_.WorldBox(a)), DoubledCentre(second_.WorldBox(b)));
    }

    void Look(Work work) {
        pending_.push_back(work);
        while (!pending_.empty()) {
            work = pending_.back();
            pending_.pop_back();
            if (work.nearest >= best_) continue;
            switch (work.reach) {
                case Reach::Both:
                    Split(*work.a, *work.b);
                    break;
                case Reach::FirstCentre:
                    if (work.b->IsLeaf() || work.a == &first_.Root()) Measure(*work.a, *work.b);
                    if (!work.b->IsLeaf()) Push(Reach::FirstCentre, *work.a, *work.b, false);
                    break;
                case Reach::SecondCentre:
                    Measure(*work.a, *work.b);
                    if (!work.a->IsLeaf()) Push(Reach::SecondCentre, *work.a, *work.b, true);
                    break;
            }
        }
    }

    void Measure(const Node& a, const Node& b) {
        const double distance = CentreDistance(a, b);
        if (distance < best_) best_ = distance;
    }

    void Split(const Node& a, const Node& b) {
        if (b.IsLeaf()) return Push(Reach::SecondCentre, a, b);
        if (a.IsLeaf()) return Push(Reach::FirstCentre, a, b);
        const bool splits_first = a.ExtentSum() >= b.ExtentSum();
        // The root's centre has been looked at before.
        if (splits_first && &a != &first_.Root()) Push(Reach::FirstCentre, a, b);
        Push(Reach::Both, a, b, splits_first);
    }

    void Push(Reach reach, const Node& a, const Node& b) {
        const double nearest = Nearest(reach, a, b);
        if (nearest >= best_) return;
        // No centre leaves its box, turned as the box is.
        if (frame_ && reach == Reach::Both && frame_->SubtreesAreFartherThan(std::sqrt(best_), a, b)) return;
        pending_.push_back({reach, &a, &b, nearest});
    }

    /// Pushes the work of both children of `a` or of `b`, the one with the nearer centre last: it is next.
    void Push(Reach reach, const Node& a, const Node& b, bool splits_first) {
        struct Child {
            const Node* a;
            const Node* b;
            double distance;
        };
        Child near{&a, &b, 0.0};
        Child far{&a, &b, 0.0};
        (splits_first ? near.a : near.b) = (splits_first ? a : b).FirstChild();
        (splits_first ? far.a : far.b) = (splits_first ? a : b).SecondChild();
        near.distance = CentreDistance(*near.a, *near.b);
        far.distance = CentreDistance(*far.a, *far.b);
        if (far.distance < near.distance) std::swap(near, far);
        Push(reach, *far.a, *far.b);
        Push(reach, *near.a, *near.b);
    }

    const AABBHierarchy& first_;
    const AABBHierarchy& second_;
    const RelativeFrame* frame_;  ///< null where nothing is to be left out but by world boxes
    double best_;
    std::vector<Work> pending_;
};

}  // namespace

double TightenBound(const AABBHierarchy& first, const AABBHierarchy& second, double bound) {
    // Nothing is below 0, and nothing compares with NaN.
    return bound > 0.0 ? CentreSearch(first, second, bound, nullptr).Run() : bound;
}

double TightenBound(const AABBHierarchy& first,
                    const AABBHierarchy& second,
                    double bound,
                    const RelativeFrame& frame) {
    return bound > 0.0 ? CentreSearch(first, second, bound, &frame).Run() : bound;
}

}  // namespace tarn::details
