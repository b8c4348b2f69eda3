#include <animationmodel/Animation.h>

#include "LayerCursor.h"
#include "Splice.h"
#include "refuse.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Kiv {

namespace {

struct Lengths {
    unsigned int shortest, longest;
    bool equal() const { return shortest == longest; }
};

void check_frame_rate(float fps) {
    if (fps <= 0) // a NaN passes
        refuse("FPS should be strictly higher than 0");
}

/// Frames of the shortest and of the longest layer; 0 without layers.
Lengths checked_lengths(const LayerMap& layers) {
    std::uint64_t shortest = layers.empty() ? 0 : tooLong;
    std::uint64_t longest = 0;
    for (const auto& [name, keys] : layers) {
        const std::uint64_t total = total_of(keys);
        if (total >= tooLong)
            refuse("Layer (", name, ") lasts ", total, " frames but should last less than ",
                   tooLong);
        shortest = std::min(shortest, total);
        longest = std::max(longest, total);
    }
    return {static_cast<unsigned int>(shortest), static_cast<unsigned int>(longest)};
}

/// Makes all checks that an animation of these parts has to pass once its layers are filled.
Lengths check(const LayerMap& layers, unsigned int introSize, unsigned int outroSize, float fps) {
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
    LayerMap filled;
    for (const auto& [name, keys] : layers)
        LayerCursor(keys, lengths.longest).walkTo(lastFrame).appendTo(layer_in(filled, name));
    return filled;
}

void fill(KeyVector& layer, unsigned int frames) {
    const unsigned int total = Animation::durationInFramesOf(layer);
    if (total < frames)
        layer.emplace_back(Wait, frames - total);
}

/// Checks `animation` and fills its layers, as copying it would; returns its duration.
unsigned int fill_and_check(Animation& animation) {
    const Lengths lengths =
        check(animation.layers, animation.introSize, animation.outroSize, animation.fps);
    if (!lengths.equal())
        for (auto& [name, keys] : animation.layers)
            fill(keys, lengths.longest);
    return lengths.longest;
}

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

/// Puts the layers of `edited` in the place of those with their names, and the others beside them.
void adopt(LayerMap& layers, LayerMap& edited) noexcept {
    for (auto& [name, keys] : edited)
        if (const auto found = layers.find(name); found != layers.end())
            found->second.swap(keys);
    layers.merge(edited);
}

void insert_keys(LayerMap& layers, const std::string& name, Keys keys, unsigned int frame) {
    if (!keys.empty())
        edit_layer(layers, name, [&](KeyVector& layer) {
            LayerCursor cursor(layer);
            insertion(cursor, layer, keys, frame).commit();
        });
}

/// The outro's first frame in `animation`, which has `duration` frames.
unsigned int outro_start(const Animation& animation, unsigned int duration) {
    return duration - std::min(animation.outroSize, duration);
}

/// Inserts the layers of `other`, which all last `length` frames, into `layers` at `frame`; what
/// stands there goes if `dropRest`. Returns the frames of the longest of `layers` before.
unsigned int insert_layers(LayerMap& layers, LayerMap& other, unsigned int length,
                           unsigned int frame, bool dropRest) {
    const AnimationKey silence(Wait, std::max(length, 1U));
    unsigned int duration = 0;
    std::vector<Splice> edits;
    edits.reserve(layers.size());
    for (auto& [name, layer] : layers) {
        const auto found = other.find(name);
        const Keys keys =
            found != other.end() ? Keys(found->second) : Keys(&silence, length > 0 ? 1 : 0);
        LayerCursor cursor(layer);
        edits.push_back(insertion(cursor, layer, keys, frame, dropRest));
        duration = std::max(duration, cursor.end());
    }
    for (auto& [name, keys] : other)
        if (frame > 0 && !layers.contains(name))
            keys.insert(keys.begin(), AnimationKey(Wait, frame));

    for (Splice& edit : edits)
        edit.commit();
    if (length > 0)
        layers.merge(other);
    return duration;
}

/// Keeps the sizes in step with `count` frames inserted at `frame` into an animation of `duration`
/// frames.
void widen_sizes(Animation& animation, unsigned int duration, unsigned int frame,
                 unsigned int count) {
    if (animation.introSize > frame)
        animation.introSize += count;
    if (outro_start(animation, duration) < frame)
        animation.outroSize += count;
}

/// Keeps the sizes in step with `count` frames removed from `start` on, from an
/// animation of `duration` frames.
void shrink_sizes(Animation& animation, unsigned int duration, unsigned int start,
                  unsigned int count) {
    const unsigned int end = end_of_range(start, count);
    const unsigned int removed = std::min(count, duration - start);
    const unsigned int outroStart = outro_start(animation, duration);
    if (animation.introSize > start)
        animation.introSize = end <= animation.introSize ? animation.introSize - count : start;
    if (outroStart <= start)
        animation.outroSize -= removed;
    else if (outroStart < end)
        animation.outroSize = duration - (start + removed);
}

bool is_wait(const AnimationKey& key) {
    return key.command.effect == Wait;
}

/// Appends to `out` what `layer`, filled up to `duration` frames or the total of `keys`, becomes
/// with `keys` laid over it from `position` on. Returns the frames of the result.
unsigned int override_into(KeyVector& out, const KeyVector& layer, unsigned int duration,
                           const KeyVector& keys, unsigned int position) {
    LayerCursor cursor(layer, std::max(duration, Animation::durationInFramesOf(keys)));
    out.reserve(layer.size() + keys.size() + 2);
    for (auto key = keys.begin(); key != keys.end();) {
        if (is_wait(*key)) {
            position += key++->duration;
            continue;
        }
        const auto runEnd = std::find_if(key, keys.end(), is_wait);
        cursor.take(position).appendTo(out);
        if (cursor.frame < position)
            out.emplace_back(Wait, position - cursor.frame);
        out.insert(out.end(), key, runEnd);
        position += static_cast<unsigned int>(total_of({key, runEnd}));
        cursor.walkTo(position);
        cursor.restBeginsAt(position);
        key = runEnd;
    }
    cursor.walkTo(lastFrame).appendTo(out);
    return cursor.frame;
}

/// Cuts all layers of `animation` at each of `frames`, which ascend. Each flag is spent by the
/// first layer that reaches the boundary.
std::vector<Animation> split(const Animation& animation, const std::vector<unsigned int>& frames,
                             bool keepIntro, bool keepOutro) {
    std::vector<Animation> pieces(frames.size() + 1, Animation(animation.fps));
    if (animation.empty())
        return pieces;
    const unsigned int outroStart = keepOutro ? animation.outroStartFrame() : 0;
    for (const auto& [name, keys] : animation.layers) {
        LayerCursor cursor(keys);
        auto piece = pieces.begin();
        for (const unsigned int frame : frames) {
            cursor.take(frame).appendTo(layer_in(piece->layers, name));
            if (keepIntro && cursor.frame >= animation.introSize) {
                const unsigned int duration = piece->durationInFrames();
                const unsigned int before = cursor.frame - duration;
                piece->introSize = std::min(duration, animation.introSize - before);
                keepIntro = false;
            }
            if (keepOutro && cursor.frame >= outroStart) {
                piece->outroSize = std::min(piece->durationInFrames(), cursor.frame - outroStart);
                keepOutro = false;
            }
            ++piece;
        }
        cursor.rest().appendTo(layer_in(piece->layers, name));
    }
    return pieces;
}

} // namespace

float Animation::defaultFps = 25.0F;

Animation::Animation() : Animation(defaultFps) {}

Animation::Animation(float fps) : introSize(0), outroSize(0), fps(fps) {
    _checkAttr();
}

Animation::Animation(const LayerMap& layers) : Animation(layers, 0, 0) {}

Animation::Animation(const LayerMap& layers, unsigned int introSize, unsigned int outroSize)
    : layers(copy_filled(layers, check(layers, introSize, outroSize, defaultFps))),
      introSize(introSize), outroSize(outroSize), fps(defaultFps) {}

Animation::Animation(const Animation& other)
    : layers(copy_filled(other.layers,
                         check(other.layers, other.introSize, other.outroSize, other.fps))),
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

void Animation::_checkAttr() {
    check(layers, introSize, outroSize, fps);
}

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
    return std::ranges::all_of(layers, [](const auto& named) { return named.second.empty(); });
}

void Animation::reset() {
    layers.clear();
    introSize = 0;
    outroSize = 0;
    fps = defaultFps;
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
    return outro_start(*this, durationInFrames());
}

float Animation::durationInSeconds() const {
    return std::fabs(static_cast<float>(durationInFrames()) / fps);
}

float Animation::simulatedDurationInSeconds(float fps) const {
    if (fps <= 0) // a NaN passes
        refuse("Simulated FPS given as argument should be different from 0 to calculate duration "
               "in seconds");
    return std::fabs(static_cast<float>(durationInFrames()) / fps);
}

void Animation::setFPSToFitDurationInSeconds(float seconds) {
    if (seconds <= 0) // a NaN passes
        refuse("Duration given as argument is ", seconds,
               " but should be strictly higher than 0 to calculate FPS");
    fps = static_cast<float>(durationInFrames()) / seconds;
}

void Animation::_iterateOnLayer(unsigned int& frame, KeyVector::iterator& it, unsigned int target,
                                const KeyVector& layer, bool toEnd, KeyVector* out) {
    LayerCursor cursor(frame, {KeyVector::const_iterator(it), layer.end()});
    const KeyRow passed = cursor.walkTo(toEnd ? lastFrame : target);
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
    const auto from = static_cast<std::size_t>(it - layer.begin());
    LayerCursor cursor(frame, Keys(layer).subspan(from));
    Splice removed = removal(cursor, layer, start, count);
    removed.commit();
    it = removed.behindFront();
    frame = cursor.frame;
}

void Animation::fillInLayer(const std::string& name, unsigned int frames) {
    edit_layer(layers, name, [&](KeyVector& layer) { fill(layer, frames); });
}

void Animation::insertInLayer(const std::string& name, const KeyVector& keys, unsigned int frame) {
    insert_keys(layers, name, keys, frame);
}

void Animation::insertInLayer(const std::string& name, const AnimationKey& key,
                              unsigned int frame) {
    const AnimationKey copy = key; // the key may stand in the layer
    insert_keys(layers, name, {&copy, 1}, frame);
}

void Animation::insertInLayer(const std::string& name, AnimationKeyCommandEffect effect,
                              const std::vector<float>& args, unsigned int duration,
                              unsigned int frame) {
    insertInLayer(name, AnimationKey(AnimationKeyCommand(effect, args), duration), frame);
}

void Animation::pushBackInLayer(const std::string& name, const KeyVector& keys) {
    edit_layer(layers, name, [&](KeyVector& layer) {
        Splice(layer, layer.size(), layer.size(), {{}, keys, {}}).commit();
    });
}

void Animation::pushBackInLayer(const std::string& name, const AnimationKey& key) {
    edit_layer(layers, name, [&](KeyVector& layer) { layer.push_back(key); });
}

void Animation::pushBackInLayer(const std::string& name, AnimationKeyCommandEffect effect,
                                const std::vector<float>& args, unsigned int duration) {
    pushBackInLayer(name, AnimationKey(AnimationKeyCommand(effect, args), duration));
}

void Animation::removeInLayer(const std::string& name, unsigned int start, unsigned int count) {
    edit_layer(layers, name, [&](KeyVector& layer) {
        LayerCursor cursor(layer);
        removal(cursor, layer, start, count).commit();
    });
}

void Animation::overrideLayerWith(const std::string& name, const KeyVector& keys,
                                  unsigned int frame) {
    unsigned int duration = 0; // of the other layers; its own is found on the way
    for (const auto& [other, layer] : layers)
        if (other != name)
            duration = std::max(duration, durationInFramesOf(layer));
    edit_layer(layers, name, [&](KeyVector& layer) {
        if (keys.empty())
            return fill(layer, duration);
        KeyVector result;
        override_into(result, layer, duration, keys, frame);
        layer.swap(result);
    });
}

void Animation::insert(Animation other, unsigned int frame) {
    const unsigned int length = fill_and_check(other);
    if (length == 0)
        return;
    const unsigned int duration =
        insert_layers(layers, other.layers, length, frame, /*dropRest=*/false);
    widen_sizes(*this, duration, frame, length);
}

void Animation::pushBack(Animation other, bool keepOutro, bool keepIntro) {
    unsigned int length = fill_and_check(other);
    if (!keepIntro) {
        length -= other.introSize;
        other.remove(0, other.introSize);
    }
    const unsigned int duration = durationInFrames();
    const unsigned int end = keepOutro ? duration : outro_start(*this, duration);
    insert_layers(layers, other.layers, length, end, end < duration);
    if (end < duration)
        shrink_sizes(*this, duration, end, outroSize);
    widen_sizes(*this, end, end, length);
    outroSize = other.outroSize;
}

void Animation::remove(unsigned int start, unsigned int count) {
    if (count == 0)
        return;
    unsigned int duration = 0;
    std::vector<Splice> edits;
    edits.reserve(layers.size());
    for (auto& [name, layer] : layers) {
        LayerCursor cursor(layer);
        edits.push_back(removal(cursor, layer, start, count));
        duration = std::max(duration, cursor.end());
    }
    if (duration <= start)
        return;
    for (Splice& edit : edits)
        edit.commit();
    shrink_sizes(*this, duration, start, count);
}

void Animation::overrideLayersWith(const Animation& other, unsigned int frame) {
    unsigned int duration = durationInFrames();
    const KeyVector missing;
    LayerMap edited;
    for (const auto& [name, keys] : other.layers) {
        const auto found = layers.find(name);
        const KeyVector& layer = found != layers.end() ? found->second : missing;
        const unsigned int total =
            override_into(layer_in(edited, name), layer, duration, keys, frame);
        duration = std::max(duration, total);
    }
    adopt(layers, edited);
}

void Animation::introBodyOutroLayers(LayerMap& intro, LayerMap& body, LayerMap& outro) const {
    const unsigned int outroStart = outroStartFrame();
    const bool aliased = &intro == &layers || &body == &layers || &outro == &layers;
    const LayerMap copy = aliased ? layers : LayerMap();
    for (const auto& [name, keys] : aliased ? copy : layers) {
        LayerCursor cursor(keys);
        cursor.take(introSize).appendTo(layer_in(intro, name));
        cursor.take(outroStart).appendTo(layer_in(body, name));
        cursor.rest().appendTo(layer_in(outro, name));
    }
}

Animation Animation::loop(unsigned int count, bool repeatIntro, bool repeatOutro) const {
    if (count == 0) {
        Animation result(*this);
        result.remove(introSize, result.outroStartFrame() - introSize);
        return result;
    }
    const unsigned int duration = check(layers, introSize, outroSize, fps).longest;
    const unsigned int outroStart = outro_start(*this, duration);
    if (count > 1 && !layers.empty())
        check_frame_rate(defaultFps);
    const unsigned int once =
        outroStart - introSize + (repeatIntro ? introSize : 0) + (repeatOutro ? outroSize : 0);
    const unsigned int passes = once == 0 ? 0 : count - 1;
    if (passes == 0)
        return *this;
    const std::uint64_t total = duration + std::uint64_t{passes} * once;
    if (total >= tooLong)
        refuse("Animation looped ", count, " times would last ", total,
               " frames but should last less than ", tooLong);

    Animation result(fps);
    result.introSize = introSize;
    result.outroSize = outroSize;
    KeyVector pass;
    for (const auto& [name, keys] : layers) {
        LayerCursor cursor(keys, duration);
        const KeyRow intro = cursor.take(introSize);
        const KeyRow rest = LayerCursor(cursor).walkTo(lastFrame);
        const KeyRow body = cursor.take(outroStart);
        const KeyRow outro = cursor.walkTo(lastFrame);

        pass.clear();
        body.appendTo(pass);
        if (repeatOutro)
            outro.appendTo(pass);
        if (repeatIntro)
            intro.appendTo(pass);

        KeyVector& layer = layer_in(result.layers, name);
        layer.reserve(intro.size() + passes * pass.size() + rest.size());
        intro.appendTo(layer);
        for (unsigned int i = 0; i < passes; ++i)
            layer.insert(layer.end(), pass.begin(), pass.end());
        rest.appendTo(layer);
    }
    return result;
}

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

} // namespace Kiv
