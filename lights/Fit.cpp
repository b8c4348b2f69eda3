#include "Fit.h"

#include "Dmx.h"
#include "Terminal.h"

#include <animationmodel/play.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <optional>
#include <string>
#include <utility>

using namespace Kiv;

namespace {

bool has_value(const AnimationKey& key) {
    return static_cast<std::uint32_t>(key.command.effect) <= Hold && !key.command.args.empty();
}

/// The keys that take the place of others, the last of which is not finished.
struct Joined {
    /// Begins a key at `frame` that sends `byte` there.
    void start(unsigned int frame, int byte) {
        begin = frame;
        value = byte;
        low = -std::numeric_limits<double>::infinity();
        high = std::numeric_limits<double>::infinity();
    }

    /// Has the last key send `byte` at `frame`, if it can, and stay from 0 to 255 up to `end`.
    bool narrow(unsigned int frame, int byte, unsigned int end) {
        constexpr double near = 0.5 - 1.0 / 128; // cuts move a value by some 0.0001
        double least = std::max(low, (0 - value) / (end - begin));
        double most = std::min(high, (255 - value) / (end - begin));
        if (frame > begin) {
            least = std::max(least, (byte - near - value) / (frame - begin));
            most = std::min(most, (byte + near - value) / (frame - begin));
        }
        if (least > most)
            return false;
        low = least;
        high = most;
        return true;
    }

    bool mayRest() const { return low <= 0 && high >= 0; }

    /// Ends the last key at `frame`.
    void finish(unsigned int frame) {
        const unsigned int duration = frame - begin;
        const auto first = static_cast<float>(value);
        if (mayRest())
            keys.emplace_back(AnimationKeyCommand(Hold, {first}), duration);
        else
            keys.emplace_back(
                AnimationKeyCommand(Transition, {first, static_cast<float>(end(duration))}),
                duration);
    }

    /// The value to move to within `duration`: a number of few digits, if there is one.
    double end(unsigned int duration) const {
        const double least = value + low * duration;
        const double most = value + high * duration;
        const double middle = (least + most) / 2;
        for (unsigned int parts = 1; parts < 65536; parts *= 2) {
            const double rounded = std::round(middle * parts) / parts;
            if (rounded >= least && rounded <= most)
                return rounded;
        }
        return middle;
    }

    KeyVector keys;
    unsigned int begin = 0;
    double value = 0;
    double low = 0, high = 0; ///< By how much it may move in a frame.
};

/// The first multiple of `step` at or after `frame`.
unsigned int next_step(unsigned int frame, unsigned int step) {
    return (frame + step - 1) / step * step;
}

/// Keys with values for [begin, end), of which `track` is: as many as `most`, if it takes more. At
/// the end they send `last`, if something has to. `reached` is told the frames on the way.
template <class Reached>
KeyVector join(Track& track, unsigned int begin, unsigned int end, unsigned int step,
               std::optional<int> last, std::size_t most, const Reached& reached) {
    Joined joined;
    unsigned int at = next_step(begin, step);
    const auto sent = [&] {
        track.seek(at);
        return int{dmx_value(*track.value())};
    };
    const auto send = [&](unsigned int frame, int byte) {
        return joined.narrow(frame, byte, std::min(at + step, end));
    };
    joined.start(begin, sent());
    while (joined.keys.size() < most) {
        const int byte = sent();
        const auto restart = [&] {
            joined.finish(at);
            joined.start(at, byte);
            send(at, byte);
        };
        if (!send(at, byte))
            restart();
        if (byte == joined.value && joined.mayRest()) { // and so for as long as it rests
            at += (std::min(track.nextChange(), end) - 1 - at) / step * step;
            send(at, byte);
        }
        if (end - at > step) {
            at += step;
            reached(at);
            continue;
        }
        if (last && !send(end, *last)) {
            restart();
            send(end, *last);
        }
        joined.finish(end);
        break;
    }
    return std::move(joined.keys);
}

/// The keys of a layer in a show of `duration` frames.
template <class Reached>
KeyVector fitted(const std::string& name, const KeyVector& keys, unsigned int step,
                 unsigned int duration, const Reached& reached) {
    KeyVector result;
    Track track(name, keys);
    unsigned int end = 0;
    for (auto key = keys.begin(); key != keys.end();) {
        const auto first = key;
        const unsigned int begin = end;
        for (; key != keys.end() && has_value(*key); ++key)
            end += key->duration;
        const auto count = static_cast<std::size_t>(key - first);
        KeyVector joined;
        if (count > 1 && next_step(begin, step) < end) {
            std::optional<int> last; // what a Wait keeps, and a layer that ends before the show
            if (key != keys.end() ? key->command.effect == Wait : end < duration)
                last = dmx_value(std::prev(key)->command.args.back());
            joined = join(track, begin, end, step, last, count, reached);
        }
        if (!joined.empty() && joined.size() < count)
            result.insert(result.end(), joined.begin(), joined.end());
        else
            result.insert(result.end(), first, key);
        for (; key != keys.end() && !has_value(*key); ++key) {
            result.push_back(*key);
            end += key->duration;
        }
    }
    result.shrink_to_fit();
    return result;
}

} // namespace

void fit(Animation& show, unsigned int step) {
    const unsigned int duration = show.durationInFrames();
    Progress progress("fitting");
    double before = 0; // the frames of the layers that are done
    const double all = static_cast<double>(show.layers.size()) * duration;
    for (auto& [name, keys] : show.layers) {
        const auto reached = [&](unsigned int frame) { progress(before + frame, all); };
        keys = fitted(name, keys, step, duration, reached);
        before += duration;
    }
}
