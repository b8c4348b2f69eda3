#include "Program.h"

#include "Model.h"

#include <animationmodel/Rotation.h>
#include <functional>
#include <limits>
#include <new>

namespace Kiv {

Memory memory;

namespace {

class Run {
public:
    Run(const std::vector<unsigned char>& bytes, Check check, unsigned long& calls)
        : bytes(bytes), extreme(check == Check::Extremes), failing(check == Check::Memory),
          calls(calls) {}

    /// What went wrong, behind the calls that led to it if they are `written` down; "" if nothing.
    std::string result(bool written) {
        writing = written;
        while (next < bytes.size() && fault.empty())
            step();
        return log + fault;
    }

private:
    unsigned int take(unsigned int limit) {
        return next < bytes.size() ? bytes[next++] % limit : 0;
    }

    unsigned int takeNumber(unsigned int limit) {
        constexpr unsigned int extremes[] = {0, 1, 2, 2147483647, 2147483648, 4294967295};
        return extreme ? extremes[take(6)] + take(3) - 1 : take(limit);
    }

    float takeFloat() {
        using Float = std::numeric_limits<float>;
        constexpr float extremes[] = {0,  -0.0F, Float::quiet_NaN(),  Float::infinity(),
                                      -1, 1,     Float::denorm_min(), Float::max()};
        return extreme ? extremes[take(8)] : static_cast<float>(take(17)) / 2 - 4;
    }

    AnimationKey takeKey() {
        const unsigned int effect = take(6);
        AnimationKey key(Wait, take(9) + 1);
        if (effect < 2)
            key.command = {Transition, make_vector(takeFloat(), takeFloat())};
        else if (effect == 2)
            key.command = {Hold, make_vector(takeFloat())};
        else if (effect < 5)
            key.command = effect == 3 ? NoValue : AnimationKeyCommandEffect(-7);
        if (extreme && take(2) == 0) { // what no constructor would allow
            key.command.effect = AnimationKeyCommandEffect(take(7) - 2);
            key.duration = takeNumber(0);
        }
        return key;
    }

    /// A call on an animation, and what it does on the model unless it is refused.
    struct Operation {
        std::function<void()> call, play = [] {};
        bool refused = false;
    };

    void act(const Operation& operation) {
        for (unsigned long nth = 1; fault.empty(); ++nth)
            try {
                memory.failAt = failing ? nth : 0;
                const std::string error = refusal(operation.call);
                memory.failAt = 0;
                ++calls;
                if (!extreme && error.empty() == operation.refused)
                    fault = operation.refused ? "should be refused" : error;
                if (!extreme && !operation.refused)
                    operation.play();
                return;
            } catch (const std::bad_alloc&) {
                memory.failAt = 0;
                if (extreme)
                    return;
                compare(animations[which], models[which]);
            }
    }

    void compare(const Animation& is, const Model& expected) {
        if (const std::string what = difference(is, expected); fault.empty() && !what.empty())
            fault = "should have " + what + ", but is " + show(is);
    }

    void step();

    const std::vector<unsigned char>& bytes;
    const bool extreme, failing;
    unsigned long& calls;
    std::size_t next = 0;
    Animation animations[2];
    Model models[2];
    unsigned int which = 0; ///< On which of the two the step works.
    bool writing = false;
    std::string log, fault;
};

void Run::step() {
    which = take(2);
    const unsigned int from = take(3) == 0 ? which : 1 - which;
    Animation& it = animations[which];
    const Animation& other = animations[from];
    Model& model = models[which];
    const std::map<std::string, Frames> otherLayers = models[from].layers;
    const std::optional<Model> copy = model.copy(), otherCopy = models[from].copy();

    const std::string names[] = {"a", "b", "", std::string("\0\xff", 2), std::string(99, 'n')};
    const std::string name = names[take(5)];
    const unsigned int frame = takeNumber(64);
    const unsigned int count = take(16) == 0 ? 4294967295 - take(2) : takeNumber(24);
    const bool first = take(2) != 0, second = take(2) != 0;
    if (const auto layer = it.layers.find(name); layer != it.layers.end())
        layer->second.reserve(take(3) == 0 ? 50 : 0); // so that some edits are made in place
    KeyVector given;
    for (unsigned int i = take(6); i > 0; --i)
        given.push_back(takeKey());
    const auto own = it.layers.find(names[take(5)]);
    const KeyVector& keys = take(4) == 0 && own != it.layers.end() ? own->second : given;
    const Frames written = extreme ? Frames() : frames_of(keys);
    const AnimationKey spare(Wait, 3);
    const AnimationKey& single = keys.empty() ? spare : keys.back();
    const Frames last = extreme ? Frames() : frames_of({single});
    const unsigned int number = take(5);
    const auto effect = AnimationKeyCommandEffect(number);
    const std::vector<float> args(take(4), 1.5F);
    const unsigned int length = count % 99;
    const bool mismatch = args.size() != (number < 2 ? 2 - number : 0) || length == 0;

    Animation result;
    std::vector<Animation> pieces;
    LayerMap parts[3];
    std::set<unsigned int> cuts{frame, count % 64, count % 5};
    std::set<unsigned int> multiples;
    for (std::uint64_t i = 0; !extreme && count > 0 && i <= model.duration(); i += count)
        multiples.insert(static_cast<unsigned int>(i));
    const unsigned int times = extreme ? count : count % 4, intro = extreme ? frame : frame % 32,
                       outro = extreme ? count : count % 32;
    Model sized = model;
    sized.intro = intro;
    sized.outro = outro;
    const std::optional<Model> built = sized.copy();
    const auto layer = [&]() -> Frames& { return model.layers[name]; };
    const auto key = [&] { return frames_of({{{effect, args}, length}}); };
    const auto comparePieces = [&](const std::set<unsigned int>& at) {
        const std::vector<Model> expected = model.split(at, first, second);
        if (pieces.size() != expected.size())
            fault = "should give " + std::to_string(expected.size()) + " pieces";
        for (std::size_t i = 0; fault.empty() && i < pieces.size(); ++i)
            compare(pieces[i], expected[i]);
    };
    const Operation operations[] = {
        {[&] { it.insertInLayer(name, keys, frame); },
         [&] { written.empty() ? Frames() : layer() = inserted(layer(), written, frame); }},
        {[&] { it.insertInLayer(name, single, frame); },
         [&] { layer() = inserted(layer(), last, frame); }},
        {[&] { it.insertInLayer(name, effect, args, length, frame); },
         [&] { layer() = inserted(layer(), key(), frame); }, mismatch},
        {[&] { it.pushBackInLayer(name, keys); },
         [&] {
             layer() = joined({layer(), written});
         }},
        {[&] { it.pushBackInLayer(name, effect, args, length); },
         [&] {
             layer() = joined({layer(), key()});
         },
         mismatch},
        {[&] { it.fillInLayer(name, frame); }, [&] { layer() = filled(layer(), frame); }},
        {[&] { it.removeInLayer(name, frame, count); },
         [&] { layer() = removed(layer(), frame, count); }},
        {[&] { it.overrideLayerWith(name, keys, frame); },
         [&] {
             model.overrideWith({{name, written}}, frame);
         }},
        {[&] { it.insert(other, frame); }, [&] { model.insert(*otherCopy, frame); }, !otherCopy},
        {[&] { // moved in, so filled and checked by the call
             Animation moved;
             moved.layers = other.layers;
             moved.introSize = other.introSize;
             moved.outroSize = other.outroSize;
             it.insert(std::move(moved), frame);
         },
         [&] { model.insert(*otherCopy, frame); }, !otherCopy},
        {[&] { it.pushBack(other, first, second); },
         [&] { model.pushBack(*otherCopy, first, second); }, !otherCopy},
        {[&] { it.remove(frame, count); }, [&] { model.remove(frame, count); }},
        {[&] { it.overrideLayersWith(other, frame); },
         [&] { model.overrideWith(otherLayers, frame); }},
        {[&] {
             std::ranges::fill(parts, LayerMap());
             it.introBodyOutroLayers(parts[0], parts[1], parts[2]);
         },
         [&] {
             const std::size_t end = std::max(model.intro, model.outroStart());
             const std::size_t ends[] = {0, model.intro, end, 99999};
             for (std::size_t i = 0; i < 3; ++i) {
                 result.layers = parts[i];
                 compare(result, model.part(ends[i], ends[i + 1]));
             }
         }},
        {[&] { result = it.loop(times, first, second); },
         [&] { compare(result, copy->looped(times, first, second)); }, !copy},
        {[&] { pieces = it.splitAt(cuts, first, second); }, [&] { comparePieces(cuts); }},
        {[&] { pieces = it.splitEach(count, first, second); }, [&] { comparePieces(multiples); },
         count == 0},
        {[&] { it = other; }, [&] { model = *otherCopy; }, !otherCopy},
        {[&] { it = Animation(LayerMap(it.layers), intro, outro); }, [&] { model = *built; },
         !built},
        {[&] { it.introSize = intro, it.outroSize = outro; }, [&] { model = sized; }},
        // Only with extreme arguments, for the model has no frame rate:
        {[&] { it.setFPSToFitDurationInSeconds(takeFloat()); }},
        {[&] { it.simulatedDurationInSeconds(takeFloat()); }},
        {[&] { takeKey().splitAt(frame); }},
        {[&] { takeKey().splitEach(count); }},
        {[&] { result = Rotation(takeFloat(), takeFloat(), frame, count, takeNumber(0)); }},
        {[&] { it.layer(name); }},
    };
    const std::size_t operation = take(std::size(operations) - (extreme ? 0 : 6));
    if (writing)
        log += show(it) + "\n  " + std::to_string(operation) + " of " + "ab"[which] + " with " +
               name + " " + std::to_string(frame) + " " + std::to_string(count) + " " + show(keys) +
               "\n";
    act(operations[operation]);
    if (extreme)
        return;
    compare(it, model);
    if (model.duration() > 200) {
        it.reset();
        model = Model();
    }
}

} // namespace

std::string run_program(const std::vector<unsigned char>& bytes, Check check,
                        unsigned long& calls) {
    if (Run(bytes, check, calls).result(false).empty())
        return "";
    return Run(bytes, check, calls).result(true);
}

} // namespace Kiv
