// Prints each line of code in "What may surprise" of README.md, and what comes out.

#include <animationmodel/play.h>

#include <animationmodel/Rotation.h>

#include <cmath>
#include <iostream>
#include <stdexcept>

using namespace Kiv;

namespace {

template <class Value>
std::ostream& show(const Value& value) {
    return std::cout << value << "`\n";
}
std::ostream& show(float value) {
    return show(shortest_text(value));
}

} // namespace

// NOLINTBEGIN(bugprone-macro-parentheses)

/// What an expression is.
#define SHOW(question)                                                                             \
    std::cout << "`" #question "` is `";                                                           \
    show(question)

/// What is said where a call throws.
#define THROWS(call)                                                                               \
    std::cout << "`" #call "` throws `";                                                           \
    try {                                                                                          \
        static_cast<void>(call);                                                                   \
    } catch (const std::invalid_argument& error) {                                                 \
        show(error.what());                                                                        \
    }

/// What an expression is after an edit of a fresh lamp.
#define EDIT(edit, question)                                                                       \
    edit;                                                                                          \
    std::cout << "`" #edit "`: ";                                                                  \
    SHOW(question);                                                                                \
    lamp = fresh

// NOLINTEND(bugprone-macro-parentheses)

int main() {
    const Animation fresh({{"lamp", {{{Transition, {0, 1}}, 10}, {{Hold, {1}}, 10}}}}, 2, 5);
    const AnimationKey dim({Hold, {0.5F}}, 4);
    Animation bell({{"bell", {dim}}});
    bell.fps = 50;
    Animation lamp(fresh);

    // Names and numbers.
    EDIT(lamp.pushBackInLayer("lmap", dim), lamp.layers.size());
    EDIT(lamp.layers = LayerMap({{"lamp2", {dim}}, {"lamp10", {dim}}}), lamp.layers.begin()->first);
    EDIT(lamp.layers = LayerMap({{"lamp red", {dim}}, {"lamp green", {dim}}, {"lamp blue", {dim}}}),
         lamp.layers.size());
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wsign-conversion" // which finds this call
    EDIT(lamp.insertInLayer("lamp", dim, -25), lamp.durationInFrames());
#pragma GCC diagnostic pop
    EDIT(lamp.remove(10, 4294967295), lamp.layer("lamp"));
    SHOW(sample(lamp.layers, 5, 1).front());
    EDIT(lamp.removeInLayer("lamp", 3, 0), sample(lamp.layers, 7, 1).front());
    SHOW(AnimationKey(AnimationKeyCommandEffect(7), 5).splitAt(2));
    SHOW(AnimationKey({Transition, {0, 1e-40F}}, 2).splitAt(1));

    // Layers and sizes.
    EDIT(lamp.layer("lamp").clear(), lamp.layer("lamp").size());
    EDIT(lamp.layers.at("lamp").clear(), lamp.layer("lamp").size());
    EDIT(lamp.pushBackInLayer("bell", dim), lamp.layer("bell"));
    EDIT(lamp.pushBackInLayer("bell", dim), Animation(lamp).layer("bell"));
    EDIT(lamp.insertInLayer("lamp", dim, 0), lamp.introSize);
    EDIT(lamp.insert(bell, 0), lamp.introSize);
    EDIT(lamp.outroSize = 50, lamp.outroStartFrame());
    THROWS(lamp.loop(200000000, false, false));
    SHOW(Animation(NAN).fps);

    // Edits.
    EDIT(lamp.overrideLayerWith("lamp", dim, 2), lamp.layer("lamp"));
    EDIT(lamp.replaceInLayer("lamp", 2, 4, dim), lamp.layer("lamp"));
    EDIT(lamp.overrideLayerWith("lamp", {{Wait, 15}, dim}, 0), lamp.layer("lamp"));
    EDIT(lamp.replaceInLayer("lamp", 0, 15, {Wait, 15}), lamp.layer("lamp"));
    EDIT(lamp.replace(0, 20, bell), lamp.layer("lamp"));
    EDIT(lamp.overrideLayerWith("lamp", dim, 25), lamp.layer("lamp"));
    EDIT(lamp.insert(bell, 20), lamp.durationInFrames());
    EDIT(lamp.insert(lamp, 10), lamp.durationInFrames());

    // Pieces.
    EDIT(lamp = lamp.splitEach(10, true, true).front(), lamp.durationInFrames());
    EDIT(lamp = lamp.splitAt(12, true, true).back(), lamp.outroSize);
    SHOW(Rotation(1, 0, 1, 1, 2).outroSize);
}
