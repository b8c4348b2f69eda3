#include <animationmodel/AnimationKeyCommand.h>

#include "refuse.h"

#include <limits>

namespace Kiv {

AnimationKeyCommand::AnimationKeyCommand(AnimationKeyCommandEffect effect)
    : AnimationKeyCommand(effect, {}) {}

AnimationKeyCommand::AnimationKeyCommand(AnimationKeyCommandEffect effect,
                                         const std::vector<float>& args)
    : effect(effect), args() {
    constexpr std::size_t most = std::numeric_limits<unsigned int>::max();
    const auto given = static_cast<unsigned int>(std::min(args.size(), most));
    _checkRightNumberOfArgs(effect, given);
    std::copy(args.begin(), args.end(), this->args.values);
    this->args.count = given;
}

void AnimationKeyCommand::_checkRightNumberOfArgs(AnimationKeyCommandEffect effect,
                                                  unsigned int given) const {
    constexpr unsigned int counts[] = {2, 1, 0, 0};
    const auto index = static_cast<std::uint32_t>(effect);
    const unsigned int expected = index < std::size(counts) ? counts[index] : 0;
    if (expected != given)
        refuse("Could not set attributes of AnimationKeyCommand: the number of arguments does not "
               "correspond to the command (",
               given, " arguments given but ", expected, " expected for command ",
               static_cast<std::int32_t>(effect), ")");
}

std::vector<float> make_vector(float a) {
    return {a};
}

std::vector<float> make_vector(float a, float b) {
    return {a, b};
}

} // namespace Kiv
