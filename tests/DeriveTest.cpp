#include "Text.h"

#include <gtest/gtest.h>

using namespace Kiv;

namespace {

TEST(IntroBodyOutroTest, CutsEveryLayerAtTheSameTwoFrames) {
    const struct {
        const char* animation;
        const char *intro, *body, *outro;
    } rows[] = {
        {"a: H5:2 T10,20:4 H7:4; b: W:6; c:  | 3 2",
         "a: H5:2 T10,12.5:1; b: W:3; c: ", "a: T12.5,20:3 H7:2; b: W:3; c: ", "a: H7:2; b: ; c: "},
        {"a: H5:2 T10,20:4 H7:4 | 2 4", "a: H5:2", "a: T10,20:4", "a: H7:4"},
        {"a: H5:2 H6:2 | 0 0", "a: ", "a: H5:2 H6:2", "a: "},
        {"a: T0,100:10 | 3 7", "a: T0,30:3", "a: ", "a: T30,100:7"},
        {"a: T0,100:10 | 1 1", "a: T0,10:1", "a: T10,90:8", "a: T90,100:1"},
        {"a: H5:2 T10,20:4 | 5 4", "a: H5:2 T10,17.5:3", "a: ", "a: T17.5,20:1"},
        {"a: H5:2 T10,20:4 | 3 9", "a: H5:2 T10,12.5:1", "a: ", "a: T12.5,20:3"},
        {" | 0 0", "", "", ""},
    };
    for (const auto& row : rows) {
        const Animation some = animation(row.animation);
        LayerMap intro, body, outro;
        some.introBodyOutroLayers(intro, body, outro);
        EXPECT_EQ(show(intro), row.intro) << row.animation;
        EXPECT_EQ(show(body), row.body) << row.animation;
        EXPECT_EQ(show(outro), row.outro) << row.animation;
        EXPECT_EQ(show(some), row.animation);
    }
}

TEST(IntroBodyOutroTest, AppendsToWhatTheMapsHold) {
    LayerMap all = animation("a: N:1; x: N:2").layers;
    animation("a: H5:6 | 2 1").introBodyOutroLayers(all, all, all);
    EXPECT_EQ(show(all), "a: N:1 H5:2 H5:3 H5:1; x: N:2");
}

TEST(LoopTest, RepeatsTheBody) {
    const char* three = "a: H1:2 T0,30:3 H3:1 | 2 1";
    const char* one = "a: T0,60:6; b: N:1 | 2 1";
    const struct {
        const char* animation;
        unsigned int count;
        bool repeatIntro, repeatOutro;
        const char* expected;
    } rows[] = {
        {three, 0, true, true, "a: H1:2 H3:1 | 2 1"},
        {three, 1, true, true, three},
        {three, 3, false, false, "a: H1:2 T0,30:3 T0,30:3 T0,30:3 H3:1 | 2 1"},
        {three, 2, true, false, "a: H1:2 T0,30:3 H1:2 T0,30:3 H3:1 | 2 1"},
        {three, 2, false, true, "a: H1:2 T0,30:3 H3:1 T0,30:3 H3:1 | 2 1"},
        {three, 2, true, true, "a: H1:2 T0,30:3 H3:1 H1:2 T0,30:3 H3:1 | 2 1"},
        // Layers are filled, and the key across the intro's end is cut, but not at the outro.
        {one, 0, false, false, "a: T0,20:2 T50,60:1; b: N:1 W:1 W:1 | 2 1"},
        {one, 1, false, false, "a: T0,60:6; b: N:1 W:5 | 2 1"},
        {one, 2, true, true,
         "a: T0,20:2 T20,50:3 T50,60:1 T0,20:2 T20,60:4; b: N:1 W:1 W:3 W:1 N:1 W:1 W:4 | 2 1"},
        {"a: H1:2 H3:1 | 2 1", 3, true, true, "a: H1:2 H3:1 H1:2 H3:1 H1:2 H3:1 | 2 1"},
        {"a: T0,30:3 | 2 1", 3, false, false, "a: T0,30:3 | 2 1"},
        {"a: H1:3 | 3 0", 4294967295, false, true, "a: H1:3 | 3 0"},
        {"a: ; b:  | 0 0", 4294967295, true, true, "a: ; b:  | 0 0"},
    };
    for (const auto& row : rows) {
        Animation some = animation(row.animation);
        some.fps = 40;
        const Animation looped = some.loop(row.count, row.repeatIntro, row.repeatOutro);
        EXPECT_EQ(show(looped), row.expected)
            << row.animation << " " << row.count << row.repeatIntro << row.repeatOutro;
        EXPECT_EQ(looped.fps, 40);
        EXPECT_EQ(show(some), row.animation);
    }
}

TEST(LoopTest, RefusesWhatAnAnimationCannotBe) {
    Animation some = animation("a: H1:1 H2:1073741823 | 1 0");
    EXPECT_EQ(some.loop(2, false, false).durationInFrames(), 2147483647U);
    EXPECT_EQ(refusal([&] { some.loop(2, true, false); }),
              "Animation looped 2 times would last 2147483648 frames but should last less than "
              "2147483648");
    EXPECT_NE(refusal([&] { some.loop(4294967295, true, true); }), "");
    for (const unsigned int count : {0U, 1U, 2U})
        EXPECT_NE(refusal([&] { animation("a: H1:4 | 3 3").loop(count, false, false); }), "");
    const DefaultFps none(0);
    EXPECT_EQ(refusal([&] { some.loop(1, false, false); }), "");
    EXPECT_EQ(refusal([&] { some.loop(2, false, false); }), "FPS should be strictly higher than 0");
    EXPECT_EQ(refusal([&] {
                  Animation empty(25.0F);
                  empty.loop(2, false, false);
              }),
              "");
}

std::string showAll(const std::vector<Animation>& pieces) {
    std::string text;
    for (const Animation& piece : pieces)
        text += (text.empty() ? "" : " / ") + show(piece);
    return text;
}

TEST(SplitTest, CutsAndMarksThePieces) {
    const char* some = "a: H1:4 T10,20:4 H3:2 | 2 3";
    const char* uneven = "a: H1:8; b: N:10; c: W:4 | 0 3";
    const struct {
        const char* animation;
        std::set<unsigned int> frames;
        bool keepIntro, keepOutro;
        const char* pieces;
    } rows[] = {
        {some, {6}, true, true, "a: H1:4 T10,15:2 | 2 0 / a: T15,20:2 H3:2 | 0 0"},
        {some, {7}, true, true, "a: H1:4 T10,17.5:3 | 2 0 / a: T17.5,20:1 H3:2 | 0 0"},
        {some, {8}, true, true, "a: H1:4 T10,20:4 | 2 1 / a: H3:2 | 0 0"},
        {some, {8}, false, false, "a: H1:4 T10,20:4 | 0 0 / a: H3:2 | 0 0"},
        {some, {0}, true, true, "a:  | 0 0 / a: H1:4 T10,20:4 H3:2 | 0 0"},
        {some, {10}, true, true, "a: H1:4 T10,20:4 H3:2 | 2 3 / a:  | 0 0"},
        {some, {4294967295}, true, false, "a: H1:4 T10,20:4 H3:2 | 2 0 / a:  | 0 0"},
        {some, {}, true, true, "a: H1:4 T10,20:4 H3:2 | 0 0"},
        {some, {3, 8}, false, true, "a: H1:3 | 0 0 / a: H1:1 T10,20:4 | 0 1 / a: H3:2 | 0 0"},
        {some, {1, 3}, true, false, "a: H1:1 | 0 0 / a: H1:2 | 1 0 / a: H1:1 T10,20:4 H3:2 | 0 0"},
        {some,
         {5, 6},
         false,
         false,
         "a: H1:4 T10,12.5:1 | 0 0 / a: T12.5,15:1 | 0 0 / a: T15,20:2 H3:2 | 0 0"},
        {uneven, {9}, false, true, "a: H1:8; b: N:9; c: W:4 | 0 1 / a: ; b: N:1; c:  | 0 0"},
        {"a: H1:4; b: N:9 | 6 0",
         {5, 7},
         true,
         false,
         "a: H1:4; b: N:5 | 0 0 / a: ; b: N:2 | 1 0 / a: ; b: N:2 | 0 0"},
        {"a: H1:4 | 0 9", {1}, false, true, "a: H1:1 | 0 1 / a: H1:3 | 0 0"},
        {"a: ; b:  | 0 0", {3}, true, true, " | 0 0 /  | 0 0"},
    };
    for (const auto& row : rows) {
        Animation source = animation(row.animation);
        source.fps = 40;
        const auto pieces = source.splitAt(row.frames, row.keepIntro, row.keepOutro);
        EXPECT_EQ(showAll(pieces), row.pieces) << row.animation;
        EXPECT_EQ(pieces.back().fps, 40);
        EXPECT_EQ(show(source), row.animation);
        if (row.frames.size() == 1) {
            EXPECT_EQ(source.splitAt(*row.frames.begin(), row.keepIntro, row.keepOutro), pieces);
        }
    }
}

TEST(SplitTest, CutsEverySoManyFrames) {
    const Animation some = animation("a: H1:4 T10,20:4 H3:2 | 2 3");
    const struct {
        unsigned int step;
        std::set<unsigned int> frames;
    } rows[] = {{4, {0, 4, 8}}, {5, {0, 5, 10}}, {10, {0, 10}}, {11, {0}}, {4294967295, {0}}};
    for (const auto& [step, frames] : rows)
        EXPECT_EQ(some.splitEach(step, true, true), some.splitAt(frames, true, true)) << step;
    EXPECT_EQ(showAll(Animation().splitEach(3, true, true)), " | 0 0 /  | 0 0");
    EXPECT_EQ(animation("a: W:4294967295").splitEach(2147483648, true, true).size(), 3U);
}

TEST(SplitTest, RefusesNoStepAndNoFrameRate) {
    Animation some = animation("a: H1:4");
    EXPECT_EQ(refusal([&] { some.splitEach(0, true, true); }),
              "Could not split Animation each 0 frame: This number should be strictly higher than "
              "0");
    some.fps = 0;
    const std::string rate = "FPS should be strictly higher than 0";
    EXPECT_EQ(refusal([&] { some.splitAt(2, true, true); }), rate);
    EXPECT_EQ(refusal([&] { some.splitEach(2, true, true); }), rate);
}

} // namespace
