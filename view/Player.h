#pragma once

#include <animationmodel/Animation.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <vector>

/// The values of one layer, frame by frame.
///
///     layer   | Transition 1 to 0 | Hold 5    | NoValue   |
///     value   | 1   .75  .5  .25  | 5   5   5 | none ...    none past the end too
///     frame   | 0   1    2   3    | 4   5   6 | 7
///
/// The value on a frame is the one that the layer, cut there, begins with. A key without a value
/// has none: whether a light then keeps the last one or goes dark is for the program to say.
class Track {
public:
    /// Stands on frame 0 of `keys`, which have to outlive it; make it anew after each edit of them.
    Track(const std::string& name, const Kiv::KeyVector& keys) : layer(&name), keys(&keys) {}

    const std::string& name() const { return *layer; }

    /// Goes to `frame`. Costs the keys between; backwards, those from the start on.
    void seek(unsigned int frame) {
        if (frame < begin)
            index = begin = 0;
        at = frame;
        for (; !ended() && at - begin >= key().duration; ++index)
            begin += key().duration;
    }

    bool ended() const { return index == keys->size(); }

    std::optional<float> value() const {
        if (ended() || key().command.effect > Kiv::Hold || key().command.args.empty())
            return std::nullopt;
        const Kiv::AnimationKeyArgs& args = key().command.args;
        if (key().command.effect == Kiv::Hold || args.size() != 2 || at == begin)
            return args[0];
        // The same steps as in a cut, for the same bits, but without the two keys of one.
        const float way = args[1] - args[0];
        const float scaled = static_cast<float>(at - begin) * way;
        const float passed = scaled / static_cast<float>(key().duration);
        return passed + args[0];
    }

    /// The next frame on which the value may be another one, if there is one.
    unsigned int nextChange() const {
        if (ended())
            return std::numeric_limits<unsigned int>::max();
        return key().command.effect == Kiv::Transition ? at + 1 : begin + key().duration;
    }

private:
    const Kiv::AnimationKey& key() const { return (*keys)[index]; }

    const std::string* layer;
    const Kiv::KeyVector* keys;
    std::size_t index = 0;  ///< The key that plays; past the last one at the end.
    unsigned int begin = 0; ///< The frame on which it begins.
    unsigned int at = 0;
};

/// The tracks of an animation, in the order of its layers. One seek to the next frame costs a
/// constant per layer. The layers have to outlive it; make it anew after each edit of them.
class Player : public std::vector<Track> {
public:
    explicit Player(const Kiv::LayerMap& layers) {
        for (const auto& [name, keys] : layers)
            emplace_back(name, keys);
    }
    explicit Player(Kiv::LayerMap&&) = delete;

    void seek(unsigned int frame) {
        for (Track& track : *this)
            track.seek(frame);
    }
};

/// Puts the values of the frames [start, start + count) into `values`, one frame after another: a
/// value for each layer, in their order, and a NaN where there is none. There has to be room for
/// `count` x layers.
inline void sample(const Kiv::LayerMap& layers, unsigned int start, unsigned int count,
                   float* values) {
    Player player(layers);
    for (unsigned int i = 0; i < count; ++i) {
        player.seek(start + i);
        for (const Track& track : player)
            *values++ = track.value().value_or(std::numeric_limits<float>::quiet_NaN());
    }
}
