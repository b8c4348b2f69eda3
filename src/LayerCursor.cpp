#include "LayerCursor.h"

#include "take_head.h"

#include <algorithm>
#include <utility>

namespace Kiv {

void Stretch::writeTo(KeyVector::iterator place) const {
    if (front)
        *place++ = *front;
    place = std::copy(run.begin(), run.end(), place);
    if (back)
        *place = *back;
}

void Stretch::appendTo(KeyVector& out) const {
    const std::size_t needed = out.size() + size();
    if (needed > out.capacity())
        out.reserve(std::max(needed, 2 * out.capacity()));
    if (front)
        out.push_back(*front);
    out.insert(out.end(), run.begin(), run.end());
    if (back)
        out.push_back(*back);
}

Stretch filled(Keys layer, std::uint64_t total, unsigned int frames) {
    Stretch result{{}, layer, {}};
    if (total < frames)
        result.back = AnimationKey(Wait, frames - static_cast<unsigned int>(total));
    return result;
}

namespace {

/// Takes `key`, if there is one and it ends at or before `target`.
std::optional<AnimationKey> take_key(std::optional<AnimationKey>& key, unsigned int& frame,
                                     unsigned int target) {
    if (!key || pass_keys(frame, {&*key, 1}, target) == 0)
        return std::nullopt;
    return std::exchange(key, std::nullopt);
}

} // namespace

Stretch LayerCursor::takeKeys(unsigned int target) {
    Stretch taken;
    taken.front = take_key(rest.front, frame, target);
    if (rest.front)
        return taken;
    taken.run = rest.run.first(pass_keys(frame, rest.run, target));
    rest.run = rest.run.subspan(taken.run.size());
    if (rest.run.empty())
        taken.back = take_key(rest.back, frame, target);
    return taken;
}

Stretch LayerCursor::takeFrames(unsigned int target) {
    Stretch taken = takeKeys(target);
    if (target <= frame || rest.size() == 0)
        return taken;
    if (!rest.front && rest.run.empty()) {
        rest.front = std::exchange(rest.back, std::nullopt);
    } else if (!rest.front) {
        rest.front = rest.run.front();
        rest.run = rest.run.subspan(1);
    }
    taken.back = take_head(*rest.front, target - std::exchange(frame, target));
    return taken;
}

} // namespace Kiv
