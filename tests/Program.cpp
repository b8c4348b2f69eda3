#include "Program.h"

#include <animationmodel/Rotation.h>
#include <cfloat>

namespace Kiv {

Memory memory;

namespace {

template <class... Arguments>
std::string text_of_call(const char* name, const Arguments&... arguments) {
    std::ostringstream text;
    text << std::boolalpha << name;
    const char* before = "(";
    ((text << std::exchange(before, ", ") << arguments), ...);
    return text.str() + ")";
}

/// The frame that is meant in an animation. The model stands nearer, after all that it may hold.
unsigned int frame_of(const Step& step, const Animation& /*it*/) {
    return step.frame + (step.far ? farFrames : 0);
}
unsigned int frame_of(const Step& step, const Model& /*it*/) {
    return step.frame + (step.far ? farFramesOfModel : 0);
}

/// The call of a step, with those of its arguments that the operation takes.
std::string text_of(const Step& step) {
    const auto& [operation, near, far, count, first, second, given, own, keys] = step;
    const unsigned int frame = frame_of(step, Animation());
    const std::string name = '"' + given + '"';
    switch (operation) {
    case Operation::replaceInLayer:
        return text_of_call("replaceInLayer", name, frame, count, "keys");
    case Operation::insertKeysInLayer: return text_of_call("insertInLayer", name, "keys", frame);
    case Operation::insertKeyInLayer: return text_of_call("insertInLayer", name, "last key", frame);
    case Operation::pushBackInLayer: return text_of_call("pushBackInLayer", name, "keys");
    case Operation::fillInLayer: return text_of_call("fillInLayer", name, frame);
    case Operation::removeInLayer: return text_of_call("removeInLayer", name, frame, count);
    case Operation::overrideLayerWith:
        return text_of_call("overrideLayerWith", name, "keys", frame);
    case Operation::replace: return text_of_call("replace", frame, count, "other");
    case Operation::insert: return text_of_call("insert", "other", frame);
    case Operation::pushBack: return text_of_call("pushBack", "other", first, second);
    case Operation::remove: return text_of_call("remove", frame, count);
    case Operation::overrideLayersWith: return text_of_call("overrideLayersWith", "other", frame);
    case Operation::construct: return text_of_call("Animation", "other.layers", near, count);
    case Operation::assign: return text_of_call("operator=", "other");
    case Operation::setSizes: return text_of_call("set sizes", near, count);
    case Operation::loop: return text_of_call("loop", count, first, second);
    case Operation::splitAt:
        return text_of_call("splitAt", text_of_call("", near, count, count / 2), first, second);
    case Operation::splitEach: return text_of_call("splitEach", count, first, second);
    case Operation::introBodyOutroLayers: return text_of_call("introBodyOutroLayers", count);
    }
    return "?";
}

/// A copy of an animation or a model, neither filled nor checked.
template <class It>
It exact_copy(const It& it) {
    It copy;
    copy.layers = it.layers;
    copy.introSize = it.introSize;
    copy.outroSize = it.outroSize;
    return copy;
}

void assign(Animation& it, const Animation& other) {
    it = other;
}
void assign(Model& it, const Model& other) {
    it = other.copy();
}

/// Makes an edit on an animation or on a model.
template <class It>
void edit(It& it, const It& other, const Step& step, const KeyVector& keys) {
    const auto& [operation, near, far, count, first, second, name, own, given] = step;
    const unsigned int frame = frame_of(step, it);
    const AnimationKey key = keys.empty() ? AnimationKey(Wait, 3) : keys.back();
    switch (operation) {
    case Operation::replaceInLayer: return it.replaceInLayer(name, frame, count, keys);
    case Operation::insertKeysInLayer: return it.insertInLayer(name, keys, frame);
    case Operation::insertKeyInLayer: return it.insertInLayer(name, key, frame);
    case Operation::pushBackInLayer: return it.pushBackInLayer(name, keys);
    case Operation::fillInLayer: return it.fillInLayer(name, frame);
    case Operation::removeInLayer: return it.removeInLayer(name, frame, count);
    case Operation::overrideLayerWith: return it.overrideLayerWith(name, keys, frame);
    case Operation::replace: return it.replace(frame, count, other);
    case Operation::insert: return it.insert(other, frame);
    case Operation::pushBack: // as moved: not yet filled and checked
        return it.pushBack(exact_copy(other), first, second);
    case Operation::remove: return it.remove(frame, count);
    case Operation::overrideLayersWith: return it.overrideLayersWith(other, frame);
    case Operation::construct: it = It(other.layers, near, count); return;
    case Operation::assign: return assign(it, other);
    default: // sizes set
        it.introSize = near;
        it.outroSize = count;
    }
}

/// Makes the call of `step`, and returns what it gives.
template <class It>
std::vector<It> call(It& it, const It& other, const Step& step, const KeyVector& keys) {
    const auto& [operation, frame, far, count, first, second, name, own, given] = step;
    std::vector<It> parts(3);
    const auto map = [&](unsigned int part) -> auto& { // one of them may be the animation's own
        return step.count == part ? it.layers : parts[part].layers;
    };
    switch (operation) {
    case Operation::loop: return {it.loop(count, first, second)};
    case Operation::splitAt: return it.splitAt({frame, count, count / 2}, first, second);
    case Operation::splitEach: return it.splitEach(count, first, second);
    case Operation::introBodyOutroLayers:
        it.introBodyOutroLayers(map(0), map(1), map(2));
        return parts;
    default: edit(it, other, step, keys); return {};
    }
}

/// What a call gave, or why it was refused.
template <class It>
struct Outcome {
    std::vector<It> results;
    std::string refused;
};

template <class It>
Outcome<It> attempt(It& it, const It& other, const Step& step, const KeyVector& keys) {
    Outcome<It> outcome;
    outcome.refused = refusal([&] { outcome.results = call(it, other, step, keys); });
    return outcome;
}

/// The model that the animation is like.
Model model_of(const Animation& it) {
    Model model;
    model.layers = FrameMap(it.layers.begin(), it.layers.end());
    model.introSize = it.introSize;
    model.outroSize = it.outroSize;
    return model;
}
const Model& model_of(const Model& it) {
    return it;
}

bool same(const Animation& it, const Model& model) {
    const Model other = model_of(it);
    return other.layers == model.layers && other.introSize == model.introSize &&
           other.outroSize == model.outroSize;
}
bool same(const Outcome<Animation>& got, const Outcome<Model>& expected) {
    return got.refused.empty() == expected.refused.empty() &&
           std::equal(got.results.begin(), got.results.end(), expected.results.begin(),
                      expected.results.end(),
                      [](const Animation& a, const Model& b) { return same(a, b); });
}

template <class It>
std::string text_of(const It& it, const Outcome<It>& outcome) {
    std::ostringstream text;
    text << model_of(it);
    for (const It& result : outcome.results)
        text << "\ngives " << model_of(result);
    if (!outcome.refused.empty())
        text << "\nrefuses: " << outcome.refused;
    return text.str();
}

/// Whether a replacement left what removing and then inserting leaves of `before`, bit for bit.
bool as_in_two_steps(const Animation& before, const Animation& other, const Step& step,
                     const KeyVector& keys, const Animation& after) {
    Animation it = exact_copy(before);
    const unsigned int frame = frame_of(step, it);
    if (step.operation == Operation::replaceInLayer) {
        it.removeInLayer(step.name, frame, step.count);
        it.insertInLayer(step.name, keys, frame);
    } else if (step.operation == Operation::replace) {
        it.remove(frame, step.count);
        it.insert(exact_copy(other), frame);
    } else {
        return true;
    }
    return it == after;
}

/// Attempts the call with its first allocation failing, then with its second one, and so on until
/// memory suffices. Sets `changed` if a call that failed left something else than `before`, or
/// refused with another text than in the end.
Outcome<Animation> attempt_with_little_memory(Animation& it, const Animation& other,
                                              const Step& step, const KeyVector& keys,
                                              const Model& before, bool& changed) {
    std::set<std::string> refusals;
    for (unsigned long nth = 1;; ++nth) {
        memory.failAt = nth;
        try {
            Outcome<Animation> outcome = attempt(it, other, step, keys);
            const bool sufficed = memory.failAt > 0;
            memory.failAt = 0;
            refusals.insert(outcome.refused);
            changed = changed || refusals.size() > 1;
            if (sufficed || outcome.refused.empty())
                return outcome;
        } catch (const std::bad_alloc&) {
            memory.failAt = 0;
            changed = changed || !same(it, before);
        }
    }
}

/// What the steps of a program do not call.
void call_with_extremes(const Step& step) {
    for (const AnimationKey& key : step.keys) {
        drop(key.splitAt(step.frame));
        refusal([&] { return key.splitEach(step.count); });
        refusal([&] { Rotation(0, INFINITY, step.frame, key.duration, step.count); });
    }
}

const KeyVector& keys_of(const Step& step, const Animation& animation) {
    const auto own = animation.layers.find(step.own);
    return own != animation.layers.end() ? own->second : step.keys;
}

void run_extreme_step(Animation& animation, const Animation& other, const Step& step) {
    try {
        attempt(animation, other, step, keys_of(step, animation));
        call_with_extremes(step);
    } catch (const std::bad_alloc&) {    // more than there may be
    } catch (const std::length_error&) { // more than a vector holds, where pointers have 32 bits
    }
}

} // namespace

std::string run_step(Subject& subject, Subject& other, Step step, Check check,
                     unsigned long& calls) {
    if (check == Check::Extremes) {
        run_extreme_step(subject.animation, other.animation, step);
        ++calls;
        return "";
    }
    if (check == Check::Memory && step.operation == Operation::introBodyOutroLayers)
        step.count = 3; // no map is the animation's own: that keeps what it got
    if (subject.model.layers != Model(subject.model.layers, 0, 0).layers &&
        (step.operation == Operation::splitAt || step.operation == Operation::splitEach)) {
        step.first = false; // the model has no marks for layers of unequal lengths
        step.second = false;
    }
    const KeyVector& keys = keys_of(step, subject.animation);
    const Animation animationBefore = exact_copy(subject.animation);
    const Animation otherBefore = exact_copy(other.animation);
    const KeyVector keysBefore = keys;
    const Model before = subject.model;
    const Model otherModel = other.model;

    const Outcome<Model> expected = attempt(subject.model, otherModel, step, keys);
    if (!expected.refused.empty())
        subject.model = before;
    bool changed = false;
    const Outcome<Animation> got =
        check == Check::Memory ? attempt_with_little_memory(subject.animation, other.animation,
                                                            step, keys, before, changed)
                               : attempt(subject.animation, other.animation, step, keys);
    ++calls;
    const bool inTwoSteps =
        !got.refused.empty() ||
        as_in_two_steps(animationBefore, otherBefore, step, keysBefore, subject.animation);
    if (!changed && inTwoSteps && same(got, expected) && same(subject.animation, subject.model))
        return "";

    std::ostringstream text;
    text << text_of(step) << "\n--- keys:\n"
         << keysBefore << "\n--- other" << (&other == &subject ? ", the same one" : "") << ":\n"
         << otherBefore << "\n--- before:\n"
         << animationBefore << "\n--- expected, a bar where a key begins:\n"
         << text_of(subject.model, expected) << "\n--- came:\n"
         << text_of(subject.animation, got)
         << (changed ? "\n--- before that, a call that ran out of memory had changed it" : "")
         << (inTwoSteps ? "" : "\n--- which is not what removing and then inserting leave") << '\n';
    return text.str();
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
        Step step{};
        step.operation = static_cast<Operation>(take(operationCount));
        step.frame = takeNumber(64);
        step.far = !extreme && take(16) == 0;
        step.count = takeNumber(24);
        step.first = take(2) != 0;
        step.second = take(2) != 0;
        step.name = names[take(5)];
        step.own = "none";
        if (!extreme && step.operation == Operation::loop)
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
        if (!fault.empty())
            return fault;
        if (check != Check::Extremes && subject.model.duration() > 200)
            subject = Subject();
    }
    return "";
}

} // namespace Kiv
