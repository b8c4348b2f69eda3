#include "Members.h"
#include "Program.h"
#include "Text.h"

#include <animationmodel/Rotation.h>
#include <gtest/gtest.h>

using namespace Kiv;

namespace {

TEST(RotationTest, TravelsTwiceAroundTheRing) {
    const struct {
        unsigned int rise;
        unsigned int fall;
        unsigned int step;
        unsigned int outro;
        const char* pulses;
    } rows[] = {
        {4, 3, 1, 6, "T2,-1:4 T-1,2:3 H2:1 T2,-1:4 T-1,2:3"},
        {4, 4, 1, 7, "T2,-1:4 T-1,2:4 T2,-1:4 T-1,2:4"},
        {5, 5, 1, 11, "T2,-1:5 T-1,2:5 T2,-1:5 T-1,2:5"},
        {1, 1, 4, 0, "T2,-1:1 T-1,2:1 H2:30 T2,-1:1 T-1,2:1"},
    };
    for (const auto& row : rows) {
        Animation expected;
        expected.introSize = 8 * row.step;
        expected.outroSize = row.outro;
        for (unsigned int i = 0; i < 8; ++i) {
            KeyVector& layer = expected.layers["FaceLed" + std::to_string(i)];
            layer = keys(row.pulses);
            if (i > 0)
                layer.insert(layer.begin(), AnimationKey({Hold, {2}}, i * row.step));
            if (i < 7)
                layer.push_back(AnimationKey({Hold, {2}}, (7 - i) * row.step));
        }
        const Animation rotation = Rotation(-1, 2, row.rise, row.fall, row.step);
        EXPECT_EQ(rotation, expected);
    }
}

TEST(RotationTest, RefusesNoDurationBeforeTooLongOnes) {
    const std::string empty = "Duration of AnimationKeyCommand must be > 0";
    EXPECT_EQ(refusal([] { Rotation(1, 0, 0, 4294967295, 1); }), empty);
    EXPECT_EQ(refusal([] { Rotation(1, 0, 4294967295, 0, 1); }), empty);
    EXPECT_EQ(refusal([] { Rotation(1, 0, 4294967295, 3, 0); }), empty);
    EXPECT_EQ(Rotation(1, 0, 1, 1073741819, 1).durationInFrames(), 2147483647U);
    EXPECT_EQ(refusal([] { Rotation(1, 0, 67108864, 67108864, 134217728); }),
              "Rotation would last 2147483648 frames but should last less than 2147483648");
}

TEST(RotationTest, KeysAreAppendedToLayersThatAreThere) {
    struct Twice : Rotation {
        Twice() : Rotation(1, 0, 1, 1, 1) { _init(); }
    };
    const Twice twice;
    EXPECT_EQ(twice.layer("FaceLed1"), keys("H0:1 H0:1 T0,1:1 T1,0:1 H0:6 T0,1:1 T1,0:1 H0:6 "
                                            "T0,1:1 T1,0:1 H0:6 T0,1:1 T1,0:1 H0:6"));
    EXPECT_EQ(twice.durationInFrames(), 34U);
    EXPECT_EQ(twice.outroSize, 34U - 16U);
}

TEST(RotationTest, EveryMemberIsAPartOfTheValue) {
    expectEveryMember<Rotation>(
        {1, 0, 2, 3, 1},
        {[](Rotation& it) { it.fps = 10; }, [](Rotation& it) { it.introSize = 1; },
         [](Rotation& it) { it.pulseValue = 7; }, [](Rotation& it) { it.restValue = 7; },
         [](Rotation& it) { it.riseDuration = 7; }, [](Rotation& it) { it.fallDuration = 7; },
         [](Rotation& it) { it.stepDuration = 7; }});
}

struct Open : Rotation {
    using Rotation::_init;
    using Rotation::Rotation;
};

TEST(RotationTest, RefusedPulsesChangeNothing) {
    Open it(1, 0, 1, 1, 1);
    it.stepDuration = 1 << 28;
    const Rotation before = it;
    EXPECT_NE(refusal([&] { it._init(); }), "");
    EXPECT_EQ(it, before);
}

TEST(RotationTest, RunningOutOfMemoryChangesNothing) {
    Open it(1, 0, 1, 1, 1);
    const Rotation before = it;
    for (unsigned long nth = 1; it == before; ++nth) {
        memory.failAt = nth;
        try {
            it._init();
        } catch (const std::bad_alloc&) {
            EXPECT_EQ(it, before) << "allocation " << nth;
        }
        memory.failAt = 0;
    }
    EXPECT_EQ(it.durationInFrames(), 34U);
}

} // namespace
