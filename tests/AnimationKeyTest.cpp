#include "Text.h"

#include <bit>
#include <gtest/gtest.h>
#include <limits>

using namespace Kiv;

namespace {

std::uint32_t bits(float value) {
    return std::bit_cast<std::uint32_t>(value);
}

TEST(AnimationKeyCommandTest, ExpectsSoManyArguments) {
    const std::string text = "Could not set attributes of AnimationKeyCommand: the number of "
                             "arguments does not correspond to the command (";
    const struct {
        int effect;
        std::size_t given;
        std::string refused;
    } rows[] = {
        {0, 2, ""},
        {0, 0, "0 arguments given but 2 expected for command 0)"},
        {0, 1, "1 arguments given but 2 expected for command 0)"},
        {1, 1, ""},
        {1, 2000, "2000 arguments given but 1 expected for command 1)"},
        {2, 0, ""},
        {2, 1, "1 arguments given but 0 expected for command 2)"},
        {3, 0, ""},
        {3, 2, "2 arguments given but 0 expected for command 3)"},
        {7, 0, ""},
        {7, 1, "1 arguments given but 0 expected for command 7)"},
        {-1, 0, ""},
        {-1, 1, "1 arguments given but 0 expected for command -1)"},
    };
    for (const auto& [effect, given, refused] : rows) {
        const auto command = static_cast<AnimationKeyCommandEffect>(effect);
        std::vector<float> args(given);
        for (std::size_t i = 0; i < given; ++i)
            args[i] = static_cast<float>(i) + 1;
        const std::string expected = refused.empty() ? "" : text + refused;
        EXPECT_EQ(refusal([&] { EXPECT_EQ(AnimationKeyCommand(command, args).args, args); }),
                  expected);
        if (given == 0) {
            EXPECT_EQ(refusal([&] { EXPECT_TRUE(AnimationKeyCommand(command).args.empty()); }),
                      expected);
        }
    }
}

TEST(AnimationKeyTest, LastsAtLeastOneFrame) {
    EXPECT_EQ(refusal([] { AnimationKey(Wait, 0); }),
              "Duration of AnimationKeyCommand must be > 0");
    EXPECT_EQ(AnimationKey(Wait, 4294967295).duration, 4294967295);
}

TEST(AnimationKeyTest, CopiesAreIndependent) {
    const AnimationKey key({Transition, make_vector(1, 2)}, 3);
    AnimationKey copy = key;
    EXPECT_EQ(copy, key);
    copy.command.args[1] = 9;
    EXPECT_NE(copy, key);
    EXPECT_EQ(std::vector<float>(key.command.args), make_vector(1, 2));
}

TEST(AnimationKeyTest, SplitAt) {
    const struct {
        const char* key;
        unsigned int frame;
        const char* pieces;
    } rows[] = {
        {"T0,100:10", 0, "T0,100:10"},
        {"T0,100:10", 1, "T0,10:1 T10,100:9"},
        {"T0,100:10", 3, "T0,30:3 T30,100:7"},
        {"T0,100:10", 9, "T0,90:9 T90,100:1"},
        {"T0,100:10", 10, "T0,100:10"},
        {"T0,100:10", 4294967295, "T0,100:10"},
        {"H7.5:10", 4, "H7.5:4 H7.5:6"},
        {"N:10", 4, "N:4 N:6"},
        {"W:10", 4, "W:4 W:6"},
        {"E-5:10", 4, "E-5:4 E-5:6"},
        {"H1:4294967295", 4294967294, "H1:4294967294 H1:1"},
    };
    for (const auto& [key, frame, pieces] : rows)
        EXPECT_EQ(show(keys(key)[0].splitAt(frame)), pieces) << key << " at " << frame;
}

TEST(AnimationKeyTest, SplitEach) {
    const struct {
        const char* key;
        unsigned int step;
        const char* pieces;
    } rows[] = {
        {"T0,100:10", 3, "T0,30:3 T30,60:3 T60,90:3 T90,100:1"},
        {"T0,100:10", 5, "T0,50:5 T50,100:5"},
        {"T0,100:10", 10, "T0,100:10"},
        {"T0,100:10", 11, "T0,100:10"},
        {"W:10", 4, "W:4 W:4 W:2"},
        {"H5:3", 1, "H5:1 H5:1 H5:1"},
        {"E9:5", 3, "E9:3 E9:2"},
        {"N:4294967295", 4294967294, "N:4294967294 N:1"},
    };
    for (const auto& [key, step, pieces] : rows)
        EXPECT_EQ(show(keys(key)[0].splitEach(step)), pieces) << key << " each " << step;
    EXPECT_EQ(refusal([] { AnimationKey(Wait, 3).splitEach(0); }),
              "Could not split AnimationKey each 0 frame: This number should be strictly higher "
              "than 0");
}

// Each value depends on the order of the operations, or on none being fused.
TEST(AnimationKeyTest, ValuesAtTheCutsAreExact) {
    const KeyVector third = keys("T1,0:3")[0].splitAt(1);
    EXPECT_EQ(bits(third[0].command.args[1]), 0x3F2AAAAAU);
    EXPECT_EQ(bits(third[1].command.args[0]), 0x3F2AAAAAU);
    EXPECT_EQ(bits(keys("T0.1,0.7:49")[0].splitAt(43)[0].command.args[1]), 0x3F206450U);

    const KeyVector tenths = keys("T0,1:10")[0].splitEach(3);
    EXPECT_EQ(tenths[1].command.args, make_vector(0.300000012F, 0.600000024F));
    EXPECT_EQ(tenths[2].command.args, make_vector(0.600000024F, 0.900000036F));
    EXPECT_EQ(tenths[3].command.args, make_vector(0.900000036F, 1));
    EXPECT_EQ(keys("T0,1:3")[0].splitEach(1)[1].command.args,
              make_vector(0.333333343F, 0.666666687F));
    EXPECT_EQ(bits(keys("T0.1,0.7:49")[0].splitEach(2)[3].command.args[0]), 0x3E31A1F6U);
}

// Fields are open, so a key may not be what its constructors allow; it is cut all the same.
TEST(AnimationKeyTest, SplitsWhatWasChangedByHand) {
    AnimationKey key(Wait, 5);
    key.command.effect = Transition;
    EXPECT_EQ(show(key.splitAt(2)), "T:2 T:3");
    EXPECT_EQ(show(key.splitEach(2)), "T:2 T:2 T:1");
    key.duration = 0;
    EXPECT_EQ(show(key.splitAt(1)), "T:0");
    EXPECT_EQ(show(key.splitEach(1)), "T:0");
}

} // namespace
