#include "Program.h"

#include "Model.h"

#include <animationmodel/Rotation.h>

#include <cfloat>
#include <iterator>

namespace Kiv {

Memory memory;

namespace {

/// An animation, and the model that it has to be like.
struct Subject {
    Animation animation;
    Model model;
};

/// One call: the operation, and all arguments that any of them takes.
struct Step {
    std::size_t operation; ///< Its index.
    unsigned int near;     ///< A frame;
    bool far;              ///< or one so far after that that no list of frames would hold it.
    unsigned int count;
    bool first;  ///< The first flag of those that take two.
    bool second; ///< And the second.
    std::string name;
    std::string own;  ///< The keys are those of this layer of the animation itself,
    KeyVector given;  ///< or these, if there is no such layer.
    bool keepIntro;   ///< The flags where all layers last as long: the model has no marks for
    bool keepOutro;   ///< others.
    std::size_t self; ///< Of a list of maps, the index of the animation's own; or past the last.
};

/// What operations find under these names, for an animation or for a model.
template <class It>
struct Call {
    It& it;
    const It& other; ///< May be the same.
    const KeyVector& keys;
    const AnimationKey key;
    const unsigned int frame;
    const Step& step;
    std::vector<It> results;
};

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

template <class It>
void take_apart(Call<It>& call) {
    call.results.resize(3);
    const auto map = [&call](std::size_t part) -> auto& {
        return part == call.step.self ? call.it.layers : call.results[part].layers;
    };
    call.it.introBodyOutroLayers(map(0), map(1), map(2));
}

struct Operation {
    template <class Make>
    Operation(const char* text, const Make& make) : text(text), onAnimation(make), onModel(make) {}

    void make(Call<Animation>& call) const { onAnimation(call); }
    void make(Call<Model>& call) const { onModel(call); }

    const char* text;
    void (*onAnimation)(Call<Animation>&);
    void (*onModel)(Call<Model>&);
};

/// An operation, as text and to be made. (clang-format would break it in odd places.)
// clang-format off
#define CALL(...) {#__VA_ARGS__, [](auto& call) {                                                  \
        auto& [it, other, keys, key, frame, step, results] = call;                                 \
        [[maybe_unused]] const auto& [operation, near, far, count, first, second, name, own,       \
                                      given, keepIntro, keepOutro, self] = step;                   \
        __VA_ARGS__;                                                                               \
    }}
// clang-format on

const Operation operations[] = {
    CALL(it.replaceInLayer(name, frame, count, keys)),
    CALL(it.replace(frame, count, other)),
    CALL(it.insertInLayer(name, keys, frame)),
    CALL(it.insertInLayer(name, key, frame)),
    CALL(it.pushBackInLayer(name, keys)),
    CALL(it.removeInLayer(name, frame, count)),
    CALL(it.overrideLayerWith(name, keys, frame)),
    CALL(it.fillInLayer(name, frame)),
    CALL(it.insert(other, frame)),
    CALL(it.pushBack(exact_copy(other), first, second)), // as moved: not yet filled and checked
    CALL(it.remove(frame, count)),
    CALL(it.overrideLayersWith(other, frame)),
    CALL(it = std::decay_t<decltype(it)>(other.layers, near, count)),
    CALL(assign(it, other)),
    CALL(it.introSize = near; it.outroSize = count),
    CALL(results = {it.loop(count, first, second)}),
    CALL(results = it.splitAt({near, count, count / 2}, keepIntro, keepOutro)),
    CALL(results = it.splitEach(count, keepIntro, keepOutro)),
    CALL(take_apart(call)),
};

/// For the first ones of them, another way to do the same.
const Operation inTwoSteps[] = {
    CALL(it.removeInLayer(name, frame, count); it.insertInLayer(name, keys, frame)),
    CALL(it.remove(frame, count); it.insert(other, frame)),
};

/// What a call gave, or why it was refused.
template <class It>
struct Outcome {
    std::vector<It> results;
    std::string refused;
};

unsigned int far_frames(const Animation& /*it*/) {
    return farFrames;
}
unsigned int far_frames(const Model& /*it*/) {
    return farFramesOfModel;
}

template <class It>
Outcome<It> attempt(const Operation& operation, It& it, const It& other, const Step& step,
                    const KeyVector& keys) {
    const AnimationKey key = keys.empty() ? AnimationKey(Wait, 3) : keys.back();
    const unsigned int frame = step.near + (step.far ? far_frames(it) : 0);
    Call<It> call{it, other, keys, key, frame, step, {}};
    const std::string refused = refusal([&] { operation.make(call); });
    return {std::move(call.results), refused};
}

/// The call, and those arguments that it names.
std::string text_of(const Step& step) {
    const std::string call = operations[step.operation].text;
    std::ostringstream text;
    text << std::boolalpha << call;
    const auto add = [&](const char* name, const auto& value) {
        if (call.find(name) != std::string::npos)
            text << ", " << name << ' ' << value;
    };
    add("name", '"' + step.name + '"');
    add("near", step.near);
    add("frame", step.near + (step.far ? farFrames : 0));
    add("count", step.count);
    add("first", step.first);
    add("second", step.second);
    return text.str();
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

/// Attempts the call with its first allocation failing, then with its second one, and so on until
/// memory suffices. Sets `changed` if a call that failed left something else than `before`, or
/// refused with another text than in the end.
Outcome<Animation> attempt_with_little_memory(const Operation& operation, Animation& it,
                                              const Animation& other, const Step& step,
                                              const KeyVector& keys, const Model& before,
                                              bool& changed) {
    std::set<std::string> refusals;
    for (unsigned long nth = 1;; ++nth) {
        memory.failAt = nth;
        try {
            Outcome<Animation> outcome = attempt(operation, it, other, step, keys);
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
    for (const AnimationKey& key : step.given) {
        drop(key.splitAt(step.near));
        refusal([&] { return key.splitEach(step.count); });
        refusal([&] { Rotation(0, INFINITY, step.near, key.duration, step.count); });
    }
}

const KeyVector& keys_of(const Step& step, const Animation& animation) {
    const auto own = animation.layers.find(step.own);
    return own != animation.layers.end() ? own->second : step.given;
}

void run_extreme_step(Animation& animation, const Animation& other, const Step& step) {
    try {
        attempt(operations[step.operation], animation, other, step, keys_of(step, animation));
        call_with_extremes(step);
    } catch (const std::bad_alloc&) {    // more than there may be
    } catch (const std::length_error&) { // more than a vector holds, where pointers have 32 bits
    }
}

/// Makes the call on `subject`, with `other`, which may be it, where an animation is asked for.
/// Returns what went wrong; "" if nothing did.
std::string run_step(Subject& subject, Subject& other, Step step, Check check) {
    const bool even = subject.model.layers == Model(subject.model.layers, 0, 0).layers;
    step.keepIntro = step.first && even;
    step.keepOutro = step.second && even;
    if (check == Check::Memory)
        step.self = 3; // the animation's own map would keep what it got
    const KeyVector& keys = keys_of(step, subject.animation);
    const Animation animationBefore = exact_copy(subject.animation);
    const Animation otherBefore = exact_copy(other.animation);
    const KeyVector keysBefore = keys;
    const Model before = subject.model;
    const Model otherModel = other.model;

    const Operation& operation = operations[step.operation];
    const Outcome<Model> expected = attempt(operation, subject.model, otherModel, step, keys);
    if (!expected.refused.empty())
        subject.model = before;
    bool changed = false;
    const Outcome<Animation> got =
        check == Check::Memory
            ? attempt_with_little_memory(operation, subject.animation, other.animation, step, keys,
                                         before, changed)
            : attempt(operation, subject.animation, other.animation, step, keys);
    bool differs = false;
    if (step.operation < std::size(inTwoSteps) && got.refused.empty()) {
        Animation it = exact_copy(animationBefore);
        attempt(inTwoSteps[step.operation], it, otherBefore, step, keysBefore);
        differs = it != subject.animation;
    }
    if (!changed && !differs && same(got, expected) && same(subject.animation, subject.model))
        return "";

    std::ostringstream text;
    text << text_of(step) << "\n--- keys:\n"
         << keysBefore << "\n--- other" << (&other == &subject ? ", the same one" : "") << ":\n"
         << otherBefore << "\n--- before:\n"
         << animationBefore << "\n--- expected, a bar where a key begins:\n"
         << text_of(subject.model, expected) << "\n--- came:\n"
         << text_of(subject.animation, got)
         << (changed ? "\n--- before that, a call that ran out of memory had changed it" : "")
         << (differs ? "\n--- which is not what removing and then inserting leave" : "") << '\n';
    return text.str();
}

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
        step.operation = take(std::size(operations));
        step.near = takeNumber(64);
        step.far = !extreme && take(16) == 0;
        step.count = takeNumber(24);
        step.first = take(2) != 0;
        step.second = take(2) != 0;
        step.name = names[take(5)];
        step.own = "none";
        const std::string_view call = operations[step.operation].text;
        if (!extreme && call.find("loop") != std::string_view::npos)
            step.count %= 4;
        else if (!extreme && take(16) == 0)
            step.count = 4294967295 - take(2);
        step.self = step.count;
        if (take(4) == 0)
            step.own = names[take(5)];
        for (unsigned int i = take(6); i > 0; --i)
            step.given.push_back(takeKey());
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
        ++calls;
        if (check == Check::Extremes) {
            run_extreme_step(subject.animation, other.animation, step);
            continue;
        }
        const std::string fault = run_step(subject, other, step, check);
        if (!fault.empty())
            return fault;
        if (subject.model.duration() > 200)
            subject = Subject();
    }
    return "";
}

} // namespace Kiv
