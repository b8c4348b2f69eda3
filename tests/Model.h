#pragma once

#include "Text.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <ostream>
#include <set>

// Animations as plain lists of frames: every edit is a list operation. Keys count too, for a cut
// makes two of one, and overriding moves some whole; so a frame tells whether a key begins there.
namespace Kiv {

using Count = std::size_t;
using Name = const std::string&;

struct Frame {
    bool begins; ///< Whether a key does, on this frame.
    AnimationKeyCommandEffect effect;
    double value = 0;

    bool operator==(const Frame& other) const {
        return begins == other.begins && effect == other.effect &&
               std::abs(value - other.value) <= (effect == Transition ? 1e-4 : 0);
    }
};

/// A frame that no list holds, and the one that stands for it in lists: after all others.
constexpr unsigned int farFrames = 2147483648;
constexpr unsigned int farFramesOfModel = 500;

struct Frames : std::vector<Frame> {
    using vector::vector;
    Frames(const KeyVector& layer) {
        for (const auto& [command, duration] : layer) {
            const bool far = duration > farFrames / 2; // a Wait key that fills up to there
            const unsigned int frames = far ? duration - farFrames + farFramesOfModel : duration;
            for (unsigned int i = 0; i < frames; ++i) {
                const double start = command.args.empty() ? 0 : command.args.front();
                const double way = command.args.empty() ? 0 : command.args.back() - start;
                push_back({i == 0, command.effect, start + way * i / duration});
            }
        }
    }

    /// The frames [from, to), as far as there are any; a key begins with them.
    Frames slice(Count from, Count to = SIZE_MAX) const {
        Frames part;
        for (Count i = from; i < std::min(to, size()); ++i)
            part.push_back({at(i).begins || i == from, at(i).effect, at(i).value});
        return part;
    }
    Frames operator+(const Frames& other) const {
        Frames all = *this;
        all.insert(all.end(), other.begin(), other.end());
        return all;
    }
    static Frames wait(Count count) { return Frames(count, {false, Wait}).slice(0); }
    Frames filled(Count count) const { return *this + wait(count - std::min(count, size())); }
    Frames inserted(const Frames& other, Count at) const {
        return other.empty() ? *this : slice(0, at).filled(at) + other + slice(at);
    }
    Frames removed(Count start, Count count) const {
        return slice(0, start) + slice(start + std::min(count, SIZE_MAX - start));
    }
    /// The last boundary in (from, limit], or `from`.
    Count endOfWholeKeys(Count from, Count limit) const {
        for (Count end = std::min(limit, size()); end > from; --end)
            if (end == size() || at(end).begins)
                return end;
        return from;
    }
    /// With a run of keys laid over the frames from `begin` on.
    Frames withRun(const Frames& run, Count begin) const {
        const Frames before = slice(0, begin).filled(begin);
        return before + run + slice(endOfWholeKeys(begin, begin + run.size()));
    }
    /// The end of the run that begins at `begin`: frames that all wait, or all do not.
    Count endOfRun(Count begin) const {
        const bool waits = at(begin).effect == Wait;
        Count end = begin;
        while (end < size() && (at(end).effect == Wait) == waits)
            ++end;
        return end;
    }
    /// With `keys` laid over them from `frame` on, in an animation of `duration` frames.
    Frames overridden(const Frames& keys, Count frame, Count duration) const {
        Frames result = filled(std::max(duration, keys.size()));
        Count end = 0;
        for (Count begin = 0; begin < keys.size(); begin = end) {
            end = keys.endOfRun(begin);
            if (keys[begin].effect != Wait)
                result = result.withRun(keys.slice(begin, end), frame + begin);
        }
        return result;
    }
};
using FrameMap = std::map<std::string, Frames>;

/// Has the operations of an animation; what it refuses throws std::invalid_argument.
struct Model {
    FrameMap layers;
    Count introSize = 0;
    Count outroSize = 0;

    Model() = default;
    Model(const FrameMap& given, Count intro, Count outro)
        : layers(given), introSize(intro), outroSize(outro) {
        if (intro > duration() || outro > duration() - intro)
            throw std::invalid_argument("sizes");
        for (auto& [name, frames] : layers)
            frames = frames.filled(duration());
    }
    Model copy() const { return {layers, introSize, outroSize}; }

    Count duration() const {
        Count longest = 0;
        for (const auto& [name, frames] : layers)
            longest = std::max(longest, frames.size());
        return longest;
    }
    /// The outro's first frame; past every frame, if it is longer than the animation.
    Count outroBegin() const { return outroSize <= duration() ? duration() - outroSize : SIZE_MAX; }
    /// The frames [from, to) of each layer.
    Model part(Count from, Count to = SIZE_MAX) const {
        Model result;
        for (const auto& [name, frames] : layers)
            result.layers[name] = frames.slice(from, to);
        return result;
    }

    void fillInLayer(Name name, Count frames) { layers[name] = layers[name].filled(frames); }
    void replaceInLayer(Name name, Count start, Count count, const KeyVector& keys) {
        removeInLayer(name, start, count);
        insertInLayer(name, keys, start);
    }
    void insertInLayer(Name name, const KeyVector& keys, Count frame) {
        if (!keys.empty())
            layers[name] = layers[name].inserted(keys, frame);
    }
    void insertInLayer(Name name, const AnimationKey& key, Count frame) {
        insertInLayer(name, KeyVector{key}, frame);
    }
    void pushBackInLayer(Name name, const KeyVector& keys) { layers[name] = layers[name] + keys; }
    void removeInLayer(Name name, Count start, Count count) {
        layers[name] = layers[name].removed(start, count);
    }
    void overrideLayerWith(Name name, const Frames& keys, Count frame) {
        layers[name] = layers[name].overridden(keys, frame, duration());
    }
    void overrideLayersWith(const Model& other, Count frame) {
        for (const auto& [name, keys] : FrameMap(other.layers))
            overrideLayerWith(name, keys, frame);
    }

    void replace(Count start, Count count, const Model& given) {
        const Model other = given.copy();
        remove(start, count);
        insert(other, start);
    }
    void insert(const Model& given, Count frame) {
        Model other = given.copy();
        const Count length = other.duration(), begin = outroBegin();
        if (length == 0)
            return;
        for (const auto& [name, frames] : layers)
            other.layers.try_emplace(name, Frames::wait(length));
        for (const auto& [name, frames] : other.layers)
            layers[name] = layers[name].inserted(frames, frame);
        introSize += introSize > frame ? length : 0;
        outroSize += begin < frame ? length : 0;
    }
    void pushBack(Model other, bool keepOutro, bool keepIntro) {
        if (!keepOutro)
            remove(outroBegin(), outroSize);
        if (!keepIntro)
            other.remove(0, other.introSize);
        insert(other, duration());
        outroSize = other.outroSize;
    }
    void remove(Count start, Count count) {
        if (count == 0 || duration() <= start)
            return;
        introSize = Frames::wait(introSize).removed(start, count).size();
        if (outroSize <= duration()) {
            std::string all(outroBegin(), ' ');
            all.append(outroSize, 'o').erase(start, count);
            outroSize = static_cast<Count>(std::count(all.begin(), all.end(), 'o'));
        }
        for (auto& [name, frames] : layers)
            frames = frames.removed(start, count);
    }

    Model loop(unsigned int count, bool repeatIntro, bool repeatOutro) const {
        Model result = copy();
        if (count == 0)
            result.remove(introSize, outroBegin() - introSize);
        for (unsigned int i = 1; i < count; ++i) {
            result.insert(repeatIntro ? part(0, introSize) : Model(), introSize);
            result.insert(repeatOutro ? part(outroBegin()) : Model(), introSize);
            result.insert(part(introSize, outroBegin()), introSize);
        }
        return result;
    }
    /// The sizes of the pieces are right where all layers are filled.
    std::vector<Model> splitAt(std::set<unsigned int> cuts, bool keepIntro, bool keepOutro) const {
        std::vector<Model> pieces;
        Count from = 0;
        for (const unsigned int cut : cuts) {
            Model& piece = pieces.emplace_back(part(from, cut));
            from = cut;
            const Count end = std::min<Count>(cut, duration());
            if (keepIntro && end >= introSize) {
                piece.introSize = std::min(introSize, piece.duration() + introSize - end);
                keepIntro = false;
            }
            if (keepOutro && end >= outroBegin()) {
                piece.outroSize = end - outroBegin();
                keepOutro = false;
            }
        }
        pieces.push_back(part(from));
        return duration() > 0 ? pieces : std::vector<Model>(pieces.size());
    }
    std::vector<Model> splitEach(unsigned int step, bool keepIntro, bool keepOutro) const {
        if (step == 0)
            throw std::invalid_argument("step");
        std::set<unsigned int> cuts;
        for (Count cut = 0; cut <= duration(); cut += step)
            cuts.insert(static_cast<unsigned int>(cut));
        return splitAt(cuts, keepIntro, keepOutro);
    }
    void introBodyOutroLayers(FrameMap& intro, FrameMap& body, FrameMap& outro) const {
        const Count begin = std::max(introSize, outroSize <= duration() ? outroBegin() : 0);
        for (const auto& [name, frames] : FrameMap(layers)) {
            intro[name] = intro[name] + frames.slice(0, introSize);
            body[name] = body[name] + frames.slice(introSize, begin);
            outro[name] = outro[name] + frames.slice(begin);
        }
    }
};

/// Writes each frame as "H5", the effect's letter and the value, after a bar where a key begins.
inline std::ostream& operator<<(std::ostream& out, const Model& model) {
    out << "intro " << model.introSize << ", outro " << model.outroSize;
    for (const auto& [name, frames] : model.layers) {
        out << '\n' << name << ":";
        for (const Frame& frame : frames) {
            const auto effect = static_cast<std::size_t>(frame.effect);
            out << (frame.begins ? " | " : " ") << (effect < 4 ? "THNW"[effect] : 'E')
                << frame.value;
        }
    }
    return out;
}

} // namespace Kiv
