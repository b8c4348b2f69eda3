#pragma once

#include <animationmodel/AnimationKeyCommand.h>
#include <animationmodel/export.h>

#include <iosfwd>
#include <type_traits>
#include <vector>

namespace Kiv {

class AnimationKey;

/// A layer: keys laid end to end, the first on frame 0. A key begins at the sum of the durations
/// of the keys before it; a boundary between two keys belongs to the one that begins there.
using KeyVector = std::vector<AnimationKey>;

/// A command and the number of whole frames that it lasts, at least 1.
///
/// A small value: it is copied by a plain memory copy, and copies share nothing. The duration is
/// checked on construction only.
class ANIMATIONMODEL_EXPORT AnimationKey {
public:
    /// A key of `duration` frames. Throws std::invalid_argument if `duration` is 0.
    AnimationKey(const AnimationKeyCommand& command, unsigned int duration);

    /// The key cut in two, the first piece `frame` frames long:
    ///
    ///     Transition (0, 100) over 10    splitAt(3)
    ///     Transition (0, 30) over 3, Transition (30, 100) over 7
    ///
    /// The pieces of a `Transition` meet in the value that it has at the cut:
    ///
    ///     frame x (end - start) / duration + start
    ///
    /// Each step is rounded to single precision, from left to right. Frames above 2^24 are rounded
    /// too. A product beyond the floats' range is infinite. (A program built with -ffast-math gets
    /// other values: it lets its processor take the smallest floats for 0.)
    ///
    /// Between cuts, values are computed from those at the cuts. So they may differ by some
    /// roundings from what the key had there before it was cut.
    ///
    /// The pieces of all other effects carry the same command. So do those of a `Transition` whose
    /// arguments are not two, because someone has set its fields: it is cut as if it did not move.
    /// At frame 0, and at the end or past it, there is nothing to cut: the result is one copy of
    /// the key.
    [[nodiscard]] KeyVector splitAt(unsigned int frame) const;

    /// The key cut into pieces of `step` frames and one last piece of what remains, 1 to `step`
    /// frames long. A key of `step` frames or fewer is returned as one copy.
    ///
    ///     Hold (5) over 10    splitEach(4)
    ///     Hold (5) over 4, Hold (5) over 4, Hold (5) over 2
    ///
    /// Each piece of a `Transition` starts from its own index, so rounding errors do not add up;
    /// the last one starts where the piece before it ends, and ends exactly where the key does.
    /// The values may differ from those of `splitAt` by a few roundings, which is more than the
    /// last bit where they are near 0; and where a product there is infinite, it may not be here. A
    /// `Transition` without two arguments does not move. Throws std::invalid_argument if `step` is
    /// 0. Costs the pieces.
    [[nodiscard]] KeyVector splitEach(unsigned int step) const;

    friend bool operator==(const AnimationKey& a, const AnimationKey& b) noexcept {
        return a.command == b.command && a.duration == b.duration;
    }
    friend bool operator!=(const AnimationKey& a, const AnimationKey& b) noexcept {
        return !(a == b);
    }

    AnimationKeyCommand command; ///< What the layer does while the key lasts.
    unsigned int duration;       ///< Frames.

private:
    // Out of reach, but there: it makes a key a trivial type, which lets std::vector copy whole
    // layers by one plain memory copy.
    AnimationKey() = default;
};

static_assert(std::is_trivial_v<AnimationKey> && sizeof(AnimationKey) <= 20);

/// The value that a key which moves from `from` to `to` over `duration` frames has `frame` frames
/// after its first: that of a cut there. Each step is rounded to single precision.
[[nodiscard]] inline float transition_value(float from, float to, unsigned int frame,
                                            unsigned int duration) noexcept {
    const float way = to - from;
    const float scaled = static_cast<float>(frame) * way;
    const float passed = scaled / static_cast<float>(duration);
    return passed + from;
}

/// Writes the key as "Hold (5) over 10".
ANIMATIONMODEL_EXPORT std::ostream& operator<<(std::ostream& out, const AnimationKey& key);

/// Writes the keys of a layer as "Hold (5) over 10, Wait over 4", or "no keys".
ANIMATIONMODEL_EXPORT std::ostream& operator<<(std::ostream& out, const KeyVector& layer);

} // namespace Kiv
