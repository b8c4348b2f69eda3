#include "Text.h"

#include <bit>
#include <gtest/gtest.h>

using namespace Kiv;

namespace {

TEST(AnimationKeyTest, CommandsExpectSoManyArguments) {
    const struct {
        int effect;
        std::size_t given;
        std::string refused;
    } rows[] = {{0, 2, ""},
                {0, 0, "0 arguments given but 2 expected for command 0)"},
                {1, 1, ""},
                {1, 2000, "2000 arguments given but 1 expected for command 1)"},
                {2, 1, "1 arguments given but 0 expected for command 2)"},
                {3, 0, ""},
                {3, 2, "2 arguments given but 0 expected for command 3)"},
                {4, 0, ""},
                {-1, 1, "1 arguments given but 0 expected for command -1)"}};
    for (const auto& [effect, given, refused] : rows) {
        const auto command = static_cast<AnimationKeyCommandEffect>(effect);
        const std::vector<float> args =
            given == 2 ? make_vector(3, 4) : std::vector<float>(given, 5);
        const std::string expected =
            refused.empty() ? ""
                            : "Could not set attributes of AnimationKeyCommand: the number of "
                              "arguments does not correspond to the command (" +
                                  refused;
        EXPECT_EQ(refusal([&] { EXPECT_EQ(AnimationKeyCommand(command, args).args, args); }),
                  expected);
        if (given == 0) {
            EXPECT_EQ(refusal([&] { EXPECT_TRUE(AnimationKeyCommand(command).args.empty()); }),
                      expected);
        }
    }
}

TEST(AnimationKeyTest, SplitsAtAFrameAndEachSoManyFrames) {
    const struct {
        const char* key;
        unsigned int frame;
        const char *at, *each;
    } rows[] = {
        {"T0,100:10", 3, "T0,30:3 T30,100:7", "T0,30:3 T30,60:3 T60,90:3 T90,100:1"},
        {"T0,100:10", 5, "T0,50:5 T50,100:5", "T0,50:5 T50,100:5"},
        {"T0,100:10", 10, "T0,100:10", "T0,100:10"},
        {"T0,100:10", 4294967295, "T0,100:10", "T0,100:10"},
        {"H7.5:10", 4, "H7.5:4 H7.5:6", "H7.5:4 H7.5:4 H7.5:2"},
        {"E-5:3", 1, "E-5:1 E-5:2", "E-5:1 E-5:1 E-5:1"},
        {"W:4294967295", 4294967294, "W:4294967294 W:1", "W:4294967294 W:1"},
    };
    for (const auto& [key, frame, at, each] : rows) {
        EXPECT_EQ(show(keys(key)[0].splitAt(frame)), at) << key;
        EXPECT_EQ(show(keys(key)[0].splitEach(frame)), each) << key;
    }
    AnimationKey key(Wait, 5);
    EXPECT_EQ(show(key.splitAt(0)), "W:5");
    EXPECT_EQ(refusal([&] { key.splitEach(0); }), "Could not split AnimationKey each 0 frame: This "
                                                  "number should be strictly higher than 0");
    EXPECT_EQ(refusal([&] { key = AnimationKey(Wait, 0); }),
              "Duration of AnimationKeyCommand must be > 0");
    key.command.effect = Transition; // fields are open; the key is cut all the same
    EXPECT_EQ(show(key.splitAt(2)) + " " + show(key.splitEach(2)), "T:2 T:3 T:2 T:2 T:1");
    key.duration = 0;
    EXPECT_EQ(show(key.splitAt(1)) + " " + show(key.splitEach(1)), "T:0 T:0");
}

// Each value depends on the order of the operations, or on none being fused.
TEST(AnimationKeyTest, ValuesAtTheCutsAreExact) {
    const auto bits = [](float value) { return std::bit_cast<std::uint32_t>(value); };
    const KeyVector third = keys("T1,0:3")[0].splitAt(1);
    EXPECT_EQ(bits(third[0].command.args[1]), 0x3F2AAAAAU);
    EXPECT_EQ(third[1].command.args, make_vector(third[0].command.args[1], 0));
    EXPECT_EQ(bits(keys("T0.1,0.7:49")[0].splitAt(43)[0].command.args[1]), 0x3F206450U);
    EXPECT_EQ(bits(keys("T0.1,0.7:49")[0].splitEach(2)[3].command.args[0]), 0x3E31A1F6U);
    const KeyVector tenths = keys("T0,1:10")[0].splitEach(3);
    EXPECT_EQ(tenths[2].command.args, make_vector(0.600000024F, 0.900000036F));
    EXPECT_EQ(tenths[3].command.args, make_vector(0.900000036F, 1));
}

} // namespace
