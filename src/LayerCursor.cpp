#include "LayerCursor.h"

#include "take_head.h"

#include <algorithm>
#include <utility>

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

void KeyRow::writeTo(KeyVector::iterator place) const {
    if (front)
        *place++ = *front;
    place = std::copy(run.begin(), run.end(), place);
    if (back)
        *place = *back;
}

void KeyRow::appendTo(KeyVector& out) const {
    const std::size_t needed = out.size() + size();
    if (needed > out.capacity())
        out.reserve(std::max(needed, 2 * out.capacity()));
    if (front)
        out.push_back(*front);
    out.insert(out.end(), run.begin(), run.end());
    if (back)
        out.push_back(*back);
}

KeyRow LayerCursor::walkTo(unsigned int target) {
    KeyRow passed;
    passed.front = pass(front, target);
    if (front)
        return passed;
    passed.run = run.first(pass_keys(frame, run, target));
    run = run.subspan(passed.run.size());
    if (run.empty()) {
        front = filler();
        passed.back = pass(front, target);
    }
    return passed;
}

std::optional<AnimationKey> LayerCursor::cutAt(unsigned int target) {
    if (target <= frame || (!front && run.empty()))
        return std::nullopt;
    if (!front) {
        front = run.front();
        run = run.subspan(1);
    }
    return take_head(*front, target - std::exchange(frame, target));
}

KeyRow LayerCursor::take(unsigned int target) {
    KeyRow taken = walkTo(target);
    if (const auto head = cutAt(target))
        taken.back = head;
    return taken;
}

void LayerCursor::restBeginsAt(unsigned int other) {
    shifted += other - frame;
    frame = other;
}

unsigned int LayerCursor::end() const {
    const unsigned int piece = front ? front->duration : 0;
    return frame + piece + static_cast<unsigned int>(total_of(run));
}

/// Takes `key`, if there is one and it ends at or before `target`.
std::optional<AnimationKey> LayerCursor::pass(std::optional<AnimationKey>& key,
                                              unsigned int target) {
    if (!key || pass_keys(frame, {&*key, 1}, target) == 0)
        return std::nullopt;
    return std::exchange(key, std::nullopt);
}

/// The `Wait` key that fills up the layer, once.
std::optional<AnimationKey> LayerCursor::filler() {
    const unsigned int end = frame - shifted;
    const unsigned int frames = std::exchange(fillTo, 0);
    if (frames <= end)
        return std::nullopt;
    return AnimationKey(Wait, frames - end);
}

} // namespace Kiv
