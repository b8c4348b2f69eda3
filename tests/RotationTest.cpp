#include "Text.h"

#include <animationmodel/Rotation.h>
#include <gtest/gtest.h>

using namespace Kiv;

namespace {

TEST(RotationTest, TravelsTwiceAroundTheRing) {
    const Rotation some(1, 0, 2, 3, 1);
    std::string expected;
    for (int i = 0; i < 8; ++i) {
        expected += (i > 0 ? "; " : "") + ("FaceLed" + std::to_string(i)) + ":";
        expected += i > 0 ? " H0:" + std::to_string(i) : "";
        expected += " T0,1:2 T1,0:3 H0:3 T0,1:2 T1,0:3";
        expected += i < 7 ? " H0:" + std::to_string(7 - i) : "";
    }
    EXPECT_EQ(show(some), expected + " | 8 4");
    EXPECT_EQ(some.fps, 25);
    EXPECT_EQ(some.fallDuration, 3U);
    EXPECT_EQ(Rotation(some), some);
}

TEST(RotationTest, LastsAsLongAsItsPulsesAndSteps) {
    const struct {
        unsigned int rise, fall, step, duration, outro;
        const char* last; ///< The keys of the last layer.
    } rows[] = {
        {5, 5, 1, 27, 11, "H2:7 T2,-1:5 T-1,2:5 T2,-1:5 T-1,2:5"},
        {4, 4, 1, 23, 7, "H2:7 T2,-1:4 T-1,2:4 T2,-1:4 T-1,2:4"},
        {4, 3, 1, 22, 6, "H2:7 T2,-1:4 T-1,2:3 H2:1 T2,-1:4 T-1,2:3"},
        {1, 3, 4, 64, 0, "H2:28 T2,-1:1 T-1,2:3 H2:28 T2,-1:1 T-1,2:3"},
        {1, 1, 4, 62, 0, "H2:28 T2,-1:1 T-1,2:1 H2:30 T2,-1:1 T-1,2:1"},
    };
    for (const auto& [rise, fall, step, duration, outro, last] : rows) {
        const Rotation some(-1, 2, rise, fall, step);
        for (const auto& [name, layer] : some.layers)
            EXPECT_EQ(Animation::durationInFramesOf(layer), duration) << name;
        EXPECT_EQ(show(some.layer("FaceLed7")), last);
        EXPECT_EQ(some.introSize, 8 * step);
        EXPECT_EQ(some.outroSize, outro);
    }
}

TEST(RotationTest, RefusesNoDurationAndTooLongOnes) {
    const std::string empty = "Duration of AnimationKeyCommand must be > 0";
    EXPECT_EQ(refusal([] { Rotation(1, 0, 0, 3, 1); }), empty);
    EXPECT_EQ(refusal([] { Rotation(1, 0, 2, 0, 1); }), empty);
    EXPECT_EQ(refusal([] { Rotation(1, 0, 2, 3, 0); }), empty);
    EXPECT_EQ(Rotation(1, 0, 1, 1073741819, 1).durationInFrames(), 2147483647U);
    EXPECT_EQ(refusal([] { Rotation(1, 0, 1, 1073741820, 1); }),
              "Rotation would last 2147483649 frames but should last less than 2147483648");
    EXPECT_NE(refusal([] { Rotation(1, 0, 4294967295, 4294967295, 4294967295); }), "");
    const DefaultFps none(0);
    EXPECT_EQ(refusal([] { Rotation(1, 0, 2, 3, 1); }), "FPS should be strictly higher than 0");
}

} // namespace
