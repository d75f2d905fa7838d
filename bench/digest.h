#pragma once

#include "core/fnv1a.h"

#include "tarn/collision_result.h"
#include "tarn/proximity_outcome.h"
#include "tarn/proximity_result.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

namespace tarn::bench {

/// One number for all answers of a benchmark: equal digests mean equal answers, to the last bit of the
/// triangles, distances and segments.
class Digest {
public:
    void Add(std::uint64_t value) { value_ = details::Fnv1a(value_ ^ details::Fnv1a(value)); }

    void Add(const TriangleData& triangle) { AddWords<9>(triangle); }
    void Add(const SegmentData& segment) { AddWords<6>(segment); }

    void Add(const CollisionResult& result) {
        for (const CollisionPairResult& pair : result.Pairs) {
            Add(pair.First->GetId());
            Add(pair.Second->GetId());
            for (const TriangleDataPair& triangles : pair.Triangles) {
                Add(triangles.first);
                Add(triangles.second);
            }
        }
    }

    void Add(const ProximityResult& result) {
        for (const ProximityPairResult& pair : result.Pairs) {
            Add(pair.First->GetId());
            Add(pair.Second->GetId());
            Add(pair.IntersectionFound ? 1 : 0);
            Add(std::bit_cast<std::uint64_t>(pair.distance));
            Add(pair.Segment);
            for (const TriangleDataPair& triangles : pair.Triangles) {
                Add(triangles.first);
                Add(triangles.second);
            }
        }
    }

    void Add(const ProximityOutcome& outcome) {
        Add(static_cast<std::uint64_t>(outcome.state));
        Add(std::bit_cast<std::uint64_t>(outcome.distance));
        Add(outcome.segment);
        Add(std::bit_cast<std::uint64_t>(outcome.bound));
        Add(outcome.retained_count);
        Add(outcome.touches ? 1 : 0);
        Add(outcome.is_judged ? 1 : 0);
    }

    std::string Text() const {
        char text[17];
        std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(value_));
        return text;
    }

private:
    template <std::size_t Count, class Value>
    void AddWords(const Value& value) {
        std::uint64_t words[Count];
        static_assert(sizeof words == sizeof value);
        std::memcpy(words, &value, sizeof words);
        for (const std::uint64_t word : words) Add(word);
    }

    std::uint64_t value_ = 0;
};

}  // namespace tarn::bench
