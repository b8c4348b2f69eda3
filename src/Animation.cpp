#include <animationmodel/Animation.h>

#include "LayerCursor.h"
#include "Splice.h"
#include "text.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Kiv {

namespace {

/// The layer of that name, created if it is missing: at once, if the name sorts after all others.
KeyVector& layer_in(LayerMap& layers, const std::string& name) {
    return layers.try_emplace(layers.end(), name)->second;
}

/// What each of some layers lasts, in the order of their names, and the longest of them.
struct Totals {
    explicit Totals(const LayerMap& layers) {
        each.reserve(layers.size());
        for (const auto& [name, keys] : layers) {
            each.push_back(total_of(keys));
            longest = std::max(longest, each.back());
            equal = equal && each.back() == each.front();
        }
    }
    unsigned int duration() const { return static_cast<unsigned int>(longest); }

    std::vector<std::uint64_t> each;
    std::uint64_t longest = 0;
    bool equal = true; ///< Whether all of them last as long.
};

void check_frame_rate(float fps) {
    if (fps <= 0) // a NaN passes
        refuse("FPS should be strictly higher than 0");
}

/// Makes the checks of every constructor, on the layers as they are.
Totals check(const LayerMap& layers, unsigned int introSize, unsigned int outroSize, float fps) {
    check_frame_rate(fps);
    Totals totals(layers);
    if (totals.longest >= frameLimit) {
        auto total = totals.each.begin();
        for (const auto& [name, keys] : layers)
            check_length(*total++, "Layer (", name, ") lasts ");
    }
    const unsigned int duration = totals.duration();
    if (introSize > duration || outroSize > duration)
        refuse("Intro size (", introSize, ") and outro size (", outroSize,
               ") should be lower or equal to duration of the animation (", duration, ")");
    if (introSize + outroSize > duration)
        refuse("Intro (which size = ", introSize, ") and outro (which size = ", outroSize,
               ") should not overlap (animation duration = ", duration, ")");
    return totals;
}

Totals check(const Animation& it) {
    return check(it.layers, it.introSize, it.outroSize, it.fps);
}

/// Fills up a layer that lasts `total` frames.
void fill(KeyVector& layer, std::uint64_t total, unsigned int frames) {
    if (total < frames)
        layer.emplace_back(Wait, frames - static_cast<unsigned int>(total));
}

/// Fills up all layers to the longest.
void fill_all(LayerMap& layers, const Totals& totals) {
    if (totals.equal)
        return;
    auto total = totals.each.begin();
    for (auto& [name, keys] : layers)
        fill(keys, *total++, totals.duration());
}

/// A copy of the layers. They are measured before: measuring thousands of fresh ones takes longer.
LayerMap filled_copy(const LayerMap& layers, const Totals& totals) {
    LayerMap copy = layers;
    fill_all(copy, totals);
    return copy;
}

/// Checks and fills as every constructor does; returns the duration.
unsigned int check_and_fill(Animation& animation) {
    const Totals totals = check(animation);
    fill_all(animation.layers, totals);
    return totals.duration();
}

} // namespace

float Animation::defaultFps = 25.0F;

Animation::Animation() : Animation(defaultFps) {}

Animation::Animation(float fps) : introSize(0), outroSize(0), fps(fps) {
    _checkAttr();
}

Animation::Animation(const LayerMap& layers) : Animation(layers, 0, 0) {}

Animation::Animation(const LayerMap& layers, unsigned int introSize, unsigned int outroSize)
    : layers(filled_copy(layers, check(layers, introSize, outroSize, defaultFps))),
      introSize(introSize), outroSize(outroSize), fps(defaultFps) {}

Animation::Animation(const Animation& other)
    : layers(filled_copy(other.layers, check(other))), introSize(other.introSize),
      outroSize(other.outroSize), fps(other.fps) {}

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

static float seconds(unsigned int frames, float fps) {
    return std::fabs(static_cast<float>(frames) / fps);
}

float Animation::durationInSeconds() const {
    return seconds(durationInFrames(), fps);
}

float Animation::simulatedDurationInSeconds(float fps) const {
    if (fps <= 0) // a NaN passes
        refuse("Simulated FPS given as argument should be different from 0 to calculate duration "
               "in seconds");
    return seconds(durationInFrames(), fps);
}

/// Applies `edit`, which either succeeds or changes nothing, to the layer of that name. A missing
/// layer is created, with what `edit` makes of an empty one.
template <class Edit>
static void edit_layer(LayerMap& layers, const std::string& name, const Edit& edit) {
    if (const auto found = layers.find(name); found != layers.end()) {
        edit(found->second);
        return;
    }
    KeyVector created;
    edit(created);
    layers.emplace(name, std::move(created));
}

void Animation::fillInLayer(const std::string& name, unsigned int frames) {
    edit_layer(layers, name, [&](KeyVector& layer) { fill(layer, total_of(layer), frames); });
}

/// Puts `keys` in the place of the frames [start, start + count) of the layer of that name: every
/// edit of one layer but an override.
static void replace_in_layer(LayerMap& layers, const std::string& name, unsigned int start,
                             unsigned int count, Keys keys) {
    edit_layer(layers, name, [&](KeyVector& layer) {
        LayerCursor cursor(layer);
        Splice(layer, cursor, start, count, keys).commit();
    });
}

void Animation::replaceInLayer(const std::string& name, unsigned int start, unsigned int count,
                               const KeyVector& keys) {
    replace_in_layer(layers, name, start, count, keys);
}

void Animation::replaceInLayer(const std::string& name, unsigned int start, unsigned int count,
                               const AnimationKey& key) {
    replace_in_layer(layers, name, start, count, {&key, 1});
}

void Animation::insertInLayer(const std::string& name, const KeyVector& keys, unsigned int frame) {
    if (!keys.empty())
        replace_in_layer(layers, name, frame, 0, keys);
}

void Animation::insertInLayer(const std::string& name, const AnimationKey& key,
                              unsigned int frame) {
    replace_in_layer(layers, name, frame, 0, {&key, 1});
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
        LayerCursor end{Keys()}; // nothing is to come
        Splice(layer, end, 0, 0, keys).commit();
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
    replace_in_layer(layers, name, start, count, {});
}

static bool is_wait(const AnimationKey& key) {
    return key.command.effect == Wait;
}

namespace {

/// A layer as it will be, and what it then lasts.
struct Overridden {
    KeyVector keys;
    std::uint64_t length;
};

/// `layer`, which lasts `length` frames, with `keys` laid over it from `position` on, in an
/// animation of `duration` frames.
Overridden overridden(Keys layer, std::uint64_t length, unsigned int duration, Keys keys,
                      unsigned int position) {
    const unsigned int least = std::max(duration, static_cast<unsigned int>(total_of(keys)));
    LayerCursor cursor(filled(layer, length, least));
    Overridden result{{}, std::max<std::uint64_t>(length, least)};
    result.keys.reserve(layer.size() + keys.size() + 2);
    for (auto key = keys.begin(); key != keys.end();) {
        if (is_wait(*key)) {
            position += key++->duration;
            continue;
        }
        const auto runEnd = std::find_if(key, keys.end(), is_wait);
        const Keys run(&*key, static_cast<std::size_t>(runEnd - key));
        cursor.takeFrames(position).appendTo(result.keys);
        if (cursor.frame < position)
            result.keys.emplace_back(Wait, position - cursor.frame);
        result.keys.insert(result.keys.end(), run.begin(), run.end());
        position += static_cast<unsigned int>(total_of(run));
        cursor.takeKeys(position);
        result.length += position - cursor.frame;
        cursor.frame = position; // the key that the run ends inside follows it whole
        key = runEnd;
    }
    cursor.rest.appendTo(result.keys);
    return result;
}

} // namespace

void Animation::overrideLayerWith(const std::string& name, const KeyVector& keys,
                                  unsigned int frame) {
    unsigned int duration = 0;
    std::uint64_t length = 0;
    for (const auto& [other, layer] : layers) {
        const std::uint64_t total = total_of(layer);
        duration = std::max(duration, static_cast<unsigned int>(total));
        if (other == name)
            length = total;
    }
    edit_layer(layers, name, [&](KeyVector& layer) {
        layer = overridden(layer, length, duration, keys, frame).keys;
    });
}

namespace {

/// Edits of layers that are prepared one by one and then made all together.
struct Edits {
    explicit Edits(const LayerMap& layers) { splices.reserve(layers.size()); }

    /// Makes them.
    void commit(LayerMap& layers) noexcept;

    std::vector<Splice> splices;
    LayerMap added; ///< Layers under new names.
};

void Edits::commit(LayerMap& layers) noexcept {
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

/// Walks two maps side by side: calls `visit` for each name with its place in either, or the end of
/// the map that lacks it. `visit` may take out what it is given.
template <class Ours, class Theirs, class Visit>
void side_by_side(Ours& ours, Theirs& theirs, const Visit& visit) {
    auto our = ours.begin();
    auto their = theirs.begin();
    while (our != ours.end() || their != theirs.end()) {
        const int order = their == theirs.end() ? -1 // only ours have that name
                          : our == ours.end()   ? 1
                                                : our->first.compare(their->first);
        visit(order <= 0 ? our++ : ours.end(), order >= 0 ? their++ : theirs.end());
    }
}

/// Puts `other`, whose layers all last `length` frames, in the place of the frames
/// [start, start + count) of every layer, or changes nothing. Where it lacks a layer, a `Wait` key
/// stands in; layers that it alone has are moved. Returns the duration before. Where `totals` says
/// what each layer lasts, those that end by `start` are not walked.
unsigned int replace_in_each(LayerMap& layers, unsigned int start, unsigned int count,
                             LayerMap& other, unsigned int length, const Totals* totals) {
    const AnimationKey gap(Wait, std::max(1U, length));
    const Keys missing(&gap, length > 0 ? 1 : 0);
    Edits edits(layers);
    unsigned int duration = 0;
    side_by_side(layers, other, [&](auto ours, auto theirs) {
        if (ours != layers.end()) {
            const Keys keys = theirs != other.end() ? Keys(theirs->second) : missing;
            const std::uint64_t last = totals ? totals->each[edits.splices.size()] : UINT64_MAX;
            LayerCursor cursor = last <= start
                                     ? LayerCursor(Keys(), static_cast<unsigned int>(last))
                                     : LayerCursor(ours->second);
            edits.splices.emplace_back(ours->second, cursor, start, count, keys);
            duration = std::max(duration, cursor.end());
        } else if (length > 0) {
            KeyVector& keys = theirs->second;
            if (start > 0)
                keys.insert(keys.begin(), AnimationKey(Wait, start));
            edits.added.insert(edits.added.end(), other.extract(theirs));
        }
    });
    edits.commit(layers);
    return duration;
}

/// The outro's first frame for edits, in an animation of `duration` frames: an outro longer than
/// that begins past every frame.
unsigned int outro_begin(const Animation& animation, unsigned int duration) {
    return animation.outroSize <= duration ? duration - animation.outroSize : maxFrame;
}

/// Takes off the sizes what is theirs of the frames [start, start + count), in an animation of
/// `duration` frames, which lasts longer than `start`.
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

/// Does so and keeps the sizes in step: every edit of all layers but an override.
void replace_in_layers(Animation& animation, unsigned int start, unsigned int count,
                       LayerMap& other, unsigned int length, const Totals* totals = nullptr) {
    unsigned int duration = replace_in_each(animation.layers, start, count, other, length, totals);
    if (start < duration) {
        shrink_sizes(animation, duration, start, count);
        duration -= std::min(count, duration - start);
    }
    widen_sizes(animation, duration, start, length);
}

} // namespace

void Animation::replace(unsigned int start, unsigned int count, Animation other) {
    const unsigned int length = check_and_fill(other);
    if (count > 0 || length > 0)
        replace_in_layers(*this, start, count, other.layers, length);
}

void Animation::insert(Animation other, unsigned int frame) {
    replace(frame, 0, std::move(other));
}

void Animation::pushBack(Animation other, bool keepOutro, bool keepIntro) {
    if (!keepIntro)
        other.remove(0, other.introSize);
    const unsigned int length = check_and_fill(other);
    const Totals totals(layers);
    const unsigned int duration = totals.duration();
    const unsigned int end =
        keepOutro ? duration : std::min(duration, outro_begin(*this, duration));
    replace_in_layers(*this, end, duration - end, other.layers, length, &totals);
    outroSize = other.outroSize;
}

void Animation::remove(unsigned int start, unsigned int count) {
    LayerMap nothing;
    if (count > 0)
        replace_in_layers(*this, start, count, nothing, 0);
}

void Animation::overrideLayersWith(const Animation& other, unsigned int frame) {
    const Totals totals(layers);
    auto total = totals.each.begin();
    unsigned int duration = totals.duration();
    Edits edits(other.layers);
    side_by_side(layers, other.layers, [&](auto ours, auto theirs) {
        const bool created = ours == layers.end();
        const std::uint64_t length = created ? 0 : *total++;
        if (theirs == other.layers.end())
            return;
        const Keys layer = created ? Keys() : Keys(ours->second);
        Overridden result = overridden(layer, length, duration, theirs->second, frame);
        duration = std::max(duration, static_cast<unsigned int>(result.length));
        if (created)
            layer_in(edits.added, theirs->first) = std::move(result.keys);
        else
            edits.splices.emplace_back(ours->second, std::move(result.keys));
    });
    edits.commit(layers);
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

    KeyVector looped(const Stretch& layer) {
        LayerCursor cursor(layer);
        const Stretch intro = cursor.takeFrames(introSize);
        const Stretch rest = cursor.rest;
        repeated.clear();
        cursor.takeFrames(outroStart).appendTo(repeated);
        if (repeatOutro)
            cursor.rest.appendTo(repeated);
        if (repeatIntro)
            intro.appendTo(repeated);

        KeyVector result;
        result.reserve(intro.size() + repeats * repeated.size() + rest.size());
        intro.appendTo(result);
        for (unsigned int i = 0; i < repeats; ++i)
            result.insert(result.end(), repeated.begin(), repeated.end());
        rest.appendTo(result);
        return result;
    }
};

} // namespace

Animation Animation::loop(unsigned int count, bool repeatIntro, bool repeatOutro) const {
    const Totals totals = check(*this);
    const unsigned int duration = totals.duration();
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
    auto total = totals.each.begin();
    for (const auto& [name, keys] : layers)
        layer_in(result.layers, name) = looping.looped(filled(keys, *total++, duration));
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
    check(*this);
}

/// The keys of `layer` from `it` on.
static Keys keys_from(const KeyVector& layer, KeyVector::const_iterator it) {
    return Keys(layer).subspan(static_cast<std::size_t>(it - layer.begin()));
}

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
    auto after = it;
    _goToFrame(passed, after, end_of_range(start, count), layer);
    const auto left = layer.end() - after;
    LayerCursor cursor(keys_from(layer, it), frame);
    Splice(layer, cursor, start, count, {}).commit();
    it = layer.end() - left;
    frame = left > 0 ? std::max(passed, start) : passed;
}

} // namespace Kiv
