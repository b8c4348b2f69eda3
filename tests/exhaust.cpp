#include "Program.h"

#include <cstdio>
#include <cstring>

using namespace Kiv;

namespace {

/// Makes choices; each time around others, until all were made.
struct Choices {
    std::vector<std::pair<unsigned int, unsigned int>> made; ///< Which one, of how many.
    std::size_t next = 0;

    unsigned int take(unsigned int limit) {
        if (next == made.size())
            made.emplace_back(0, limit);
        return made[next++].first;
    }
    bool again() {
        for (next = 0; !made.empty() && ++made.back().first == made.back().second;)
            made.pop_back();
        return !made.empty();
    }
};

/// What each operation uses: frames, counts, both flags, sizes, keys, and other animations.
const char* const uses[operations] = {"fk",  "fk", "k",  "f",   "fc",   "fk",  "fso", "bso",
                                      "fcs", "fo", "cs", "cbs", "fcbs", "cbs", "fc",  "fc"};

} // namespace

int main() {
    const AnimationKeyCommand commands[] = {{Transition, {0, 1}}, Wait, {Hold, {2}}, NoValue};
    const LayerMap others = animation("a: H4:2 W:1; c: T0,9:1 N:2").layers;
    const KeyVector given[] = {{}, keys("H9:2"), keys("W:1 T0,9:2 W:1 H8:1")};
    unsigned long calls = 0;
    Choices choices;
    do {
        Subject it, other;
        auto& layers = it.animation.layers;
        const bool both = choices.take(2) > 0;
        for (const char* name : {"a", "b"})
            if (KeyVector* layer = *name == 'a' || both ? &layers[name] : nullptr)
                for (unsigned int i = choices.take(4); i > 0; --i)
                    layer->emplace_back(commands[both ? i - 1 : choices.take(4)],
                                        choices.take(3) + 1);
        Step step{choices.take(operations), 0, 0, false, false, "a", "", {}};
        const auto take = [&](char use, unsigned int limit) {
            return std::strchr(uses[step.operation], use) != nullptr ? choices.take(limit) : 0;
        };
        const unsigned int range = it.animation.durationInFrames() + 3;
        step.frame = take('f', range), step.count = take('c', range);
        step.first = take('b', 2) > 0, step.second = take('b', 2) > 0;
        step.keys = given[take('k', 3)];
        it.model.introSize = it.animation.introSize = take('s', range - 1);
        it.model.outroSize = it.animation.outroSize = take('s', range - 1);
        it.model.layers = {layers.begin(), layers.end()};
        other.animation.layers = others;
        other.model.layers = {others.begin(), others.end()};
        const std::string fault =
            run_step(it, take('o', 2) == 0 ? it : other, step, Check::Frames, calls);
        if (!fault.empty())
            throw std::logic_error(fault + " of operation " + std::to_string(step.operation));
    } while (choices.again());
    std::printf("%lu calls as the model says\n", calls);
}
