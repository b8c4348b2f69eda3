#include "frames.h"

namespace Kiv {

namespace {

constexpr std::size_t blockSize = 8;

/// The sum of `blockSize` durations, in a tree: a chain would wait for each addition in turn.
std::uint64_t total_of_block(const AnimationKey* key) {
    const auto pair = [key](std::size_t i) {
        return std::uint64_t{key[i].duration} + key[i + 1].duration;
    };
    return (pair(0) + pair(2)) + (pair(4) + pair(6));
}

} // namespace

std::uint64_t total_of(Keys keys) {
    std::uint64_t total = 0;
    for (; keys.size() >= blockSize; keys = keys.subspan(blockSize))
        total += total_of_block(keys.data());
    for (const AnimationKey& key : keys)
        total += key.duration;
    return total;
}

std::size_t pass_keys(unsigned int& frame, Keys keys, unsigned int target) {
    std::size_t passed = 0;
    for (; keys.size() - passed >= blockSize; passed += blockSize) {
        const std::uint64_t end = frame + total_of_block(&keys[passed]);
        if (end > target)
            break;
        frame = static_cast<unsigned int>(end);
    }
    while (passed < keys.size() && frame + keys[passed].duration <= target)
        frame += keys[passed++].duration;
    return passed;
}

} // namespace Kiv
