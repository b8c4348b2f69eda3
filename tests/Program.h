#pragma once

#include "Model.h"

#include <cstdint>

namespace Kiv {

/// What allocations do.
struct Memory {
    unsigned long failAt = 0;       ///< The allocation to fail, counted down; 0 for none.
    std::size_t largest = SIZE_MAX; ///< Larger ones fail too.
    unsigned long count = 0;        ///< How many there were.
    std::size_t inUse = 0;          ///< Bytes.
    std::size_t most = 0;           ///< The most bytes that were in use.
};
extern Memory memory;

enum class Check {
    Frames,  ///< Each call leaves what it leaves of the model, at every frame.
    Memory,  ///< So it does when each of its allocations has failed in turn and changed nothing.
    Extremes ///< Arguments are the most extreme there are; each call comes back.
};

/// An animation, and the model that it has to be like.
struct Subject {
    Animation animation;
    Model model;
};

enum class Operation {
    replaceInLayer,
    insertKeysInLayer,
    insertKeyInLayer,
    pushBackInLayer,
    fillInLayer,
    removeInLayer,
    overrideLayerWith,
    replace,
    insert,
    pushBack,
    remove,
    overrideLayersWith,
    construct,
    assign,
    setSizes,
    loop,
    splitAt,
    splitEach,
    introBodyOutroLayers
};
constexpr auto operationCount = static_cast<unsigned int>(Operation::introBodyOutroLayers) + 1;

/// One call: the operation, and all arguments that any of them takes.
struct Step {
    Operation operation;
    unsigned int frame;
    bool far; ///< So far after that frame that no list of frames would hold it.
    unsigned int count;
    bool first;  ///< The first flag of those that take two.
    bool second; ///< And the second.
    std::string name;
    std::string own; ///< The keys are those of this layer of the animation itself,
    KeyVector keys;  ///< or these, if there is no such layer.
};

/// Makes the call on `subject`, with `other`, which may be it, where an animation is asked for.
/// Returns what went wrong; "" if nothing did. Adds to `calls` how many ended well or refused.
std::string run_step(Subject& subject, Subject& other, Step step, Check check,
                     unsigned long& calls);

/// Runs the program of calls on two animations that `bytes` stand for. Returns what went wrong, and
/// in which call; "" if nothing did.
std::string run_program(const std::vector<unsigned char>& bytes, Check check, unsigned long& calls);

} // namespace Kiv
