#include "Text.h"

#include <gtest/gtest.h>

using namespace Kiv;

namespace {

TEST(AnimationKeyTest, CommandsExpectSoManyArguments) {
    for (const int number : {-1, 0, 1, 2, 3, 4})
        for (const std::size_t given : {0U, 1U, 2U, 3U}) {
            const auto effect = static_cast<AnimationKeyCommandEffect>(number);
            const std::size_t expected = effect == Transition ? 2 : effect == Hold ? 1 : 0;
            std::ostringstream text;
            if (given != expected)
                text << "Could not set attributes of AnimationKeyCommand: the number of arguments "
                        "does not correspond to the command ("
                     << given << " arguments given but " << expected << " expected for command "
                     << number << ")";
            const std::vector<float> args(given, 1.5F);
            EXPECT_EQ(refusal([&] { EXPECT_EQ(AnimationKeyCommand(effect, args).args, args); }),
                      text.str());
            EXPECT_EQ(given > 0 || refusal([&] { AnimationKeyCommand one(effect); }) == text.str(),
                      true);
        }
}

TEST(AnimationKeyTest, SplitsAtAFrameAndEachSoManyFrames) {
    // The key, where it is cut, and what it becomes: cut there, and each so many frames.
    const std::tuple<const char*, unsigned int, const char*, const char*> rows[] = {
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
    for (const auto& [key, frame, at, each] : rows) {
        EXPECT_EQ(keys(key)[0].splitAt(frame), keys(at)) << key;
        EXPECT_EQ(keys(key)[0].splitEach(frame), keys(each)) << key;
    }
    AnimationKey key(Wait, 5);
    EXPECT_EQ(key.splitAt(0), keys("W:5"));
    EXPECT_EQ(refusal([&] { key.splitEach(0); }), "Could not split AnimationKey each 0 frame: This "
                                                  "number should be strictly higher than 0");
    EXPECT_EQ(refusal([&] { key = AnimationKey(Wait, 0); }),
              "Duration of AnimationKeyCommand must be > 0");
    key.command.effect = Transition; // fields are open; the key is cut all the same
    EXPECT_EQ(key.splitEach(3), key.splitAt(3));
    key.duration = 0;
    EXPECT_EQ(key.splitEach(1), key.splitAt(1));
}

TEST(AnimationKeyTest, ArgumentsAreTwoAtMost) {
    AnimationKeyArgs args = make_vector(3, 4);
    EXPECT_THROW(args.push_back(1), std::bad_alloc);
    EXPECT_THROW((args = {1, 2, 3}), std::bad_alloc);
    EXPECT_THROW(args.at(2), std::out_of_range);
    EXPECT_EQ(args, make_vector(3, 4));
}

} // namespace
