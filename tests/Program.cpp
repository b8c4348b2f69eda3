#include "Program.h"

#include <animationmodel/Rotation.h>
#include <cfloat>

namespace Kiv {

Memory memory;

namespace {

#define KIV_TEXT_OF(...) #__VA_ARGS__
#define KIV_TEXT(...) KIV_TEXT_OF(__VA_ARGS__)

std::string name_of(Operation operation) {
    std::istringstream names(KIV_TEXT(KIV_OPERATIONS));
    std::string name;
    for (unsigned int i = 0; i <= static_cast<unsigned int>(operation); ++i)
        std::getline(names >> std::ws, name, ',');
    return name;
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

/// Makes an edit on an animation or on a model.
template <class It>
void edit(It& it, const It& other, const Step& step, const KeyVector& keys) {
    const auto& [operation, frame, count, first, second, name, own, given] = step;
    const AnimationKey key = keys.empty() ? AnimationKey(Wait, 3) : keys.back();
    switch (operation) {
    case Operation::insertKeysInLayer: return it.insertInLayer(name, keys, frame);
    case Operation::insertKeyInLayer: return it.insertInLayer(name, key, frame);
    case Operation::pushBackInLayer: return it.pushBackInLayer(name, keys);
    case Operation::fillInLayer: return it.fillInLayer(name, frame);
    case Operation::removeInLayer: return it.removeInLayer(name, frame, count);
    case Operation::overrideLayerWith: return it.overrideLayerWith(name, keys, frame);
    case Operation::insert: return it.insert(other, frame);
    case Operation::pushBack: // as moved: not yet filled and checked
        return it.pushBack(exact_copy(other), first, second);
    case Operation::remove: return it.remove(frame, count);
    case Operation::overrideLayersWith: return it.overrideLayersWith(other, frame);
    case Operation::construct: it = It(other.layers, frame, count); return;
    default: // sizes set
        it.introSize = frame;
        it.outroSize = count;
    }
}

/// Makes the call of `step`, and returns what it gives.
template <class It>
std::vector<It> call(It& it, const It& other, const Step& step, const KeyVector& keys) {
    const auto& [operation, frame, count, first, second, name, own, given] = step;
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

/// Whether the animation is what the model is.
bool same(const Animation& it, const Model& model) {
    return FrameMap(it.layers.begin(), it.layers.end()) == model.layers &&
           it.introSize == model.introSize && it.outroSize == model.outroSize;
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
    text << it;
    for (const It& result : outcome.results)
        text << "\ngives " << result;
    if (!outcome.refused.empty())
        text << "\nrefuses: " << outcome.refused;
    return text.str();
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
        key.splitAt(step.frame);
        refusal([&] { key.splitEach(step.count); });
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
    if (!changed && same(got, expected) && same(subject.animation, subject.model))
        return "";

    std::ostringstream text;
    text << name_of(step.operation) << " of layer \"" << step.name << "\" with frame " << step.frame
         << ", count " << step.count << std::boolalpha << ", flags " << step.first << " and "
         << step.second << "\n--- keys:\n"
         << keysBefore << "\n--- other" << (&other == &subject ? ", the same one" : "") << ":\n"
         << otherBefore << "\n--- before:\n"
         << animationBefore << "\n--- expected, frame by frame:\n"
         << text_of(subject.model, expected) << "\n--- came:\n"
         << text_of(subject.animation, got)
         << (changed ? "\n--- and it changed before, when memory ran out" : "") << '\n';
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
