#pragma once

#include <animationmodel/AnimationKeyArgs.h>
#include <animationmodel/export.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iosfwd>
#include <string>
#include <vector>

namespace Kiv {

/// What a layer does while one key lasts. Any other 32-bit value may be held too: it takes no
/// arguments and is treated like `NoValue`.
enum AnimationKeyCommandEffect : std::int32_t {
    Transition = 0, ///< Two arguments: the value moves linearly from the first to the second.
    Hold = 1,       ///< One argument: the value for the whole key.
    NoValue = 2,    ///< No argument: the key carries no value.
    Wait = 3,       ///< No argument: filler, through which an overridden layer shows.
};

/// An effect with its arguments: what a layer does, without how long.
///
/// A small value: it is copied by a plain memory copy, and copies share nothing. The number of
/// arguments is checked on construction only.
class ANIMATIONMODEL_EXPORT AnimationKeyCommand {
public:
    /// A command without arguments. Throws std::invalid_argument for an effect that expects some:
    /// `Transition` and `Hold`.
    AnimationKeyCommand(AnimationKeyCommandEffect effect);

    /// A command with a copy of `args`. Throws std::invalid_argument unless their number is the one
    /// that `effect` expects: 2 for `Transition`, 1 for `Hold`, 0 for all others.
    AnimationKeyCommand(AnimationKeyCommandEffect effect, const std::vector<float>& args);
    /// The same with arguments in braces; `{}` stands for no arguments. Allocates nothing.
    AnimationKeyCommand(AnimationKeyCommandEffect effect, std::initializer_list<float> args);

    /// Effect and arguments, as these compare.
    friend bool operator==(const AnimationKeyCommand& a, const AnimationKeyCommand& b) noexcept {
        return a.effect == b.effect && a.args == b.args;
    }
    friend bool operator!=(const AnimationKeyCommand& a, const AnimationKeyCommand& b) noexcept {
        return !(a == b);
    }

    AnimationKeyCommandEffect effect; ///< What the layer does.
    AnimationKeyArgs args;            ///< The values for it.

protected:
    /// Throws std::invalid_argument unless `effect` (the one passed, not the field) expects `given`
    /// arguments.
    void _checkRightNumberOfArgs(AnimationKeyCommandEffect effect, unsigned int given) const;

private:
    friend class AnimationKey;
    AnimationKeyCommand() = default; // trivial: see AnimationKey
    AnimationKeyCommand(AnimationKeyCommandEffect effect, const float* args, std::size_t given);
};

/// The shortest text that reads back as `value`, both as a float and as a double that is rounded to
/// one: "0.1", "1e+05", "-0", "nan", "-inf". The same in every locale.
[[nodiscard]] ANIMATIONMODEL_EXPORT std::string shortest_text(float value);

/// Writes "Transition (0, 0.1)", "Wait" or, for an effect without a name, "Effect 7": the same in
/// every locale, floats as `shortest_text` does.
ANIMATIONMODEL_EXPORT std::ostream& operator<<(std::ostream& out,
                                               const AnimationKeyCommand& command);

/// The arguments of a `Hold`: exactly {a}.
[[nodiscard]] ANIMATIONMODEL_EXPORT std::vector<float> make_vector(float a);

/// The arguments of a `Transition` from `a` to `b`: exactly {a, b}.
[[nodiscard]] ANIMATIONMODEL_EXPORT std::vector<float> make_vector(float a, float b);

} // namespace Kiv
