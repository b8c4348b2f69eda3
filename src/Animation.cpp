#include <animationmodel/Animation.h>

#include "LayerCursor.h"
#include "Splice.h"
#include "text.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Kiv {

namespace {

/// Frames of the shortest and of the longest layer; 0 without layers.
struct Lengths {
    unsigned int shortest, longest;
    bool equal() const { return shortest == longest; }
};

Lengths checked_lengths(const LayerMap& layers) {
    std::uint64_t shortest = layers.empty() ? 0 : maxFrame;
    std::uint64_t longest = 0;
    for (const auto& [name, keys] : layers) {
        const std::uint64_t total = total_of(keys);
        check_length(total, "Layer (", name, ") lasts ");
        shortest = std::min(shortest, total);
        longest = std::max(longest, total);
    }
    return {static_cast<unsigned int>(shortest), static_cast<unsigned int>(longest)};
}

void check_frame_rate(float fps) {
    if (fps <= 0) // a NaN passes
        refuse("FPS should be strictly higher than 0");
}

/// Makes all checks that an animation of these parts has to pass once its layers are filled.
Lengths check_parts(const LayerMap& layers, unsigned int introSize, unsigned int outroSize,
                    float fps) {
    check_frame_rate(fps);
    const Lengths lengths = checked_lengths(layers);
    const unsigned int duration = lengths.longest;
    if (introSize > duration || outroSize > duration)
        refuse("Intro size (", introSize, ") and outro size (", outroSize,
               ") should be lower or equal to duration of the animation (", duration, ")");
    if (introSize + outroSize > duration)
        refuse("Intro (which size = ", introSize, ") and outro (which size = ", outroSize,
               ") should not overlap (animation duration = ", duration, ")");
    return lengths;
}

/// The layer of that name, created if it is missing: at once, if the name sorts behind all others.
KeyVector& layer_in(LayerMap& layers, const std::string& name) {
    return layers.try_emplace(layers.end(), name)->second;
}

/// Copies `layers`, which have these lengths, all filled up to the longest.
LayerMap copy_filled(const LayerMap& layers, Lengths lengths) {
    if (lengths.equal())
        return layers;
    LayerMap copy;
    for (const auto& [name, keys] : layers)
        filled(keys, total_of(keys), lengths.longest).appendTo(layer_in(copy, name));
    return copy;
}

} // namespace

float Animation::defaultFps = 25.0F;

Animation::Animation() : Animation(defaultFps) {}

Animation::Animation(float fps) : introSize(0), outroSize(0), fps(fps) {
    _checkAttr();
}

Animation::Animation(const LayerMap& layers) : Animation(layers, 0, 0) {}

Animation::Animation(const LayerMap& layers, unsigned int introSize, unsigned int outroSize)
    : layers(copy_filled(layers, check_parts(layers, introSize, outroSize, defaultFps))),
      introSize(introSize), outroSize(outroSize), fps(defaultFps) {}

Animation::Animation(const Animation& other)
    : layers(copy_filled(other.layers,
                         check_parts(other.layers, other.introSize, other.outroSize, other.fps))),
      introSize(other.introSize), outroSize(other.outroSize), fps(other.fps) {}

Animation::Animation(Animation&& other) noexcept
    : introSize(std::exchange(other.introSize, 0)), outroSize(std::exchange(other.outroSize, 0)),
      fps(other.fps) {
    layers.swap(other.layers);
}

Animation& Animation::operator=(const Animation& other) {
    return *this = Animation(other);
}

Animation& Animation::operator=(Animation&& other) noexcept {
    Animation taken(std::move(other)); // even if `other` is this one
    layers.swap(taken.layers);
    introSize = taken.introSize;
    outroSize = taken.outroSize;
    fps = taken.fps;
    return *this;
}

Animation::~Animation() = default;

KeyVector Animation::layer(const std::string& name) const {
    const auto found = layers.find(name);
    if (found == layers.end())
        refuse("Layer name given as parameter (", name, ") does not exist in animation");
    return found->second;
}

bool Animation::hasLayer(const std::string& name) const {
    return layers.contains(name);
}

bool Animation::empty() const {
    return std::all_of(layers.begin(), layers.end(),
                       [](const auto& named) { return named.second.empty(); });
}

unsigned int Animation::durationInFrames() const {
    return durationInFramesOf(layers);
}

unsigned int Animation::durationInFramesOf(const LayerMap& layers) {
    unsigned int longest = 0;
    for (const auto& [name, keys] : layers)
        longest = std::max(longest, durationInFramesOf(keys));
    return longest;
}

unsigned int Animation::durationInFramesOf(const KeyVector& layer) {
    return static_cast<unsigned int>(total_of(layer));
}

unsigned int Animation::outroStartFrame() const {
    const unsigned int duration = durationInFrames();
    return duration - std::min(outroSize, duration);
}

namespace {

float seconds(unsigned int frames, float fps) {
    return std::fabs(static_cast<float>(frames) / fps);
}

} // namespace

float Animation::durationInSeconds() const {
    return seconds(durationInFrames(), fps);
}

float Animation::simulatedDurationInSeconds(float fps) const {
    if (fps <= 0) // a NaN passes
        refuse("Simulated FPS given as argument should be different from 0 to calculate duration "
               "in seconds");
    return seconds(durationInFrames(), fps);
}

namespace {

/// Applies `edit`, which either succeeds or changes nothing, to the layer of that name. A missing
/// layer is created, with what `edit` makes of an empty one.
template <class Edit>
void edit_layer(LayerMap& layers, const std::string& name, const Edit& edit) {
    if (const auto found = layers.find(name); found != layers.end()) {
        edit(found->second);
        return;
    }
    KeyVector created;
    edit(created);
    layers.emplace(name, std::move(created));
}

void fill(KeyVector& layer, unsigned int frames) {
    const unsigned int total = Animation::durationInFramesOf(layer);
    if (total < frames)
        layer.emplace_back(Wait, frames - total);
}

} // namespace

void Animation::fillInLayer(const std::string& name, unsigned int frames) {
    edit_layer(layers, name, [&](KeyVector& layer) { fill(layer, frames); });
}

namespace {

void insert_keys(LayerMap& layers, const std::string& name, Keys keys, unsigned int frame) {
    if (!keys.empty())
        edit_layer(layers, name, [&](KeyVector& layer) {
            replacement(layer, LayerCursor(layer), frame, 0, keys).commit();
        });
}

} // namespace

void Animation::insertInLayer(const std::string& name, const KeyVector& keys, unsigned int frame) {
    insert_keys(layers, name, keys, frame);
}

void Animation::insertInLayer(const std::string& name, const AnimationKey& key,
                              unsigned int frame) {
    insert_keys(layers, name, {&key, 1}, frame);
}

void Animation::insertInLayer(const std::string& name, AnimationKeyCommandEffect effect,
                              const std::vector<float>& args, unsigned int duration,
                              unsigned int frame) {
    insertInLayer(name, AnimationKey({effect, args}, duration), frame);
}

void Animation::insertInLayer(const std::string& name, AnimationKeyCommandEffect effect,
                              std::initializer_list<float> args, unsigned int duration,
                              unsigned int frame) {
    insertInLayer(name, AnimationKey({effect, args}, duration), frame);
}

void Animation::pushBackInLayer(const std::string& name, const KeyVector& keys) {
    edit_layer(layers, name, [&](KeyVector& layer) {
        Splice(layer, layer.size(), {{}, keys, {}}, LayerCursor(Keys())).commit();
    });
}

void Animation::pushBackInLayer(const std::string& name, const AnimationKey& key) {
    edit_layer(layers, name, [&](KeyVector& layer) { layer.push_back(key); });
}

void Animation::pushBackInLayer(const std::string& name, AnimationKeyCommandEffect effect,
                                const std::vector<float>& args, unsigned int duration) {
    pushBackInLayer(name, AnimationKey({effect, args}, duration));
}

void Animation::pushBackInLayer(const std::string& name, AnimationKeyCommandEffect effect,
                                std::initializer_list<float> args, unsigned int duration) {
    pushBackInLayer(name, AnimationKey({effect, args}, duration));
}

void Animation::removeInLayer(const std::string& name, unsigned int start, unsigned int count) {
    edit_layer(layers, name, [&](KeyVector& layer) {
        replacement(layer, LayerCursor(layer), start, count, {}).commit();
    });
}

namespace {

bool is_wait(const AnimationKey& key) {
    return key.command.effect == Wait;
}

struct Built {
    KeyVector keys;
    unsigned int total; ///< Their frames.
};

/// What `layer`, which lasts `total` frames, becomes with `keys` laid over it from `position` on in
/// an animation of `duration` frames.
Built overridden(Keys layer, unsigned int total, unsigned int duration, Keys keys,
                 unsigned int position) {
    const unsigned int least = std::max(duration, static_cast<unsigned int>(total_of(keys)));
    LayerCursor cursor(filled(layer, total, least));
    total = std::max(total, least);
    KeyVector result;
    result.reserve(layer.size() + keys.size() + 2);
    for (auto key = keys.begin(); key != keys.end();) {
        if (is_wait(*key)) {
            position += key++->duration;
            continue;
        }
        const auto runEnd = std::find_if(key, keys.end(), is_wait);
        const Keys run(&*key, static_cast<std::size_t>(runEnd - key));
        cursor.takeFrames(position).appendTo(result);
        if (cursor.frame < position)
            result.emplace_back(Wait, position - cursor.frame);
        result.insert(result.end(), run.begin(), run.end());
        position += static_cast<unsigned int>(total_of(run));
        cursor.takeKeys(position);
        total += position - cursor.frame;
        cursor.frame = position; // the key that the run ends inside follows it whole
        key = runEnd;
    }
    cursor.rest.appendTo(result);
    return {std::move(result), total};
}

} // namespace

void Animation::overrideLayerWith(const std::string& name, const KeyVector& keys,
                                  unsigned int frame) {
    unsigned int total = 0;
    unsigned int duration = 0;
    for (const auto& [other, layer] : layers) {
        const unsigned int length = durationInFramesOf(layer);
        duration = std::max(duration, length);
        if (other == name)
            total = length;
    }
    edit_layer(layers, name, [&](KeyVector& layer) {
        layer = overridden(layer, total, duration, keys, frame).keys;
    });
}

namespace {

/// Checks `animation` and fills its layers, as copying it would; returns its duration.
unsigned int fill_and_check(Animation& animation) {
    const Lengths lengths =
        check_parts(animation.layers, animation.introSize, animation.outroSize, animation.fps);
    if (!lengths.equal())
        for (auto& [name, keys] : animation.layers)
            fill(keys, lengths.longest);
    return lengths.longest;
}

/// What each of the layers lasts, in the order of their names, and the longest of them.
struct Totals {
    explicit Totals(const LayerMap& layers) {
        each.reserve(layers.size());
        for (const auto& [name, keys] : layers) {
            each.push_back(Animation::durationInFramesOf(keys));
            longest = std::max(longest, each.back());
        }
    }

    std::vector<unsigned int> each;
    unsigned int longest = 0;
};

/// Finds layers by name, each name behind the one before: one walk along the map for all of them.
class AscendingSearch {
public:
    explicit AscendingSearch(LayerMap& map) : map(map), place(map.begin()) {}

    /// The layer, or null. Calls `skip` with the place of each layer passed that was not looked
    /// for.
    template <class Skip>
    KeyVector* find(const std::string& name, const Skip& skip) {
        for (int order = -1; place != map.end() && order < 0;) {
            order = place->first.compare(name);
            if (order == 0)
                return &(place++)->second;
            if (order < 0)
                skip(place++);
        }
        return nullptr;
    }

    /// Passes all layers that are left.
    template <class Skip>
    void finish(const Skip& skip) {
        while (place != map.end())
            skip(place++);
    }

private:
    LayerMap& map;
    LayerMap::iterator place;
};

/// Edits of the layers of one animation that are prepared one by one and then made all together.
class Edits {
public:
    explicit Edits(LayerMap& layers) : layers(layers) {}
    Edits(const Edits&) = delete; // splices refer to the gap
    Edits& operator=(const Edits&) = delete;

    /// Prepares to put `other`, whose layers all last `length` frames, in the place of the frames
    /// [start, start + count) of every layer. Where it lacks a layer, a `Wait` key stands in. What
    /// the layers last may be known before; then those that end by `start` are not walked.
    void replace(unsigned int start, unsigned int count, LayerMap& other, unsigned int length,
                 const Totals* totals = nullptr);

    /// Makes the edits.
    void commit() noexcept;

    std::vector<Splice> splices;
    LayerMap added;            ///< Layers under names that the animation lacks.
    unsigned int duration = 0; ///< Of the animation before a replacement.

private:
    LayerMap& layers;
    AnimationKey gap{Wait, 1};
};

void Edits::replace(unsigned int start, unsigned int count, LayerMap& other, unsigned int length,
                    const Totals* totals) {
    gap.duration = length;
    const Keys missing(&gap, length > 0 ? 1 : 0);
    const auto add = [&](LayerMap::iterator named) {
        if (length == 0)
            return;
        if (start > 0)
            named->second.insert(named->second.begin(), AnimationKey(Wait, start));
        added.insert(added.end(), other.extract(named));
    };
    AscendingSearch theirs(other);
    splices.reserve(layers.size());
    for (auto& [name, layer] : layers) {
        const KeyVector* found = theirs.find(name, add);
        const std::size_t index = splices.size(); // of the layer
        LayerCursor cursor(layer);
        if (totals != nullptr && totals->each[index] <= start)
            cursor = LayerCursor(Keys(), totals->each[index]); // at its end
        splices.push_back(
            replacement(layer, cursor, start, count, found != nullptr ? Keys(*found) : missing));
        duration = std::max(duration, splices.back().lengthBefore());
    }
    theirs.finish(add);
}

void Edits::commit() noexcept {
    for (Splice& splice : splices)
        splice.commit();
    auto place = layers.begin();
    while (!added.empty()) {
        auto node = added.extract(added.begin());
        while (place != layers.end() && place->first < node.key())
            ++place;
        layers.insert(place, std::move(node));
    }
}

/// The outro's first frame for edits, in an animation of `duration` frames: an outro longer than
/// that begins past every frame.
unsigned int outro_begin(const Animation& animation, unsigned int duration) {
    return animation.outroSize <= duration ? duration - animation.outroSize : maxFrame;
}

/// Takes off the sizes what is theirs of the frames [start, start + count), in an animation of
/// `duration` frames.
void shrink_sizes(Animation& animation, unsigned int duration, unsigned int start,
                  unsigned int count) {
    const unsigned int outroBegin = outro_begin(animation, duration);
    const unsigned int end = end_of_range(start, count);
    animation.introSize -=
        std::min(animation.introSize, end) - std::min(animation.introSize, start);
    animation.outroSize -=
        std::max(outroBegin, std::min(duration, end)) - std::max(outroBegin, start);
}

/// Widens the sizes by `count` frames inserted at `frame` into an animation of `duration` frames.
void widen_sizes(Animation& animation, unsigned int duration, unsigned int frame,
                 unsigned int count) {
    const bool inOutro = outro_begin(animation, duration) < frame;
    animation.introSize += frame < animation.introSize ? count : 0;
    animation.outroSize += inOutro ? count : 0;
}

} // namespace

void Animation::insert(Animation other, unsigned int frame) {
    const unsigned int length = fill_and_check(other);
    if (length == 0)
        return;
    Edits edits(layers);
    edits.replace(frame, 0, other.layers, length);
    edits.commit();
    widen_sizes(*this, edits.duration, frame, length);
}

void Animation::pushBack(Animation other, bool keepOutro, bool keepIntro) {
    if (!keepIntro)
        other.remove(0, other.introSize);
    const unsigned int length = fill_and_check(other);
    const Totals totals(layers);
    const unsigned int duration = totals.longest;
    const unsigned int end =
        keepOutro ? duration : std::min(duration, outro_begin(*this, duration));
    Edits edits(layers);
    edits.replace(end, duration - end, other.layers, length, &totals);
    edits.commit();
    shrink_sizes(*this, duration, end, duration - end);
    widen_sizes(*this, end, end, length);
    outroSize = other.outroSize;
}

void Animation::remove(unsigned int start, unsigned int count) {
    if (count == 0)
        return;
    LayerMap none;
    Edits edits(layers);
    edits.replace(start, count, none, 0);
    if (edits.duration <= start)
        return;
    edits.commit();
    shrink_sizes(*this, edits.duration, start, count);
}

void Animation::overrideLayersWith(const Animation& other, unsigned int frame) {
    const Totals totals(layers);
    auto total = totals.each.begin();
    unsigned int duration = totals.longest;
    Edits edits(layers);
    edits.splices.reserve(other.layers.size());
    AscendingSearch ours(layers);
    for (const auto& [name, keys] : other.layers) {
        KeyVector* layer = ours.find(name, [&](auto /*passed*/) { ++total; });
        Built result = layer != nullptr ? overridden(*layer, *total++, duration, keys, frame)
                                        : overridden({}, 0, duration, keys, frame);
        duration = std::max(duration, result.total);
        if (layer != nullptr)
            edits.splices.emplace_back(*layer, std::move(result.keys));
        else
            layer_in(edits.added, name) = std::move(result.keys);
    }
    edits.commit();
}

void Animation::setFPSToFitDurationInSeconds(float seconds) {
    if (seconds <= 0) // a NaN passes
        refuse("Duration given as argument is ", seconds,
               " but should be strictly higher than 0 to calculate FPS");
    fps = static_cast<float>(durationInFrames()) / seconds;
}

void Animation::reset() {
    layers.clear();
    introSize = 0;
    outroSize = 0;
    fps = defaultFps;
}

void Animation::introBodyOutroLayers(LayerMap& intro, LayerMap& body, LayerMap& outro) const {
    const unsigned int outroStart = outroStartFrame();
    const bool aliased = &intro == &layers || &body == &layers || &outro == &layers;
    const LayerMap copy = aliased ? layers : LayerMap();
    for (const auto& [name, keys] : aliased ? copy : layers) {
        LayerCursor cursor(keys);
        cursor.takeFrames(introSize).appendTo(layer_in(intro, name));
        cursor.takeFrames(outroStart).appendTo(layer_in(body, name));
        cursor.rest.appendTo(layer_in(outro, name));
    }
}

namespace {

/// How one layer after another is looped.
struct Looping {
    unsigned int introSize, outroStart, repeats; ///< The body plays once more than `repeats`.
    bool repeatIntro, repeatOutro;
    KeyVector repeated; ///< What comes back, of the last layer.

    void append(KeyVector& out, const Stretch& layer) {
        LayerCursor cursor(layer);
        const Stretch intro = cursor.takeFrames(introSize);
        const Stretch rest = cursor.rest;
        repeated.clear();
        cursor.takeFrames(outroStart).appendTo(repeated);
        if (repeatOutro)
            cursor.rest.appendTo(repeated);
        if (repeatIntro)
            intro.appendTo(repeated);

        out.reserve(intro.size() + repeats * repeated.size() + rest.size());
        intro.appendTo(out);
        for (unsigned int i = 0; i < repeats; ++i)
            out.insert(out.end(), repeated.begin(), repeated.end());
        rest.appendTo(out);
    }
};

} // namespace

Animation Animation::loop(unsigned int count, bool repeatIntro, bool repeatOutro) const {
    const unsigned int duration = check_parts(layers, introSize, outroSize, fps).longest;
    const unsigned int outroStart = duration - outroSize;
    if (count == 0) {
        Animation result(*this);
        result.remove(introSize, outroStart - introSize);
        return result;
    }
    if (count > 1 && !layers.empty())
        check_frame_rate(defaultFps);
    const unsigned int once =
        outroStart - introSize + (repeatIntro ? introSize : 0) + (repeatOutro ? outroSize : 0);
    const unsigned int repeats = once == 0 ? 0 : count - 1;
    if (repeats == 0)
        return *this;
    check_length(duration + std::uint64_t{repeats} * once, "Animation looped ", count,
                 " times would last ");

    Animation result(fps);
    result.introSize = introSize;
    result.outroSize = outroSize;
    Looping looping{introSize, outroStart, repeats, repeatIntro, repeatOutro, {}};
    for (const auto& [name, keys] : layers)
        looping.append(layer_in(result.layers, name), filled(keys, total_of(keys), duration));
    return result;
}

namespace {

/// Marks pieces with what they hold of the intro and of the outro. Each mark is spent by the first
/// layer that reaches the boundary.
struct Marks {
    unsigned int introSize, outroStart;
    bool intro, outro; ///< Not spent.

    /// The layer that is being cut is at `frame`, where `piece` ends.
    void put(Animation& piece, unsigned int frame) {
        if (intro && frame >= introSize) {
            const unsigned int duration = piece.durationInFrames();
            piece.introSize = std::min(duration, duration - frame + introSize);
            intro = false;
        }
        if (outro && frame >= outroStart) {
            piece.outroSize = std::min(piece.durationInFrames(), frame - outroStart);
            outro = false;
        }
    }
};

/// Cuts all layers of `animation` at each of `frames`, which ascend.
std::vector<Animation> split(const Animation& animation, const std::vector<unsigned int>& frames,
                             bool keepIntro, bool keepOutro) {
    std::vector<Animation> pieces(frames.size() + 1, Animation(animation.fps));
    if (animation.empty())
        return pieces;
    Marks marks{animation.introSize,
                keepOutro ? outro_begin(animation, animation.durationInFrames()) : 0, keepIntro,
                keepOutro};
    for (const auto& [name, keys] : animation.layers) {
        LayerCursor cursor(keys);
        auto piece = pieces.begin();
        for (const unsigned int frame : frames) {
            cursor.takeFrames(frame).appendTo(layer_in(piece->layers, name));
            marks.put(*piece++, cursor.frame);
        }
        cursor.rest.appendTo(layer_in(piece->layers, name));
    }
    return pieces;
}

} // namespace

std::vector<Animation> Animation::splitAt(unsigned int frame, bool keepIntro,
                                          bool keepOutro) const {
    return split(*this, {frame}, keepIntro, keepOutro);
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the signature is settled.
std::vector<Animation> Animation::splitAt(std::set<unsigned int> frames, bool keepIntro,
                                          bool keepOutro) const {
    return split(*this, {frames.begin(), frames.end()}, keepIntro, keepOutro);
}

std::vector<Animation> Animation::splitEach(unsigned int step, bool keepIntro,
                                            bool keepOutro) const {
    if (step == 0)
        refuse("Could not split Animation each 0 frame: This number should be strictly higher than "
               "0");
    const unsigned int duration = durationInFrames();
    std::vector<unsigned int> frames;
    frames.reserve(duration / step + std::size_t{1});
    for (std::uint64_t frame = 0; frame <= duration; frame += step)
        frames.push_back(static_cast<unsigned int>(frame));
    return split(*this, frames, keepIntro, keepOutro);
}

void Animation::_checkAttr() {
    check_parts(layers, introSize, outroSize, fps);
}

namespace {

/// The keys of `layer` from `it` on.
Keys keys_from(const KeyVector& layer, KeyVector::const_iterator it) {
    return Keys(layer).subspan(static_cast<std::size_t>(it - layer.begin()));
}

} // namespace

void Animation::_iterateOnLayer(unsigned int& frame, KeyVector::iterator& it, unsigned int target,
                                const KeyVector& layer, bool toEnd, KeyVector* out) {
    LayerCursor cursor(keys_from(layer, it), frame);
    const Stretch passed = cursor.takeKeys(toEnd ? maxFrame : target);
    if (out != nullptr)
        passed.appendTo(*out);
    frame = cursor.frame;
    it += static_cast<std::ptrdiff_t>(passed.size());
}

void Animation::_goToFrame(unsigned int& frame, KeyVector::iterator& it, unsigned int target,
                           const KeyVector& layer) {
    _iterateOnLayer(frame, it, target, layer, false, nullptr);
}

void Animation::_subLayer(unsigned int& frame, KeyVector::iterator& it, unsigned int target,
                          const KeyVector& layer, KeyVector& out) {
    _iterateOnLayer(frame, it, target, layer, false, &out);
}

void Animation::_tailLayer(unsigned int& frame, KeyVector::iterator& it, const KeyVector& layer,
                           KeyVector& out) {
    _iterateOnLayer(frame, it, 0, layer, true, &out);
}

void Animation::_removeKeysOnTheWay(unsigned int& frame, KeyVector::iterator& it,
                                    unsigned int target, KeyVector& layer) {
    const auto first = it;
    _goToFrame(frame, it, target, layer);
    it = layer.erase(first, it);
}

void Animation::_removeKeys(unsigned int& frame, KeyVector::iterator& it, KeyVector& layer,
                            unsigned int start, unsigned int count) {
    unsigned int passed = frame;
    auto behind = it;
    _goToFrame(passed, behind, end_of_range(start, count), layer);
    const auto left = layer.end() - behind;
    Splice removed = replacement(layer, LayerCursor(keys_from(layer, it), frame), start, count, {});
    removed.commit();
    it = layer.end() - left;
    frame = left > 0 ? std::max(passed, start) : passed;
}

} // namespace Kiv
