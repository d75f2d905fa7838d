#pragma once

#include "core/fnv1a.h"

#include "tarn/collision_result.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

namespace tarn::bench {

/// One number for all answers of a benchmark: equal digests mean equal answers, to the last bit of the
/// triangles.
class Digest {
public:
    void Add(std::uint64_t value) { value_ = details::Fnv1a(value_ ^ details::Fnv1a(value)); }

    void Add(const TriangleData& triangle) {
        std::uint64_t words[9];
        static_assert(sizeof words == sizeof triangle);
        std::memcpy(words, &triangle, sizeof words);
        for (const std::uint64_t word : words) Add(word);
    }

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

    std::string Text() const {
        char text[17];
        std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(value_));
        return text;
    }

private:
    std::uint64_t value_ = 0;
};

}  // namespace tarn::bench
