#pragma once

#include "frames.h"

#include <optional>

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

    unsigned int frame = 0;
    Stretch rest;
};

} // namespace Kiv
