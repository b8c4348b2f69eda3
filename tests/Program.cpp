#include "Program.h"

#include <animationmodel/Rotation.h>
#include <cfloat>

namespace Kiv {

Memory memory;

namespace {

/// Whether the animation is what the model is.
bool same(const Animation& it, const Model& model) {
    return FrameMap(it.layers.begin(), it.layers.end()) == model.layers &&
           it.introSize == model.introSize && it.outroSize == model.outroSize;
}
/// Makes the call of `step` on an animation or on a model, and returns what it gives.
template <class It>
std::vector<It> call(It& it, const It& other, const Step& step, const KeyVector& keys) {
    const auto& [operation, frame, count, first, second, name, own, given] = step;
    std::vector<It> none, maps(3);
    const auto map = [&](unsigned int i) -> auto& {
        return step.count == i ? it.layers : maps[i].layers;
    };
    const AnimationKey three(Wait, 3);
    const AnimationKey& key = keys.empty() ? three : keys.back();
    It moved; // neither filled nor checked yet
    moved.layers = other.layers;
    moved.introSize = other.introSize;
    moved.outroSize = other.outroSize;
    switch (operation) {
    case 0: return it.insertInLayer(name, keys, frame), none;
    case 1: return it.insertInLayer(name, key, frame), none;
    case 2: return it.pushBackInLayer(name, keys), none;
    case 3: return it.fillInLayer(name, frame), none;
    case 4: return it.removeInLayer(name, frame, count), none;
    case 5: return it.overrideLayerWith(name, keys, frame), none;
    case 6: return it.insert(other, frame), none;
    case 7: return it.pushBack(std::move(moved), first, second), none;
    case 8: return it.remove(frame, count), none;
    case 9: return it.overrideLayersWith(other, frame), none;
    case 10: return it.introBodyOutroLayers(map(0), map(1), map(2)), std::move(maps);
    case 11: return {it.loop(count, first, second)};
    case 12: return it.splitAt({frame, count, count / 2}, first, second);
    case 13: return it.splitEach(count, first, second);
    case 14: return it = It(other.layers, frame, count), none;
    default: return it.introSize = frame, it.outroSize = count, none;
    }
}

/// What the steps of a program do not call.
void call_with_extremes(const Step& step) {
    for (const AnimationKey& key : step.keys) {
        key.splitAt(step.frame);
        refusal([&] { key.splitEach(step.count); });
        refusal([&] { Rotation(0, INFINITY, step.frame, key.duration, step.count); });
    }
}

} // namespace

std::string run_step(Subject& subject, Subject& other, const Step& given, Check check,
                     unsigned long& calls) {
    Step step = given;
    if (check == Check::Memory && step.operation == 10)
        step.count = 3; // no map is the animation's own: that keeps what it got
    if (check != Check::Extremes && (step.operation == 12 || step.operation == 13) &&
        subject.model.layers != Model(subject.model.layers, 0, 0).layers)
        step.first = step.second = false; // the model has no marks for layers of unequal lengths
    const auto own = subject.animation.layers.find(step.own);
    const KeyVector& keys = own != subject.animation.layers.end() ? own->second : step.keys;
    const Model before = subject.model, otherModel = other.model;
    std::vector<Model> expected;
    const auto play = [&] { expected = call(subject.model, otherModel, step, keys); };
    const std::string refused = check == Check::Extremes ? "" : refusal(play);
    if (!refused.empty())
        subject.model = before;
    for (unsigned long nth = 1;; ++nth)
        try {
            std::vector<Animation> results;
            memory.failAt = check == Check::Memory ? nth : 0;
            const std::string error =
                refusal([&] { results = call(subject.animation, other.animation, step, keys); });
            memory.failAt = 0;
            ++calls;
            if (check == Check::Extremes)
                return call_with_extremes(step), "";
            const bool equal =
                error.empty() == refused.empty() && same(subject.animation, subject.model) &&
                std::equal(results.begin(), results.end(), expected.begin(), expected.end(),
                           [](const auto& a, const auto& b) { return same(a, b); });
            return equal ? "" : "not as the model (" + error + refused + ")";
        } catch (const std::exception& error) { // out of memory, or of 32 bits
            memory.failAt = 0;
            if (check != Check::Memory)
                return check == Check::Extremes ? "" : error.what();
            if (!same(subject.animation, before))
                return "changed before memory ran out";
        }
}

namespace {

/// Takes the arguments of one step after another from bytes.
struct Reader {
    const std::vector<unsigned char>& bytes;
    bool extreme;
    std::size_t next = 0;

    bool done() const { return next >= bytes.size(); }
    unsigned int take(unsigned int limit) { return done() ? 0 : bytes[next++] % limit; }

    unsigned int takeNumber(unsigned int limit) {
        constexpr unsigned int extremes[] = {0, 1, 2, 2147483647, 2147483648, 4294967295};
        return extreme ? extremes[take(6)] + take(3) - 1 : take(limit);
    }

    float takeFloat() {
        constexpr float extremes[] = {-0.0F, NAN, INFINITY, -1, 1, FLT_TRUE_MIN, FLT_MAX, -FLT_MAX};
        return extreme ? extremes[take(8)] : static_cast<float>(take(17)) / 2 - 4;
    }

    AnimationKey takeKey() {
        AnimationKey key(Wait, take(9) + 1);
        const unsigned int kind = take(6);
        if (kind < 2)
            key.command = {Transition, {takeFloat(), takeFloat()}};
        else if (kind == 2)
            key.command = {Hold, {takeFloat()}};
        else if (kind < 5)
            key.command = kind == 3 ? NoValue : AnimationKeyCommandEffect(-7);
        if (extreme && take(2) == 0) { // what no constructor would allow
            key.command.effect = AnimationKeyCommandEffect(take(7) - 2);
            key.duration = takeNumber(0);
        }
        return key;
    }

    Step takeStep() {
        const std::string names[] = {"a", "b", "", std::string("\0\xff", 2), std::string(99, 'n')};
        Step step{take(operations), takeNumber(64), takeNumber(24), take(2) != 0,
                  take(2) != 0,     names[take(5)], "none",         {}};
        if (!extreme && step.operation == 11)
            step.count %= 4;
        else if (!extreme && take(16) == 0)
            step.count = 4294967295 - take(2);
        if (take(4) == 0)
            step.own = names[take(5)];
        for (unsigned int i = take(6); i > 0; --i)
            step.keys.push_back(takeKey());
        return step;
    }
};

} // namespace

std::string run_program(const std::vector<unsigned char>& bytes, Check check,
                        unsigned long& calls) {
    Subject subjects[2];
    for (Reader reader{bytes, check == Check::Extremes}; !reader.done();) {
        Subject& subject = subjects[reader.take(2)];
        Subject& other = subjects[reader.take(2)];
        const Step step = reader.takeStep();
        for (auto& [name, layer] : subject.animation.layers)
            layer.reserve(reader.take(3) == 0 ? 50 : 0); // so that some edits are made in place
        const std::string fault = run_step(subject, other, step, check, calls);
        if (!fault.empty()) {
            std::ostringstream text;
            text << fault << ": operation " << step.operation << " with " << step.frame << ' '
                 << step.count << ' ' << step.name << ' ' << step.keys << ", left "
                 << subject.animation;
            return text.str();
        }
        if (check != Check::Extremes && subject.model.duration() > 200)
            subject = Subject();
    }
    return "";
}

} // namespace Kiv
