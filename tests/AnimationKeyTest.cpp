#include "Members.h"
#include "Text.h"

#include <gtest/gtest.h>

using namespace Kiv;

namespace {

TEST(AnimationKeyTest, CommandsExpectSoManyArguments) {
    for (const int number : {-1, 0, 1, 2, 3, 4})
        for (const std::size_t given : {0U, 1U, 2U, 3U}) {
            const auto effect = static_cast<AnimationKeyCommandEffect>(number);
            const std::size_t expected = effect == Transition ? 2 : effect == Hold ? 1 : 0;
            std::ostringstream refused;
            if (given != expected)
                refused << "Could not set attributes of AnimationKeyCommand: the number of "
                           "arguments does not correspond to the command ("
                        << given << " arguments given but " << expected << " expected for command "
                        << number << ")";
            const std::vector<float> args(given, 1.5F);
            AnimationKeyCommand command = Wait;
            EXPECT_EQ(refusal([&] { command = {effect, args}; }), refused.str());
            if (given == expected) {
                EXPECT_EQ(command.effect, effect);
                EXPECT_EQ(command.args, args);
            }
            if (given == 0) {
                EXPECT_EQ(refusal([&] { command = effect; }), refused.str());
            }
        }
}

TEST(AnimationKeyTest, SplitsAtAFrameAndEachSoManyFrames) {
    const struct {
        const char* key;
        unsigned int frame;
        const char* cutThere;
        const char* cutEach; ///< So many frames.
    } rows[] = {
        {"T0,100:10", 3, "T0,30:3 T30,100:7", "T0,30:3 T30,60:3 T60,90:3 T90,100:1"},
        {"T0,9:9", 9, "T0,9:9", "T0,9:9"},
        {"E-5:3", 1, "E-5:1 E-5:2", "E-5:1 E-5:1 E-5:1"},
        {"W:4294967295", 4294967294, "W:4294967294 W:1", "W:4294967294 W:1"},
        // Each value depends on the order of the operations, or on none being fused.
        {"T1,0:3", 1, "T1,0x.aaaaaap0:1 T0x.aaaaaap0,0:2",
         "T1,0x.aaaaaap0:1 T0x.aaaaaap0,0.33333328:1 T0.33333328,0:1"},
        {"T0,1:10", 3, "T0,0.3:3 T0.3,1:7",
         "T0,0.3:3 T0.3,0.6:3 T0.6,0.900000036:3 T0.900000036,1:1"},
    };
    for (const auto& row : rows) {
        const AnimationKey key = keys(row.key)[0];
        EXPECT_EQ(key.splitAt(row.frame), keys(row.cutThere)) << row.key;
        EXPECT_EQ(key.splitEach(row.frame), keys(row.cutEach)) << row.key;
    }
    EXPECT_EQ(AnimationKey(Wait, 5).splitAt(0), keys("W:5"));
}

TEST(AnimationKeyTest, RefusesNoFrames) {
    const AnimationKey key(Wait, 5);
    EXPECT_EQ(refusal([&] { return key.splitEach(0); }),
              "Could not split AnimationKey each 0 frame: This "
              "number should be strictly higher than 0");
    EXPECT_EQ(refusal([] { AnimationKey(Wait, 0); }),
              "Duration of AnimationKeyCommand must be > 0");
}

/// Fields are open: what no constructor would build is cut all the same.
TEST(AnimationKeyTest, CutsAnyKey) {
    AnimationKey key(Wait, 5);
    key.command.effect = Transition;
    const KeyVector pieces = key.splitAt(3);
    ASSERT_EQ(pieces.size(), 2U);
    EXPECT_EQ(pieces[1].command, key.command);
    EXPECT_EQ(pieces[1].duration, 2U);
    EXPECT_EQ(key.splitEach(3), pieces);
    key.duration = 0;
    EXPECT_EQ(key.splitEach(1), KeyVector{key});
}

TEST(AnimationKeyTest, EveryMemberIsAPartOfTheValue) {
    expectEveryMember<AnimationKey>({Wait, 5},
                                    {[](AnimationKey& key) { key.command.effect = NoValue; },
                                     [](AnimationKey& key) { key.duration = 6; },
                                     [](AnimationKey& key) { key.command.args = {3}; }});
    expectEveryMember<AnimationKeyArgs>({1, 2}, {[](AnimationKeyArgs& args) { args[0] = 3; },
                                                 [](AnimationKeyArgs& args) { args[1] = 3; },
                                                 [](AnimationKeyArgs& args) { args.pop_back(); }});
}

TEST(AnimationKeyTest, ArgumentsAreInLexicographicOrder) {
    const AnimationKeyArgs ordered[] = {{}, {1}, {1, 2}, {1, 3}, {2}};
    for (std::size_t i = 1; i < std::size(ordered); ++i)
        EXPECT_LT(ordered[i - 1], ordered[i]) << i;
}

TEST(AnimationKeyTest, ArgumentsAreTwoAtMost) {
    AnimationKeyArgs args = make_vector(3, 4);
    EXPECT_THROW(args.push_back(1), std::bad_alloc);
    EXPECT_THROW((args = {1, 2, 3}), std::bad_alloc);
    EXPECT_THROW(args.at(2), std::out_of_range);
    EXPECT_EQ(args, make_vector(3, 4));
}

} // namespace
