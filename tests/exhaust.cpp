#include "Program.h"

#include <cstdio>
#include <cstring>

using namespace Kiv;

namespace {

/// Every row of up to three keys of 1 to 3 frames: of any effects, or of those that their places
/// give them.
std::vector<KeyVector> rows(bool anyEffects) {
    const AnimationKeyCommand commands[] = {{Transition, {0, 1}}, Wait, {Hold, {2}}, NoValue};
    std::vector<KeyVector> all{{}};
    for (std::size_t i = 0; i < all.size() && all[i].size() < 3; ++i)
        for (unsigned int duration = 1; duration <= 3; ++duration)
            for (std::size_t effect = 0; effect < 4; ++effect)
                if (anyEffects || effect == all[i].size()) {
                    all.push_back(all[i]);
                    all.back().emplace_back(commands[effect], duration);
                }
    return all;
}

/// What each operation uses: frames, counts, both flags, sizes, keys, and other animations.
const char* const uses[operations] = {"fk",  "fk", "k",  "f",   "fc",   "fk",  "fso", "fso", "bso",
                                      "fcs", "fo", "cs", "cbs", "fcbs", "cbs", "fc",  "fc"};

/// Every call on one animation, with each argument up to just past its range.
void exhaust(const LayerMap& layers, unsigned long& calls) {
    const LayerMap none, some = animation("a: H4:2 W:1").layers,
                         others = animation("b: T0,9:1 N:2; c: H7:1").layers;
    const KeyVector given[] = {{}, keys("H9:2"), keys("W:1 T0,9:2 W:1 H8:1")};
    const unsigned int range = Animation::durationInFramesOf(layers) + 3;
    for (unsigned int operation = 0; operation < operations; ++operation) {
        const auto limit = [&](char use, unsigned int most) {
            return std::strchr(uses[operation], use) != nullptr ? most : 1;
        };
        const unsigned int limits[] = {limit('f', range),     limit('c', range),     limit('b', 4),
                                       limit('s', range - 1), limit('s', range - 1), limit('k', 3),
                                       limit('o', 3)};
        unsigned int at[7] = {};
        for (std::size_t place = 0; place < 7;) {
            Subject it, other;
            it.animation.layers = layers;
            it.model.layers = {layers.begin(), layers.end()};
            it.animation.introSize = static_cast<unsigned int>(it.model.introSize = at[3]);
            it.animation.outroSize = static_cast<unsigned int>(it.model.outroSize = at[4]);
            other.animation.layers = at[6] == 1 ? some : others;
            other.model.layers = {other.animation.layers.begin(), other.animation.layers.end()};
            const Step step{operation, at[0], at[1], at[2] % 2 > 0,
                            at[2] > 1, "a",   "",    given[at[5]]};
            const std::string fault =
                run_step(it, at[6] == 0 ? it : other, step, Check::Frames, calls);
            if (!fault.empty())
                throw std::logic_error(fault + " of operation " + std::to_string(operation));
            for (place = 0; place < 7 && ++at[place] == limits[place]; ++place)
                at[place] = 0; // counts on
        }
    }
}

} // namespace

int main() {
    unsigned long animations = 0, calls = 0;
    for (const KeyVector& row : rows(true))
        exhaust({{"a", row}}, calls), ++animations;
    for (const KeyVector& a : rows(false))
        for (const KeyVector& b : rows(false))
            exhaust({{"a", a}, {"b", b}}, calls), ++animations;
    std::printf("%lu animations, %lu calls as the model says\n", animations, calls);
}
