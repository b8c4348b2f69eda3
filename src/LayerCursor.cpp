#include "LayerCursor.h"

#include "takeHead.h"

#include <algorithm>
#include <utility>

namespace Kiv {

std::uint64_t totalOf(Keys keys) {
    std::uint64_t total = 0;
    for (const AnimationKey& key : keys)
        total += key.duration;
    return total;
}

std::size_t passKeys(unsigned int& frame, Keys keys, unsigned int target) {
    std::size_t passed = 0;
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
    passed.run = run.first(passKeys(frame, run, target));
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
    return takeHead(*front, target - std::exchange(frame, target));
}

KeyRow LayerCursor::take(unsigned int target) {
    KeyRow taken = walkTo(target);
    if (const auto head = cutAt(target))
        taken.back = head;
    return taken;
}

void LayerCursor::moveTo(unsigned int other) {
    moved += other - frame;
    frame = other;
}

/// Takes `key`, if there is one and it ends at or before `target`.
std::optional<AnimationKey> LayerCursor::pass(std::optional<AnimationKey>& key,
                                              unsigned int target) {
    if (!key || passKeys(frame, {&*key, 1}, target) == 0)
        return std::nullopt;
    return std::exchange(key, std::nullopt);
}

/// The `Wait` key that fills up the layer, once.
std::optional<AnimationKey> LayerCursor::filler() {
    const unsigned int end = frame - moved;
    const unsigned int frames = std::exchange(fillTo, 0);
    if (frames <= end)
        return std::nullopt;
    return AnimationKey(Wait, frames - end);
}

} // namespace Kiv
