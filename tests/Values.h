#pragma once

#include <animationmodel/AnimationKey.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <string>

// The bits of values at cuts, which no machine and no way of compiling may change.
namespace Kiv {

/// Goes on from `sum` with the bits of all arguments.
inline std::uint32_t hash(const KeyVector& keys, std::uint32_t sum) {
    for (const AnimationKey& key : keys)
        for (const float value : key.command.args) {
            std::uint32_t bits = 7; // a NaN's bits are the processor's affair
            if (value == value)
                std::memcpy(&bits, &value, sizeof bits); // not every library has std::bit_cast
            sum = (sum ^ bits) * 16777619U;
        }
    return sum;
}

inline float any_float(std::mt19937& random, unsigned int row) {
    const auto any = static_cast<std::uint32_t>(random());
    if (row % 3 == 0)
        return static_cast<float>(any % 200001U) / 1000 - 100;
    const std::uint32_t bits = any & (row % 3 == 1 ? ~0x00800000U : 0x80FFFFFFU); // or subnormal
    float value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

/// A row for each Transition: its duration, and hashes of the values at a hundred cuts and of up to
/// a thousand pieces.
inline std::string table_of_values() {
    std::string rows;
    std::mt19937 random;
    for (unsigned int row = 0; row < 124; ++row) {
        const float from = any_float(random, row), to = any_float(random, row);
        const auto duration = static_cast<unsigned int>(random() % (2U << row % 31) + 1);
        const AnimationKey key({Transition, {from, to}}, duration);
        std::uint32_t cuts = 0;
        for (int cut = 0; cut < 100; ++cut)
            cuts = hash(key.splitAt(static_cast<unsigned int>(random() % duration)), cuts);
        const std::uint32_t pieces = hash(key.splitEach(duration / 1000 + 1), 0);
        rows += std::to_string(duration) + ' ' + std::to_string(cuts) + ' ' +
                std::to_string(pieces) + '\n';
    }
    return rows;
}

} // namespace Kiv
