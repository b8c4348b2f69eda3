#pragma once

#include "cut.h"
#include "frames.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace Kiv {

/// Keys laid end to end: a run that stands in some layer, and at most one key on either side that
/// stands in none, such as a piece of a key that was cut.
struct Stretch {
    std::optional<AnimationKey> front;
    Keys run;
    std::optional<AnimationKey> back;

    std::size_t size() const { return front.has_value() + run.size() + back.has_value(); }

    /// Writes the keys over those from `place` on.
    void writeTo(KeyVector::iterator place) const;

    /// Appends the keys; all or, if memory runs out, none.
    void appendTo(KeyVector& out) const;
};

/// The keys of `layer`, which lasts `total` frames, filled up to `frames` by one `Wait` key.
Stretch filled(Keys layer, std::uint64_t total, unsigned int frames);

/// Reads keys one after another and changes none: `rest` is what is still to come, and its first
/// key begins at `frame`.
struct LayerCursor {
    explicit LayerCursor(Keys layer, unsigned int frame = 0) : frame(frame), rest{{}, layer, {}} {}
    explicit LayerCursor(const Stretch& rest) : rest(rest) {}

    /// Takes the keys that end at or before `target`.
    Stretch takeKeys(unsigned int target);

    /// Takes the frames before `target`: these keys, and the piece of the key across it.
    Stretch takeFrames(unsigned int target);

    /// The frame on which the layer ends.
    unsigned int end() const;

    unsigned int frame = 0;
    Stretch rest;
};

inline void Stretch::writeTo(KeyVector::iterator place) const {
    if (front)
        *place++ = *front;
    place = std::copy(run.begin(), run.end(), place);
    if (back)
        *place = *back;
}

inline void Stretch::appendTo(KeyVector& out) const {
    const std::size_t needed = out.size() + size();
    if (needed > out.capacity())
        out.reserve(std::max(needed, 2 * out.capacity()));
    if (front)
        out.push_back(*front);
    out.insert(out.end(), run.begin(), run.end());
    if (back)
        out.push_back(*back);
}

inline Stretch filled(Keys layer, std::uint64_t total, unsigned int frames) {
    Stretch result{{}, layer, {}};
    if (total < frames)
        result.back = AnimationKey(Wait, frames - static_cast<unsigned int>(total));
    return result;
}

/// Takes `key`, if there is one and it ends at or before `target`.
inline std::optional<AnimationKey> take_key(std::optional<AnimationKey>& key, unsigned int& frame,
                                            unsigned int target) {
    if (!key || pass_keys(frame, {&*key, 1}, target) == 0)
        return std::nullopt;
    return std::exchange(key, std::nullopt);
}

inline Stretch LayerCursor::takeKeys(unsigned int target) {
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

inline Stretch LayerCursor::takeFrames(unsigned int target) {
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

inline unsigned int LayerCursor::end() const {
    std::uint64_t end = frame + total_of(rest.run);
    for (const auto& piece : {rest.front, rest.back})
        end += piece ? piece->duration : 0;
    return static_cast<unsigned int>(end);
}

} // namespace Kiv
