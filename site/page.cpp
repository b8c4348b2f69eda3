// What the page calls: the operations under their own names. Each edits the first animation in
// place, and returns an Error of JavaScript where the library refuses.

#include "Measures.h"
#include "Picture.h"
#include "Recording.h"
#include <animationmodel/play.h>
#include <animationmodel/retime.h>

#include <animationmodel/Rotation.h>
#include <animationmodel/json.h>

#include <emscripten/bind.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <exception>
#include <iterator>
#include <limits>
#include <new>
#include <set>
#include <sstream>
#include <type_traits>
#include <utility>
#include <vector>

using namespace Kiv;
using emscripten::val;

namespace {

/// So many keys can be edited as text. An operation that gives more is refused beforehand where it
/// may ask for any number of them, and afterwards elsewhere.
constexpr std::size_t mostKeys = 20000;

/// So many values are compared to tell which frames an edit changed.
constexpr std::uint64_t mostCompared = 4000000;

std::size_t keys_of(const Animation& animation) {
    return count_keys(animation.layers);
}

/// The frames of the longest layer, which may be more than 2^32 - 1.
double frames_of(const Animation& animation) {
    return static_cast<double>(full_duration(animation.layers));
}

val error(const std::string& text) {
    return val::global("Error").new_(text);
}

/// What `call` returns, or an Error that says what it throws.
template <class Call>
val result_of(const Call& call) {
    try {
        if constexpr (std::is_void_v<decltype(call())>) {
            call();
            return val::undefined();
        } else {
            return val(call());
        }
    } catch (const std::bad_alloc&) {
        return error("there is not enough memory for that");
    } catch (const std::exception& refusal) {
        return error(refusal.what());
    }
}

void refuse_above(double keys, double most, const char* what) {
    if (keys > most)
        throw std::invalid_argument(number(static_cast<float>(keys), 7) + " " + what +
                                    " are more than this page edits, " +
                                    number(static_cast<float>(most), 7));
}

/// An edit of the library, `Edit<&Animation::insert>::call`. Another animation that it takes is
/// copied in it, so that a refusal of the copy is an Error too.
template <auto edit>
struct Edit;
template <class... Arguments, void (Animation::*edit)(Arguments...)>
struct Edit<edit> {
    template <class Argument>
    using Given =
        std::conditional_t<std::is_same_v<Argument, Animation>, const Animation&, Argument>;

    static val call(Animation& show, Given<Arguments>... arguments) {
        return result_of([&] { (show.*edit)(arguments...); });
    }
};

// Those that take keys get them from a layer of another animation.

val insert_in_layer(Animation& show, const std::string& name, const Animation& other,
                    const std::string& from, unsigned int frame) {
    return result_of([&] { show.insertInLayer(name, other.layer(from), frame); });
}

val replace_in_layer(Animation& show, const std::string& name, unsigned int start,
                     unsigned int count, const Animation& other, const std::string& from) {
    return result_of([&] { show.replaceInLayer(name, start, count, other.layer(from)); });
}

val push_back_in_layer(Animation& show, const std::string& name, const Animation& other,
                       const std::string& from) {
    return result_of([&] { show.pushBackInLayer(name, other.layer(from)); });
}

val override_layer_with(Animation& show, const std::string& name, const Animation& other,
                        const std::string& from, unsigned int frame) {
    return result_of([&] { show.overrideLayerWith(name, other.layer(from), frame); });
}

val loop(Animation& show, unsigned int count, bool repeatIntro, bool repeatOutro) {
    return result_of([&] {
        refuse_above(static_cast<double>(keys_of(show)) * count, mostKeys, "keys");
        show = show.loop(count, repeatIntro, repeatOutro);
    });
}

/// Each piece has all layers.
void refuse_pieces(const Animation& show, double pieces) {
    refuse_above(pieces * static_cast<double>(std::max<std::size_t>(1, show.layers.size())),
                 mostKeys, "layers of pieces");
}

/// Takes one of the pieces, counted from 0.
void take(Animation& show, const std::vector<Animation>& pieces, unsigned int piece) {
    if (piece >= pieces.size())
        throw std::invalid_argument("there are " + std::to_string(pieces.size()) +
                                    " pieces, counted from 0");
    show = pieces[piece];
}

val split_at(Animation& show, const val& frames, bool keepIntro, bool keepOutro,
             unsigned int piece) {
    return result_of([&] {
        const auto cuts = emscripten::vecFromJSArray<unsigned int>(frames);
        refuse_pieces(show, static_cast<double>(cuts.size()) + 1);
        take(show, show.splitAt(std::set(cuts.begin(), cuts.end()), keepIntro, keepOutro), piece);
    });
}

val split_each(Animation& show, unsigned int step, bool keepIntro, bool keepOutro,
               unsigned int piece) {
    return result_of([&] {
        if (step > 0)
            refuse_pieces(show, show.durationInFrames() / step + 2.0);
        take(show, show.splitEach(step, keepIntro, keepOutro), piece);
    });
}

val intro_body_outro(Animation& show, const std::string& part) {
    return result_of([&] {
        LayerMap intro;
        LayerMap body;
        LayerMap outro;
        show.introBodyOutroLayers(intro, body, outro);
        show = part == "intro" ? intro : part == "body" ? body : outro;
    });
}

val set_parts(Animation& show, unsigned int introFrames, unsigned int outroFrames) {
    return result_of([&] {
        show.introSize = introFrames;
        show.outroSize = outroFrames;
    });
}

val set_frame_rate(Animation& show, float fps) {
    return result_of([&] { change_frame_rate(show, fps); });
}

val set_length(Animation& show, unsigned int frames) {
    return result_of([&] { stretch_to(show, frames); });
}

val rotation(Animation& show, float pulseValue, float restValue, unsigned int riseDuration,
             unsigned int fallDuration, unsigned int stepDuration) {
    return result_of(
        [&] { show = Rotation(pulseValue, restValue, riseDuration, fallDuration, stepDuration); });
}

val read(const std::string& text) {
    return result_of([&] {
        Animation result = animation_from_json(text);
        refuse_above(static_cast<double>(keys_of(result)), mostKeys, "keys");
        return result;
    });
}

val write(const Animation& show) {
    return result_of([&] {
        refuse_above(static_cast<double>(keys_of(show)), mostKeys, "keys");
        return animation_to_json(show);
    });
}

val recorded(const std::string& text, const std::string& name) {
    return result_of([&] {
        std::istringstream in(text);
        return read_recording(in, name);
    });
}

val picture(const std::string& title, const Animation& show) {
    return result_of([&] { return svg_of(title, show); });
}

/// The names of the layers, in their order.
val names(const Animation& show) {
    val result = val::array();
    for (const auto& [name, layer] : show.layers)
        result.call<void>("push", name);
    return result;
}

/// The values that the first layers, `most` of them, have on a frame, as text; an empty one where
/// there is none.
val values(const Animation& show, unsigned int frame, unsigned int most) {
    val result = val::array();
    for (const auto& [name, layer] : show.layers) {
        if (most-- == 0)
            break;
        Track track(name, layer);
        track.seek(frame);
        const auto value = track.value();
        result.call<void>("push", value ? number(*value, 6) : std::string());
    }
    return result;
}

/// The values of a layer on all its frames.
std::vector<float> values_of(const KeyVector& layer) {
    const LayerMap layers{{"", layer}};
    std::vector<float> values(full_duration(layers));
    sample(layers, 0, static_cast<unsigned int>(values.size()), values.data());
    return values;
}

/// A layer before and after an edit: its frames from `start` on differ, up to the last `follow`.
struct Change {
    unsigned int lane;
    std::vector<float> is;
    std::vector<float> was;
    float tolerance = 0; ///< What cuts may change by rounding.
    std::ptrdiff_t start = 0;
    std::ptrdiff_t follow = 0;

    std::ptrdiff_t most() const {
        return static_cast<std::ptrdiff_t>(std::min(is.size(), was.size()));
    }
    std::ptrdiff_t growth() const {
        return static_cast<std::ptrdiff_t>(is.size()) - static_cast<std::ptrdiff_t>(was.size());
    }
    std::ptrdiff_t came() const { return static_cast<std::ptrdiff_t>(is.size()) - start - follow; }
    bool alike(float a, float b) const {
        return a == b || (std::isnan(a) && std::isnan(b)) || std::abs(a - b) <= tolerance;
    }
    template <class Place>
    Place mismatch(Place begin, Place end, Place other) const {
        const auto same = [this](float a, float b) { return alike(a, b); };
        return std::mismatch(begin, end, other, same).first;
    }
    void find_start() {
        for (const auto* values : {&is, &was})
            for (const float value : *values)
                if (std::isfinite(value))
                    tolerance = std::max(tolerance, std::abs(value) * 1e-5F);
        start = mismatch(is.cbegin(), is.cbegin() + most(), was.cbegin()) - is.cbegin();
    }
    void find_follow() {
        const auto end = is.crbegin() + (most() - start);
        follow = mismatch(is.crbegin(), end, was.crbegin()) - is.crbegin();
    }
};

/// Layers that an edit makes longer or shorter by the same are taken to change on the same frames:
/// where values repeat, each by itself might be cut at another place.
void align(std::vector<Change>& changes) {
    const std::ptrdiff_t growth = changes.empty() ? 0 : changes[0].growth();
    const bool together = growth != 0 && std::all_of(changes.begin(), changes.end(), [&](auto& it) {
                              return it.growth() == growth;
                          });
    const auto least = [&](std::ptrdiff_t Change::*place) {
        std::ptrdiff_t result = std::numeric_limits<std::ptrdiff_t>::max();
        for (const Change& change : changes)
            result = std::min(result, change.*place);
        for (Change& change : changes)
            change.*place = result;
    };
    if (together)
        least(&Change::start);
    for (Change& change : changes)
        change.find_follow();
    if (together)
        least(&Change::follow);
}

/// Which frames an edit changed, for each layer in which it did: `lane`, its place among the
/// layers; `start`, the first frame that differs; how many came there, how many went, and how many
/// follow them. Nothing where that is too much to compare.
val changes(const Animation& show, const Animation& before) {
    return result_of([&] {
        val result = val::array();
        const auto longest = std::max(full_duration(show.layers), full_duration(before.layers));
        if (longest * std::max<std::size_t>(1, show.layers.size()) > mostCompared)
            return result;
        std::vector<Change> found;
        unsigned int lane = 0;
        for (const auto& [name, layer] : show.layers) {
            const auto old = before.layers.find(name);
            Change change{lane++, values_of(layer),
                          old == before.layers.end() ? std::vector<float>()
                                                     : values_of(old->second)};
            change.find_start();
            if (change.start < change.most() || change.growth() != 0)
                found.push_back(std::move(change));
        }
        align(found);
        for (const Change& change : found) {
            val told = val::object();
            told.set("lane", change.lane);
            told.set("start", static_cast<double>(change.start));
            told.set("came", static_cast<double>(change.came()));
            told.set("went", static_cast<double>(change.came() - change.growth()));
            told.set("follow", static_cast<double>(change.follow));
            result.call<void>("push", told);
        }
        return result;
    });
}

} // namespace

EMSCRIPTEN_BINDINGS(page) {
    emscripten::class_<Animation>("Animation")
        .property("fps", &Animation::fps)
        .function("replace", &Edit<&Animation::replace>::call)
        .function("replaceInLayer", &replace_in_layer)
        .function("insert", &Edit<&Animation::insert>::call)
        .function("insertInLayer", &insert_in_layer)
        .function("pushBack", &Edit<&Animation::pushBack>::call)
        .function("pushBackInLayer", &push_back_in_layer)
        .function("remove", &Edit<&Animation::remove>::call)
        .function("removeInLayer", &Edit<&Animation::removeInLayer>::call)
        .function("overrideLayersWith", &Edit<&Animation::overrideLayersWith>::call)
        .function("overrideLayerWith", &override_layer_with)
        .function("fillInLayer", &Edit<&Animation::fillInLayer>::call)
        .function("setFPSToFitDurationInSeconds",
                  &Edit<&Animation::setFPSToFitDurationInSeconds>::call)
        .function("introSize", &set_parts)
        .function("change_frame_rate", &set_frame_rate)
        .function("stretch_to", &set_length)
        .function("reset", &Edit<&Animation::reset>::call)
        .function("loop", &loop)
        .function("splitAt", &split_at)
        .function("splitEach", &split_each)
        .function("introBodyOutroLayers", &intro_body_outro)
        .function("Rotation", &rotation)
        .function("frames", &frames_of)
        .function("measures", &measures)
        .function("names", &names)
        .function("values", &values)
        .function("changes", &changes)
        .function("text", &write);
    emscripten::function("read", &read);
    emscripten::function("recorded", &recorded);
    emscripten::function("picture", &picture);
}
