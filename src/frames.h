#pragma once

#include "text.h"

#include <animationmodel/AnimationKey.h>

#include <cstdint>
#include <limits>
#include <span>

// Everything that counts frames.
namespace Kiv {

using Keys = std::span<const AnimationKey>;

/// The greatest frame there is: at or past the end of any layer.
constexpr unsigned int maxFrame = std::numeric_limits<unsigned int>::max();

/// The sum of the durations.
std::uint64_t total_of(Keys keys);

/// Passes the keys that end at or before `target`, the first of them beginning at `frame`: moves
/// `frame` to the end of the last one and returns how many. Every walk along a layer is made here.
std::size_t pass_keys(unsigned int& frame, Keys keys, unsigned int target);

/// The end of the range of `count` frames from `start`, or `maxFrame` if it lies behind that.
constexpr unsigned int end_of_range(unsigned int start, unsigned int count) {
    return count <= maxFrame - start ? start + count : maxFrame;
}

/// Throws std::invalid_argument, with a text that `subject` begins, if `frames` are too many.
template <class... Pieces>
void check_length(std::uint64_t frames, const Pieces&... subject) {
    constexpr std::uint64_t limit = std::uint64_t{1} << 31;
    if (frames >= limit)
        refuse(subject..., frames, " frames but should last less than ", limit);
}

} // namespace Kiv
