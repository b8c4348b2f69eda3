#include "Text.h"

#include <animationmodel/Rotation.h>
#include <gtest/gtest.h>

using namespace Kiv;

namespace {

TEST(RotationTest, TravelsTwiceAroundTheRing) {
    const std::tuple<unsigned int, unsigned int, unsigned int, unsigned int, const char*> rows[] = {
        {4, 3, 1, 6, "T2,-1:4 T-1,2:3 H2:1 T2,-1:4 T-1,2:3"},
        {4, 4, 1, 7, "T2,-1:4 T-1,2:4 T2,-1:4 T-1,2:4"},
        {5, 5, 1, 11, "T2,-1:5 T-1,2:5 T2,-1:5 T-1,2:5"},
        {1, 1, 4, 0, "T2,-1:1 T-1,2:1 H2:30 T2,-1:1 T-1,2:1"}};
    for (const auto& [rise, fall, step, outro, pulses] : rows) {
        const Rotation it(-1, 2, rise, fall, step);
        for (unsigned int i = 0; i < 8; ++i) {
            const std::string before = i > 0 ? "H2:" + std::to_string(i * step) : "",
                              behind = i < 7 ? "H2:" + std::to_string((7 - i) * step) : "";
            EXPECT_EQ(it.layer("FaceLed" + std::to_string(i)),
                      keys(before + ' ' + pulses + ' ' + behind));
        }
        EXPECT_TRUE(it.layers.size() == 8 && it.introSize == 8 * step && it.outroSize == outro);
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
    const Rotation twice = Twice(), once(1, 0, 1, 1, 1);
    EXPECT_EQ(twice.layer("FaceLed1"), keys("H0:1 H0:1 T0,1:1 T1,0:1 H0:6 T0,1:1 T1,0:1 H0:6 "
                                            "T0,1:1 T1,0:1 H0:6 T0,1:1 T1,0:1 H0:6"));
    EXPECT_TRUE(twice.outroSize == 34 - 16 && twice != once && Rotation(once) == once &&
                Rotation(2, 0, 1, 1, 1) != once);
}

} // namespace
