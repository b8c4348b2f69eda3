#include "Text.h"

#include <gtest/gtest.h>

using namespace Kiv;

namespace {

TEST(EditTest, KeysAreBuiltFromEffectsOrRefused) {
    Animation it;
    EXPECT_NE(refusal([&] { it.pushBackInLayer("b", Hold, {}, 2); }), "");
    it.insertInLayer("a", Transition, {0, 60}, 6, 1);
    it.pushBackInLayer("a", Hold, make_vector(3), 5);
    it.insertInLayer("a", NoValue, std::vector<float>(), 4, 4);
    EXPECT_EQ(it, animation("a: W:1 T0,30:3 N:4 T30,60:3 H3:5"));
}

TEST(EditTest, LoopsUpToTheLimit) {
    const Animation bodiless = animation("a: T0,30:3 | 2 1");
    EXPECT_EQ(bodiless.loop(4294967295, false, false), bodiless);
    Animation some = animation("a: H1:1 H2:1073741823");
    for (const bool intro : {true, false}) {
        some.introSize = intro, some.outroSize = !intro;
        EXPECT_EQ(some.loop(2, false, false).durationInFrames(), 2147483647U);
        EXPECT_EQ(refusal([&] { some.loop(2, intro, !intro); }),
                  "Animation looped 2 times would last 2147483648 frames but should last less than "
                  "2147483648");
    }
    some.fps = 40;
    Animation::defaultFps = 0;
    EXPECT_EQ(some.loop(1, false, false), some);
    EXPECT_EQ(refusal([&] { some.loop(2, false, false); }), "FPS should be strictly higher than 0");
    Animation::defaultFps = 25;
}

TEST(EditTest, MarksAreMadeByTheFirstLayerThatReachesTheBoundary) {
    // An animation, a frame, and the piece before that.
    const std::tuple<const char*, unsigned int, const char*> rows[] = {
        {"a: H1:8; b: H2:10 | 0 3", 9, "a: H1:8; b: H2:9 | 0 1"},
        {"a: H1:10; b: H2:8 | 0 3", 9, "a: H1:9; b: H2:8 | 0 2"},
        {"a: H1:4; b: H2:10 | 7 0", 6, "a: H1:4; b: H2:6 | 0 0"},
        {"a: ; b: H2:10 | 0 10", 6, "a: ; b: H2:6 | 0 0"},
    };
    for (const auto& [text, frame, first] : rows)
        EXPECT_EQ(animation(text).splitAt(frame, true, true)[0], animation(first)) << text;
}

TEST(EditTest, PiecesKeepTheFrameRate) {
    Animation it = animation("a: H1:4 | 2 1");
    it.fps = 40;
    EXPECT_EQ(it.splitAt(0, true, true)[1].fps, 40);
    EXPECT_EQ(animation("a: W:4294967295").splitEach(1U << 31, true, true).size(), 3U);
    EXPECT_EQ(refusal([&] { it.splitEach(0, true, true); }),
              "Could not split Animation each 0 frame: This number should be strictly higher than "
              "0");
    it.fps = 0;
    EXPECT_EQ(refusal([&] { it.splitAt(2, true, true); }), "FPS should be strictly higher than 0");
}

} // namespace
