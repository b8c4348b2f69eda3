#include "Text.h"

#include <gtest/gtest.h>

using namespace Kiv;

namespace {

TEST(EditTest, WaitsShowTheLayerThroughAndARunMovesTheKeyItEndsInside) {
    const struct {
        const char* keys;
        unsigned int frame;
        const char* expected;
    } rows[] = {
        {"H9:3", 4, "H1:4 H9:3 T0,60:6 H3:5"},
        {"H9:1 W:2 H8:3", 4, "H1:4 H9:1 T0,20:2 H8:3 T20,60:4 H3:5"},
        {"H9:2 W:1 H8:2", 17, "H1:4 T0,60:6 H3:5 W:2 H9:2 W:1 H8:2"},
    };
    for (const auto& [over, frame, expected] : rows) {
        Animation it = animation("a: H1:4 T0,60:6 H3:5");
        it.overrideLayerWith("a", keys(over), frame);
        EXPECT_EQ(show(it.layers["a"]), expected) << over << " at " << frame;
    }
}

TEST(EditTest, SizesKeepInStepWithTheFrames) {
    const std::pair<unsigned int, const char*> rows[] = {{0, "a: H9:5 T0,100:10 | 7 3"},
                                                         {2, "a: T0,20:2 H9:5 T20,100:8 | 2 3"},
                                                         {7, "a: T0,70:7 H9:5 T70,100:3 | 2 3"},
                                                         {8, "a: T0,80:8 H9:5 T80,100:2 | 2 8"},
                                                         {10, "a: T0,100:10 H9:5 | 2 8"}};
    for (const auto& [frame, expected] : rows) {
        Animation it = animation("a: T0,100:10 | 2 3");
        it.insert(animation("a: H9:5"), frame);
        EXPECT_EQ(show(it), expected);
    }
    Animation it = animation("a: T0,100:10 | 2 3");
    it.pushBack(animation("a: T0,50:5 | 1 2"), /*keepOutro=*/false, /*keepIntro=*/false);
    it.introSize = 12;
    it.remove(11, 3); // at the end there is nothing to take away, not even from the intro
    it.insertInLayer("b", {}, 7);
    it.pushBackInLayer("c", {});
    EXPECT_EQ(show(it), "a: T0,70:7 T10,50:4; c:  | 12 2");
}

TEST(EditTest, CutsIntroBodyAndOutroBehindWhatTheMapsHold) {
    LayerMap all = animation("a: N:1; x: N:2").layers;
    animation("a: T0,60:6 | 2 1").introBodyOutroLayers(all, all, all);
    EXPECT_EQ(show(all), "a: N:1 T0,20:2 T20,50:3 T50,60:1; x: N:2");
    for (int own = 0; own < 3; ++own) { // one of the maps is the animation's
        Animation it = animation("a: H1:4 N:2 W:2 | 1 1");
        it.layers["a"].shrink_to_fit();
        LayerMap maps[3];
        it.introBodyOutroLayers(own == 0 ? it.layers : maps[0], own == 1 ? it.layers : maps[1],
                                own == 2 ? it.layers : maps[2]);
        const char* added[] = {"H1:1", "H1:3 N:2 W:1", "W:1"};
        EXPECT_EQ(show(it.layers), "a: H1:4 N:2 W:2 " + std::string(added[own]));
    }
}

TEST(EditTest, LoopsTheBody) {
    const Animation it = animation("a: T0,60:6; b: N:1 | 2 1");
    EXPECT_EQ(show(it.loop(2, true, true)), "a: T0,20:2 T20,50:3 T50,60:1 T0,20:2 T20,60:4; "
                                            "b: N:1 W:1 W:3 W:1 N:1 W:1 W:4 | 2 1");
    const Animation bodiless = animation("a: T0,30:3 | 2 1");
    EXPECT_EQ(bodiless.loop(4294967295, false, false), bodiless);

    Animation some = animation("a: H1:1 H2:1073741823 | 1 0");
    EXPECT_EQ(some.loop(2, false, false).durationInFrames(), 2147483647U);
    EXPECT_EQ(refusal([&] { some.loop(2, true, false); }),
              "Animation looped 2 times would last 2147483648 frames but should last less than "
              "2147483648");
    EXPECT_NE(refusal([&] { animation("a: H1:1073741824 | 0 1").loop(2, false, true); }), "");
    some.fps = 40;
    EXPECT_EQ(some.loop(2, false, false).fps, 40);
    const DefaultFps none(0);
    EXPECT_EQ(some.loop(1, false, false).fps, 40);
    EXPECT_EQ(refusal([&] { some.loop(2, false, false); }), "FPS should be strictly higher than 0");
    EXPECT_EQ(Animation(25).loop(2, false, false), Animation(25));
}

TEST(EditTest, SplitsIntoMarkedPieces) {
    Animation it = animation("a: H1:4 T10,20:4 H3:2 | 2 3");
    it.fps = 40;
    for (const Animation& piece : it.splitEach(4, true, true))
        EXPECT_EQ(piece.fps, 40);
    EXPECT_EQ(it.splitAt(0, true, true), it.splitAt({0}, true, true));
    EXPECT_EQ(animation("a: W:4294967295").splitEach(2147483648, true, true).size(), 3U);
    EXPECT_EQ(refusal([&] { it.splitEach(0, true, true); }),
              "Could not split Animation each 0 frame: This number should be strictly higher than "
              "0");
    it.fps = 0;
    EXPECT_EQ(refusal([&] { it.splitAt(2, true, true); }), "FPS should be strictly higher than 0");
}

} // namespace
