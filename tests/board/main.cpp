// Calls every operation and prints what it leaves, its values as a hash of their bits, for machines
// that have no GoogleTest: they have to print what any other machine prints.

#include "../Values.h"

#include <animationmodel/Rotation.h>

#include <cstdio>
#include <stdexcept>

using namespace Kiv;

namespace {

void show(const char* name, const Animation& it) {
    std::printf("%s, intro %u, outro %u:", name, it.introSize, it.outroSize);
    std::uint32_t sum = 0;
    for (const auto& [layer, keys] : it.layers) {
        std::printf(" %s", layer.c_str());
        for (const AnimationKey& key : keys)
            std::printf(" %d:%u", static_cast<int>(key.command.effect), key.duration);
        sum = hash(keys, sum);
    }
    std::printf(" %08lx\n", static_cast<unsigned long>(sum));
}

void show(const char* name, const std::vector<Animation>& pieces) {
    for (const Animation& piece : pieces)
        show(name, piece);
}

void edit_one_layer(Animation& it) {
    it.pushBackInLayer("a", Transition, {0.1F, 0.7F}, 7);
    it.pushBackInLayer("a", AnimationKey(NoValue, 3));
    it.insertInLayer("a", Hold, {0.3F}, 5, 4);
    it.insertInLayer("b", {{{Transition, {255, 3}}, 11}, {Wait, 2}}, 3);
    show("insertInLayer", it);
    it.replaceInLayer("a", 2, 3, Transition, {1, 0}, 6);
    show("replaceInLayer", it);
    it.overrideLayerWith("b", {{Wait, 4}, {{Hold, {2}}, 3}}, 1);
    show("overrideLayerWith", it);
    it.removeInLayer("b", 5, 4);
    it.fillInLayer("c", 9);
    show("removeInLayer", it);
}

void edit_all_layers(Animation& it) {
    Animation other(Rotation(1, 0.2F, 3, 2, 1));
    other.layers.erase("FaceLed5");
    it.introSize = 3;
    it.outroSize = 4;
    it.insert(other, 6);
    show("insert", it);
    it.replace(8, 9, other);
    show("replace", it);
    it.remove(1, 7);
    show("remove", it);
    it.overrideLayersWith(other, 2);
    show("overrideLayersWith", it);
    it.pushBack(other, false, false);
    show("pushBack", it);
    it.setFPSToFitDurationInSeconds(1.5F);
    std::printf("%u %d\n", it.durationInFrames(), static_cast<int>(1000 * it.fps));
}

void make_new_animations(const Animation& it) {
    show("loop", it.loop(2, true, false));
    show("splitAt", it.splitAt({3, 8}, true, true));
    show("splitEach", it.splitEach(10, true, true));
    Animation intro;
    Animation body;
    Animation outro;
    it.introBodyOutroLayers(intro.layers, body.layers, outro.layers);
    show("introBodyOutroLayers", {intro, body, outro});
    std::printf("%d %d\n", it.hasLayer("a"), it.empty());
}

} // namespace

int main() {
    std::fputs(table_of_values().c_str(), stdout);
    Animation it;
    edit_one_layer(it);
    edit_all_layers(it);
    make_new_animations(it);
    try {
        it.layer("none");
    } catch (const std::invalid_argument& refusal) {
        std::puts(refusal.what());
    }
    try {
        it.setFPSToFitDurationInSeconds(-1e-6F);
    } catch (const std::invalid_argument& refusal) {
        std::puts(refusal.what());
    }
}
