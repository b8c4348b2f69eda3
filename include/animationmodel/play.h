#pragma once

#include <animationmodel/Animation.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

/// \file
/// What plays animations: the values of layers frame by frame, and the frame that is due.
///
///     Kiv::Player player(show.layers);
///     for (Kiv::Playhead head(show); !head.ended(); head.next()) {
///         player.seek(head.frame());
///         for (const Kiv::Track& track : player)
///             send(track.name(), track.value()); // a std::optional<float>
///         wait for 1 / show.fps seconds
///     }
///
/// Frames are counted from 0. Nothing here allocates but the constructor of a `Player`, `sample`,
/// and a `Playhead` that refuses an animation.

namespace Kiv {

/// The values of one layer, frame by frame.
///
///     layer   | Transition 1 to 0 | Hold 5    | NoValue   |
///     value   | 1   .75  .5  .25  | 5   5   5 | none ...    none past the end too
///     frame   | 0   1    2   3    | 4   5   6 | 7
///
/// The value on a frame is, to the bit, the one that the layer, cut there, begins with. (A NaN
/// may be another one.) A key
/// without a value has none: whether a light then keeps the last one or goes dark is for the
/// program to say.
///
/// A track points to the name and the keys of its layer, which have to outlive it. Make it anew
/// after every edit of the layer: it does not see where the key that it stands on has gone.
class Track {
public:
    /// Stands on frame 0 of `keys`.
    Track(const std::string& name, const KeyVector& keys) : layerName(&name), layer(&keys) {
        seek(0);
    }
    Track(std::string&& name, const KeyVector& keys) = delete; // they have to outlive it
    Track(const std::string& name, KeyVector&& keys) = delete;
    Track(std::string&& name, KeyVector&& keys) = delete;

    /// The name of the layer.
    [[nodiscard]] const std::string& name() const { return *layerName; }

    /// Goes to `frame`. Costs the keys between; backwards, those from the start on.
    void seek(unsigned int frame) {
        if (frame < begin)
            index = begin = 0;
        at = frame;
        for (; !ended() && at - begin >= key().duration; ++index)
            begin += key().duration;
    }

    /// Whether the track stands at the end of the layer or past it.
    [[nodiscard]] bool ended() const { return index >= layer->size(); }

    /// The value on the frame on which the track stands, if there is one.
    [[nodiscard]] std::optional<float> value() const {
        if (!hasValue())
            return std::nullopt;
        return moves() && at > begin ? movedTo(at) : key().command.args[0];
    }

    /// The next frame on which the value may be another one; 2^32 - 1 if there is none.
    [[nodiscard]] unsigned int nextChange() const {
        constexpr unsigned int none = std::numeric_limits<unsigned int>::max();
        if (ended())
            return none;
        const bool changes = key().command.effect == Transition;
        const unsigned int next = changes ? at + 1 : begin + key().duration;
        return next > at ? next : none; // it is not past 2^32 - 1
    }

private:
    friend void sample(const LayerMap& layers, unsigned int start, unsigned int count,
                       float* place);

    const AnimationKey& key() const { return (*layer)[index]; }
    bool hasValue() const {
        return !ended() && static_cast<std::uint32_t>(key().command.effect) <= Hold &&
               !key().command.args.empty();
    }
    bool moves() const {
        return key().command.effect == Transition && key().command.args.size() == 2;
    }
    float movedTo(unsigned int frame) const {
        const AnimationKeyArgs& args = key().command.args;
        return transition_value(args[0], args[1], frame - begin, key().duration);
    }

    /// Writes the values of `count` frames from here on, each `step` floats after the one before
    /// it, and goes to the frame after them; NaN where there is none.
    void write(unsigned int count, float* place, std::size_t step) {
        std::size_t next = 0;
        while (count > 0 && !ended()) {
            const AnimationKey playing = key();
            const AnimationKeyArgs& args = playing.command.args;
            const unsigned int from = at - begin;
            const unsigned int run = std::min(count, playing.duration - from);
            const float first = value().value_or(std::numeric_limits<float>::quiet_NaN());
            place[next] = first;
            next += step;
            if (moves())
                for (unsigned int i = from + 1; i < from + run; ++i, next += step)
                    place[next] = transition_value(args[0], args[1], i, playing.duration);
            else
                for (unsigned int i = from + 1; i < from + run; ++i, next += step)
                    place[next] = first;
            count -= run;
            seek(at + run);
        }
        for (; count > 0; --count, next += step)
            place[next] = std::numeric_limits<float>::quiet_NaN();
    }

    const std::string* layerName;
    const KeyVector* layer;
    std::size_t index = 0;  ///< The key that plays; past the last one at the end.
    unsigned int begin = 0; ///< The frame on which it begins.
    unsigned int at = 0;
};

/// A track for each layer of an animation, in the order of their names. The layers have to outlive
/// it; make it anew after every edit of them.
class Player {
public:
    /// On frame 0 of `layers`.
    explicit Player(const LayerMap& layers) {
        tracks.reserve(layers.size());
        for (const auto& [name, keys] : layers)
            tracks.emplace_back(name, keys);
    }
    explicit Player(const LayerMap&& layers) = delete; // they have to outlive it

    /// Goes to `frame` in all layers. To the next one it costs a constant a layer; backwards, all
    /// keys before `frame`.
    void seek(unsigned int frame) {
        for (Track& track : tracks)
            track.seek(frame);
    }

    /// @{
    /// The tracks.
    [[nodiscard]] std::size_t size() const { return tracks.size(); }
    [[nodiscard]] auto begin() { return tracks.begin(); }
    [[nodiscard]] auto begin() const { return tracks.begin(); }
    [[nodiscard]] auto end() { return tracks.end(); }
    [[nodiscard]] auto end() const { return tracks.end(); }
    [[nodiscard]] Track& operator[](std::size_t index) { return tracks[index]; }
    [[nodiscard]] const Track& operator[](std::size_t index) const { return tracks[index]; }
    /// @}

private:
    std::vector<Track> tracks;
};

/// Writes the values of the frames [start, start + count), one frame after another: a value for
/// each layer, in the order of their names, and NaN where there is none. At `place` there has to be
/// room for `count` x layers. Frames past 2^32 - 1 are past the end. Costs the values, and the keys
/// before the last frame.
inline void sample(const LayerMap& layers, unsigned int start, unsigned int count, float* place) {
    // Some layers at a time, some frames of each: the rows of those frames stay in the processor's
    // cache until all these layers have written there.
    constexpr std::size_t mostLayers = 16;
    constexpr unsigned int mostFrames = 64;
    std::vector<Track> tracks;
    tracks.reserve(std::min(mostLayers, layers.size()));
    const auto counted = std::min<std::uint64_t>(count, (std::uint64_t{1} << 32) - start);
    for (auto layer = layers.begin(); layer != layers.end(); place += tracks.size()) {
        tracks.clear();
        for (; layer != layers.end() && tracks.size() < mostLayers; ++layer) {
            tracks.emplace_back(layer->first, layer->second);
            tracks.back().seek(start);
        }
        float* row = place;
        for (std::uint64_t frame = 0; frame < counted; frame += mostFrames) {
            const auto frames =
                static_cast<unsigned int>(std::min<std::uint64_t>(mostFrames, counted - frame));
            for (std::size_t i = 0; i < tracks.size(); ++i)
                tracks[i].write(frames, row + i, layers.size());
            row += frames * layers.size();
        }
        for (std::uint64_t frame = counted; frame < count; ++frame, row += layers.size())
            std::fill_n(row, tracks.size(), std::numeric_limits<float>::quiet_NaN());
    }
}

/// The same values in a vector of `count` x layers.
[[nodiscard]] inline std::vector<float> sample(const LayerMap& layers, unsigned int start,
                                               unsigned int count) {
    std::vector<float> values(std::size_t{count} * layers.size());
    sample(layers, start, count, values.data());
    return values;
}

/// The frame of an animation that is due while it plays: its intro, its body again and again, and
/// after `finish` its outro.
///
///     animation   | intro | body | outro |      told to finish during the second body
///     plays       | intro | body | body | outro |
///
/// Told during the n-th body, it plays the frames of `loop(n, false, false)`; on the last frame of
/// a body, too. Told before the body, it plays it once. An empty body plays once anyway, and an
/// animation without frames has ended at once.
///
/// It keeps a copy of the sizes, so that an edit of the animation does not disturb it. A `Player`
/// of the animation has to be made anew then, and gives no value on the frames that are gone.
class Playhead {
public:
    /// Stands on frame 0. Throws std::invalid_argument, as a copy would, if the sizes do not fit or
    /// a layer lasts 2^31 frames or more. Costs all keys.
    explicit Playhead(const Animation& animation)
        : bodyBegin(animation.introSize), end(animation.durationInFrames()) {
        const bool tooLong = full_duration(animation.layers) >= std::uint64_t{1} << 31;
        if (tooLong || bodyBegin > end || animation.outroSize > end - bodyBegin)
            static_cast<void>(Animation(animation)); // which says what is wrong
        bodyEnd = end - animation.outroSize;
    }
    Playhead(const Playhead&) = delete; // another thread may know where it is
    Playhead& operator=(const Playhead&) = delete;

    /// The frame that is due; the duration of the animation at the end.
    [[nodiscard]] unsigned int frame() const { return at; }

    /// Whether the last frame has been played.
    [[nodiscard]] bool ended() const { return at == end; }

    /// Goes on by a frame; at the end stays there.
    void next() {
        if (at + 1 == bodyEnd && !finishing) // an empty body begins on the next frame
            at = bodyBegin;
        else if (at < end)
            ++at;
    }

    /// Has the body that plays be the last one. Any thread may call it, at any time.
    void finish() noexcept { finishing = true; }

private:
    unsigned int bodyBegin, bodyEnd, end;
    unsigned int at = 0;
    std::atomic<bool> finishing = false;
};

} // namespace Kiv
