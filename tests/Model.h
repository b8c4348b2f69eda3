#pragma once

#include "Text.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

// Animations as plain lists of frames: every edit is a list operation. Keys count too, for a cut
// makes two of one, and overriding moves some whole; so a frame tells whether a key begins there.
namespace Kiv {

struct Frame {
    bool begins;
    AnimationKeyCommandEffect effect;
    double value = 0;
};

using Frames = std::vector<Frame>;

inline Frames frames_of(const KeyVector& layer) {
    Frames frames;
    for (const auto& [command, duration] : layer)
        for (unsigned int i = 0; i < duration; ++i) {
            const std::vector<float> args = command.args;
            const double start = args.empty() ? 0 : args[0];
            const double way = args.size() > 1 ? args[1] - start : 0;
            frames.push_back({i == 0, command.effect, start + way * i / duration});
        }
    return frames;
}

/// The frames [from, to), as far as there are any; a key begins with them.
inline Frames slice(const Frames& frames, std::size_t from, std::size_t to) {
    Frames part;
    for (std::size_t i = from; i < std::min(to, frames.size()); ++i)
        part.push_back({frames[i].begins || i == from, frames[i].effect, frames[i].value});
    return part;
}

inline Frames joined(std::initializer_list<Frames> parts) {
    Frames all;
    for (const Frames& part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

inline Frames wait(std::size_t count) {
    return slice(Frames(count, {false, Wait}), 0, count);
}

inline Frames filled(const Frames& frames, std::size_t count) {
    return joined({frames, wait(count - std::min(count, frames.size()))});
}

inline Frames inserted(const Frames& frames, const Frames& other, std::size_t at) {
    if (other.empty())
        return frames;
    return joined({filled(slice(frames, 0, at), at), other, slice(frames, at, frames.size())});
}

inline Frames removed(const Frames& frames, std::size_t start, std::size_t count) {
    return joined({slice(frames, 0, start), slice(frames, start + count, frames.size())});
}

/// `duration` is that of the animation.
inline Frames overridden(Frames frames, const Frames& keys, std::size_t at, std::size_t duration) {
    frames = filled(frames, std::max(duration, keys.size()));
    for (std::size_t i = 0; i < keys.size();) {
        std::size_t next = i; // behind the run, or the wait
        while (next < keys.size() && (keys[next].effect == Wait) == (keys[i].effect == Wait))
            ++next;
        if (keys[i].effect != Wait) {
            std::size_t end = at; // behind the last whole key that the run replaces
            frames = filled(frames, at);
            for (std::size_t j = at; j <= std::min(frames.size(), at + next - i); ++j)
                if (j == frames.size() || frames[j].begins)
                    end = j;
            frames = joined(
                {slice(frames, 0, at), slice(keys, i, next), slice(frames, end, frames.size())});
        }
        at += next - i;
        i = next;
    }
    return frames;
}

struct Model {
    std::map<std::string, Frames> layers;
    std::size_t intro = 0, outro = 0;

    std::size_t duration() const {
        std::size_t longest = 0;
        for (const auto& [name, frames] : layers)
            longest = std::max(longest, frames.size());
        return longest;
    }

    std::size_t outroStart() const { return duration() - std::min(outro, duration()); }

    std::size_t outroBegin() const { return outro <= duration() ? outroStart() : SIZE_MAX; }

    /// What a copy is; nothing if it is refused.
    std::optional<Model> copy() const {
        Model result = *this;
        for (auto& [name, frames] : result.layers)
            frames = filled(frames, duration());
        return intro + outro <= duration() ? std::optional(result) : std::nullopt;
    }

    void insert(const Model& other, std::size_t at) {
        const std::size_t length = other.duration(), start = outroBegin();
        if (length == 0)
            return;
        for (auto& [name, frames] : layers)
            frames = inserted(
                frames, other.layers.contains(name) ? other.layers.at(name) : wait(length), at);
        for (const auto& [name, frames] : other.layers)
            layers.try_emplace(name, inserted({}, frames, at));
        intro += intro > at ? length : 0;
        outro += start < at ? length : 0;
    }

    void remove(std::size_t start, std::size_t count) {
        const std::size_t before = duration(), outroBegin = this->outroBegin();
        if (count == 0 || before <= start)
            return;
        for (auto& [name, frames] : layers)
            frames = removed(frames, start, count);
        if (intro > start)
            intro = start + count <= intro ? intro - count : start;
        const std::size_t end = std::min(start + count, before);
        if (end > outroBegin)
            outro = outroBegin > start ? before - end : outro - (end - start);
    }

    void pushBack(Model other, bool keepOutro, bool keepIntro) {
        if (!keepOutro)
            remove(outroBegin(), outro);
        if (!keepIntro)
            other.remove(0, other.intro);
        insert(other, duration());
        outro = other.outro;
    }

    void overrideWith(const std::map<std::string, Frames>& other, std::size_t at) {
        for (const auto& [name, keys] : other)
            layers[name] = overridden(layers[name], keys, at, duration());
    }

    /// The frames [from, to) of each layer.
    Model part(std::size_t from, std::size_t to) const {
        Model result;
        for (const auto& [name, frames] : layers)
            result.layers[name] = slice(frames, from, to);
        return result;
    }

    /// Of one that is as copied.
    Model looped(unsigned int count, bool repeatIntro, bool repeatOutro) const {
        Model result = *this;
        for (auto& [name, frames] : result.layers) {
            const Frames head = slice(frames, 0, intro);
            const Frames body = slice(frames, intro, outroStart());
            const Frames tail = slice(frames, outroStart(), frames.size());
            if (count == 0 && !body.empty())
                frames = joined({head, tail});
            for (unsigned int i = 1; i < count; ++i)
                frames = inserted(
                    frames,
                    joined({body, repeatOutro ? tail : Frames(), repeatIntro ? head : Frames()}),
                    intro);
        }
        return result;
    }

    std::vector<Model> split(const std::set<unsigned int>& cuts, bool keepIntro,
                             bool keepOutro) const {
        std::vector<Model> pieces(cuts.size() + 1);
        for (const auto& [name, frames] : layers) {
            std::size_t from = 0;
            Model* piece = pieces.data();
            for (const unsigned int cut : cuts) {
                const std::size_t reached = std::min<std::size_t>(cut, frames.size());
                piece->layers[name] = slice(frames, std::exchange(from, cut), cut);
                const std::size_t length = piece->duration(); // of the layers up to this one
                if (std::exchange(keepIntro, keepIntro && reached < intro) && !keepIntro)
                    piece->intro = std::min(length, length - reached + intro);
                if (std::exchange(keepOutro, keepOutro && reached < outroBegin()) && !keepOutro)
                    piece->outro = std::min(length, reached - outroBegin());
                ++piece;
            }
            piece->layers[name] = slice(frames, from, frames.size());
        }
        return duration() > 0 ? pieces : std::vector<Model>(cuts.size() + 1);
    }
};

/// Where the two differ; "" if nowhere.
inline std::string difference(const Animation& animation, const Model& model) {
    if (animation.introSize != model.intro || animation.outroSize != model.outro)
        return "other sizes: " + std::to_string(model.intro) + " " + std::to_string(model.outro);
    const auto named = [](const auto& a, const auto& b) { return a.first == b.first; };
    if (!std::ranges::equal(animation.layers, model.layers, named))
        return "other layers";
    const auto same = [](const Frame& a, const Frame& b) {
        return a.begins == b.begins && a.effect == b.effect &&
               std::abs(a.value - b.value) <= (a.effect == Transition ? 1e-4 : 0);
    };
    for (const auto& [name, expected] : model.layers)
        if (!std::ranges::equal(frames_of(animation.layers.at(name)), expected, same))
            return "another layer " + name;
    return "";
}

} // namespace Kiv
