#include <animationmodel/AnimationKey.h>

#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <random>
#include <sstream>

using namespace Kiv;

namespace {

// Some standard libraries have no std::bit_cast yet.
float number(std::mt19937& random, unsigned int row) {
    const auto any = static_cast<std::uint32_t>(random());
    if (row % 3 == 0)
        return static_cast<float>(any % 200001U) / 1000 - 100;
    const std::uint32_t bits = any & (row % 3 == 1 ? ~0x00800000U : 0x80FFFFFFU); // or subnormal
    float value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

std::uint32_t hash(const KeyVector& pieces, std::uint32_t sum) {
    for (const AnimationKey& piece : pieces)
        for (const float value : piece.command.args) {
            std::uint32_t bits = 7; // a NaN's bits are the processor's affair
            if (value == value)
                std::memcpy(&bits, &value, sizeof bits);
            sum = (sum ^ bits) * 16777619U;
        }
    return sum;
}

/// A row for each Transition: its duration, and hashes of the values at a hundred cuts and of up to
/// a thousand pieces.
TEST(ValuesTest, AreTheSameBitsOnEveryMachine) {
    std::ostringstream rows;
    std::mt19937 random;
    for (unsigned int row = 0; row < 124; ++row) {
        const float from = number(random, row), to = number(random, row);
        const auto duration = static_cast<unsigned int>(random() % (2U << row % 31) + 1);
        const AnimationKey key({Transition, {from, to}}, duration);
        std::uint32_t cuts = 0;
        for (int cut = 0; cut < 100; ++cut)
            cuts = hash(key.splitAt(static_cast<unsigned int>(random() % duration)), cuts);
        rows << duration << ' ' << cuts << ' ' << hash(key.splitEach(duration / 1000 + 1), 0)
             << '\n';
    }
    std::ifstream expected(KIV_VALUES, std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(expected), {}), rows.str());
}

} // namespace
