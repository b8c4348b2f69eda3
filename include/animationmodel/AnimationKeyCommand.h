#pragma once

#include <animationmodel/export.h>

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstdint>
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

/// The arguments of one command: a row of 0 to 2 floats, kept inside the command and read like a
/// `std::vector<float>`. The elements can be assigned, and one row to another; a length is chosen
/// only by constructing a command. Copies share nothing.
class AnimationKeyArgs {
public:
    /// @{
    /// As in `std::vector<float>`.
    using value_type = float;
    using size_type = std::size_t;
    using iterator = float*;
    using const_iterator = const float*;

    size_type size() const noexcept { return count; }
    bool empty() const noexcept { return count == 0; }

    float& operator[](size_type index) {
        assert(index < size());
        return values[index];
    }
    const float& operator[](size_type index) const {
        assert(index < size());
        return values[index];
    }

    float* data() noexcept { return values; }
    const float* data() const noexcept { return values; }
    iterator begin() noexcept { return values; }
    const_iterator begin() const noexcept { return values; }
    iterator end() noexcept { return values + count; }
    const_iterator end() const noexcept { return values + count; }
    /// @}

    /// The arguments as a vector of their own.
    operator std::vector<float>() const { return std::vector<float>(begin(), end()); }

    friend bool operator==(const AnimationKeyArgs& a, const AnimationKeyArgs& b) noexcept {
        return std::equal(a.begin(), a.end(), b.begin(), b.end());
    }
    friend bool operator==(const AnimationKeyArgs& a, const std::vector<float>& b) noexcept {
        return std::equal(a.begin(), a.end(), b.begin(), b.end());
    }

private:
    friend class AnimationKeyCommand;
    AnimationKeyArgs() = default; // trivial: see AnimationKey

    std::uint32_t count;
    float values[2];
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

    /// Floats compare by value: a NaN differs from itself, and 0 equals -0.
    friend bool operator==(const AnimationKeyCommand&, const AnimationKeyCommand&) = default;

    AnimationKeyCommandEffect effect; ///< What the layer does.
    AnimationKeyArgs args;            ///< The values for it.

protected:
    /// Throws std::invalid_argument unless `effect` (the one passed, not the field) expects `given`
    /// arguments.
    void _checkRightNumberOfArgs(AnimationKeyCommandEffect effect, unsigned int given) const;

private:
    friend class AnimationKey;
    AnimationKeyCommand() = default; // trivial: see AnimationKey
};

/// The arguments of a `Hold`: exactly {a}.
ANIMATIONMODEL_EXPORT std::vector<float> make_vector(float a);

/// The arguments of a `Transition` from `a` to `b`: exactly {a, b}.
ANIMATIONMODEL_EXPORT std::vector<float> make_vector(float a, float b);

} // namespace Kiv
