// Calls every operation and prints the keys that come of it, values as a hash of their bits, for
// machines that have no GoogleTest: they have to print what any other machine prints.

#include "../Values.h"

#include <animationmodel/Rotation.h>

#include <cstdio>
#include <stdexcept>

using namespace Kiv;

static void print(const std::vector<Animation>& animations) {
    for (const Animation& it : animations)
        for (const auto& [name, keys] : it.layers) {
            std::printf("%u %u %s:", it.introSize, it.outroSize, name.c_str());
            for (const AnimationKey& key : keys)
                std::printf(" %d %u", static_cast<int>(key.command.effect), key.duration);
            std::printf(" %08lx\n", static_cast<unsigned long>(hash(keys, 0)));
        }
}

int main() {
    std::fputs(table_of_values().c_str(), stdout);

    Animation it;
    it.pushBackInLayer("a", Transition, {0.1F, 0.7F}, 7);
    it.insertInLayer("a", Hold, {0.3F}, 5, 4);
    it.insertInLayer("b", {{{Transition, {255, 3}}, 11}, {Wait, 2}}, 3);
    it.replaceInLayer("a", 2, 3, Transition, {1, 0}, 6);
    it.overrideLayerWith("b", {{Wait, 4}, {{Hold, {2}}, 3}}, 1);
    it.removeInLayer("b", 5, 4);
    it.fillInLayer("c", 9);
    print({it});

    Animation other(Rotation(1, 0.2F, 3, 2, 1));
    it.introSize = 3;
    it.outroSize = 4;
    it.insert(other, 6);
    it.replace(8, 9, other);
    it.remove(1, 7);
    it.overrideLayersWith(other, 2);
    it.pushBack(other, false, false);
    it.setFPSToFitDurationInSeconds(1.5F);
    print({it});

    print({it.loop(2, true, false)});
    print(it.splitAt({3, 8}, true, true));
    print(it.splitEach(10, true, true));
    it.introBodyOutroLayers(other.layers, other.layers, other.layers);
    print({other});
    std::printf("%u %u\n", Animation::durationInFramesOf(it.layer("a")), it.outroStartFrame());
    try {
        it.setFPSToFitDurationInSeconds(-it.durationInSeconds());
    } catch (const std::invalid_argument& refusal) {
        std::puts(refusal.what());
    }
}
