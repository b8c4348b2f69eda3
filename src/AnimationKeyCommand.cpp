#include <animationmodel/AnimationKeyCommand.h>

#include "text.h"

#include <algorithm>
#include <limits>

namespace Kiv {

AnimationKeyCommand::AnimationKeyCommand(AnimationKeyCommandEffect effect, const float* args,
                                         std::size_t given)
    : effect(effect), args{} {
    constexpr std::size_t most = std::numeric_limits<unsigned int>::max();
    _checkRightNumberOfArgs(effect, static_cast<unsigned int>(std::min(given, most)));
    this->args.assign(args, args + given);
}

AnimationKeyCommand::AnimationKeyCommand(AnimationKeyCommandEffect effect)
    : AnimationKeyCommand(effect, nullptr, 0) {}

AnimationKeyCommand::AnimationKeyCommand(AnimationKeyCommandEffect effect,
                                         const std::vector<float>& args)
    : AnimationKeyCommand(effect, args.data(), args.size()) {}

AnimationKeyCommand::AnimationKeyCommand(AnimationKeyCommandEffect effect,
                                         std::initializer_list<float> args)
    : AnimationKeyCommand(effect, args.begin(), args.size()) {}

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
