#pragma once

#include "text.h"

#include <animationmodel/AnimationKey.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <span>

// Everything that counts frames.
namespace Kiv {

using Keys = std::span<const AnimationKey>;

/// The greatest frame there is: at or past the end of any layer.
constexpr unsigned int maxFrame = std::numeric_limits<unsigned int>::max();

/// Animations last fewer frames.
constexpr std::uint64_t frameLimit = std::uint64_t{1} << 31;

/// The sum of so many durations, in a tree: a chain would wait for each addition in turn.
template <std::size_t size>
std::uint64_t total_of_block(const AnimationKey* key) {
    if constexpr (size == 1)
        return key->duration;
    else
        return total_of_block<size / 2>(key) + total_of_block<size / 2>(key + size / 2);
}
constexpr std::size_t blockSize = 8;

/// The sum of the durations.
inline std::uint64_t total_of(Keys keys) {
    std::uint64_t total = 0;
    for (; keys.size() >= blockSize; keys = keys.subspan(blockSize))
        total += total_of_block<blockSize>(keys.data());
    for (const AnimationKey& key : keys)
        total += key.duration;
    return total;
}

/// As `pass_keys`, one key after another.
inline std::size_t pass_singly(unsigned int& frame, Keys keys, unsigned int target) {
    std::size_t passed = 0;
    while (passed < keys.size() && frame + keys[passed].duration <= target)
        frame += keys[passed++].duration;
    return passed;
}

/// As `pass_keys`, whole blocks of keys; `frame` is at or before `target`.
inline std::size_t pass_blocks(unsigned int& frame, Keys keys, unsigned int target) {
    std::size_t passed = 0;
    unsigned int left = target - frame;
    for (; keys.size() - passed >= blockSize; passed += blockSize) {
        const std::uint64_t total = total_of_block<blockSize>(&keys[passed]);
        if (total > left)
            break;
        left -= static_cast<unsigned int>(total);
    }
    frame = target - left;
    return passed;
}

/// Passes the keys that end at or before `target`, the first of them beginning at `frame`: moves
/// `frame` to the end of the last one and returns how many. Every walk along a layer is made here.
inline std::size_t pass_keys(unsigned int& frame, Keys keys, unsigned int target) {
    const Keys few = keys.first(std::min<std::size_t>(4, keys.size())); // most walks are short
    std::size_t passed = pass_singly(frame, few, target);
    if (passed < few.size())
        return passed;
    passed += pass_blocks(frame, keys.subspan(passed), target);
    return passed + pass_singly(frame, keys.subspan(passed), target);
}

/// The end of the range of `count` frames from `start`, or `maxFrame` if it lies after that.
constexpr unsigned int end_of_range(unsigned int start, unsigned int count) {
    return count <= maxFrame - start ? start + count : maxFrame;
}

/// Throws std::invalid_argument, with a text that `subject` begins, if `frames` are too many.
template <class... Pieces>
void check_length(std::uint64_t frames, const Pieces&... subject) {
    if (frames >= frameLimit)
        refuse(subject..., frames, " frames but should last less than ", frameLimit);
}

} // namespace Kiv
