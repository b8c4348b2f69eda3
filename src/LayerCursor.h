#pragma once

#include <animationmodel/AnimationKey.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <span>

namespace Kiv {

using Keys = std::span<const AnimationKey>;

/// A target at or past the end of any layer.
constexpr unsigned int lastFrame = std::numeric_limits<unsigned int>::max();

/// The sum of the durations.
std::uint64_t total_of(Keys keys);

/// Passes the keys that end at or before `target`, the first of them beginning at `frame`: moves
/// `frame` to the end of the last one and returns how many. Every walk along a layer is made here.
std::size_t pass_keys(unsigned int& frame, Keys keys, unsigned int target);

/// A row of keys to be written: a run that stands in memory, and at most one key on either side.
struct KeyRow {
    std::optional<AnimationKey> front;
    Keys run;
    std::optional<AnimationKey> back;

    std::size_t size() const { return front.has_value() + run.size() + back.has_value(); }

    /// Writes the keys over those from `place` on.
    void writeTo(KeyVector::iterator place) const;

    /// Appends the keys; all or, if memory runs out, none.
    void appendTo(KeyVector& out) const;
};

/// Reads a layer from its start on without changing it. The next key is the one that begins at
/// `frame`; after a cut it is what the cut has left of its key.
class LayerCursor {
public:
    /// A cursor at the start of a layer that one `Wait` key fills up to `fillTo` frames, if it is
    /// shorter.
    explicit LayerCursor(Keys layer, unsigned int fillTo = 0) : run(layer), fillTo(fillTo) {}

    /// A cursor that stands at `frame` before `keys`.
    LayerCursor(unsigned int frame, Keys keys) : frame(frame), run(keys) {}

    /// Passes the keys that end at or before `target`.
    KeyRow walkTo(unsigned int target);

    /// After a walk to `target`: cuts the key that lies across it and passes the piece before.
    std::optional<AnimationKey> cutAt(unsigned int target);

    /// Passes everything before `target`.
    KeyRow take(unsigned int target);

    /// All that is still to come, without passing it and without what would fill up the layer; its
    /// front is the piece that a cut has left.
    KeyRow rest() const { return {front, run, std::nullopt}; }

    /// Has what is still to come begin at `other`.
    void restBeginsAt(unsigned int other);

    /// The frame at which the layer ends. Costs the keys still to come.
    unsigned int end() const;

    unsigned int frame = 0;

private:
    std::optional<AnimationKey> pass(std::optional<AnimationKey>& key, unsigned int target);
    std::optional<AnimationKey> filler();

    std::optional<AnimationKey> front;
    Keys run;
    unsigned int fillTo = 0;
    unsigned int shifted = 0; ///< Frames by which `restBeginsAt` has shifted what is still to come.
};

} // namespace Kiv
