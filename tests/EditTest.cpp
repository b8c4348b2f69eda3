#include "Text.h"

#include <gtest/gtest.h>

using namespace Kiv;

namespace {

/// The line of a row, the call in it as text, and the call itself, to be made on an animation `it`.
#define EDIT(...) __LINE__, #__VA_ARGS__, [](Animation& it) { __VA_ARGS__; }

TEST(EditTest, ExamplesOfEveryEdit) {
    const struct {
        const char* before;
        int line;
        const char* call;
        void (*make)(Animation&);
        const char* after;
    } rows[] = {
        {"a: H1:4", EDIT(it.fillInLayer("a", 7)), "a: H1:4 W:3"},

        {"a: H1:4 H2:6", EDIT(it.replaceInLayer("a", 2, 5, keys("H9:3"))), "a: H1:2 H9:3 H2:3"},
        {"a: H1:4", EDIT(it.replaceInLayer("a", 3, 9, keys("H9:3")[0])), "a: H1:3 H9:3"},
        {"a: H1:4", EDIT(it.replaceInLayer("a", 1, 2, {{NoValue, 3}, {Wait, 2}})),
         "a: H1:1 N:3 W:2 H1:1"},
        {"a: H1:4", EDIT(it.replaceInLayer("a", 1, 2, Hold, {2}, 6)), "a: H1:1 H2:6 H1:1"},
        {"a: H1:4", EDIT(it.replaceInLayer("a", 1, 2, Hold, make_vector(2), 6)),
         "a: H1:1 H2:6 H1:1"},

        {"a: H1:4 H2:6", EDIT(it.insertInLayer("a", keys("H9:3"), 6)), "a: H1:4 H2:2 H9:3 H2:4"},
        {"a: H1:4", EDIT(it.insertInLayer("b", keys(""), 6)), "a: H1:4"},

        {"a: H1:4", EDIT(it.insertInLayer("a", keys("H9:3")[0], 1)), "a: H1:1 H9:3 H1:3"},
        {"a: H1:4", EDIT(it.insertInLayer("a", {{NoValue, 3}, {Wait, 2}}, 1)),
         "a: H1:1 N:3 W:2 H1:3"},
        {"a: H1:4", EDIT(it.insertInLayer("a", Transition, {0, 60}, 6, 3)), "a: H1:3 T0,60:6 H1:1"},
        {"a: H1:4", EDIT(it.insertInLayer("a", Hold, make_vector(2), 6, 3)), "a: H1:3 H2:6 H1:1"},

        {"a: H1:4", EDIT(it.pushBackInLayer("a", Hold, make_vector(3), 5)), "a: H1:4 H3:5"},
        {"a: H1:4", EDIT(it.pushBackInLayer("a", Transition, {3, 1}, 5)), "a: H1:4 T3,1:5"},
        {"a: H1:4", EDIT(it.pushBackInLayer("a", keys("H8:3")[0])), "a: H1:4 H8:3"},
        {"a: H1:4", EDIT(it.pushBackInLayer("a", {{NoValue, 3}, {Wait, 2}})), "a: H1:4 N:3 W:2"},
        {"a: H1:4", EDIT(it.pushBackInLayer("a", keys("H8:1 H9:3"))), "a: H1:4 H8:1 H9:3"},

        {"a: H1:4 H2:6", EDIT(it.removeInLayer("a", 2, 5)), "a: H1:2 H2:3"},

        // Wait shows the layer; what a run ends inside follows it whole; the layer is filled.
        {"a: H1:4 H2:6 H3:5", EDIT(it.overrideLayerWith("a", keys("W:4 H9:6"), 0)),
         "a: H1:4 H9:6 H3:5"},
        {"a: H1:4 H2:6", EDIT(it.overrideLayerWith("a", keys("H9:3"), 2)), "a: H1:2 H9:3 H2:6"},
        {"a: H1:4", EDIT(it.overrideLayerWith("a", keys("H9:3")[0], 2)), "a: H1:2 H9:3"},
        {"a: H1:4", EDIT(it.overrideLayerWith("a", {{NoValue, 1}, {Wait, 2}}, 2)),
         "a: H1:2 N:1 H1:2"},
        {"a: H1:4", EDIT(it.overrideLayerWith("a", Transition, {3, 1}, 5, 2)), "a: H1:2 T3,1:5"},
        {"a: H1:4", EDIT(it.overrideLayerWith("a", Hold, make_vector(3), 5, 2)), "a: H1:2 H3:5"},

        {"a: H1:6; b: H2:6", EDIT(it.replace(2, 3, animation("b: H9:2"))),
         "a: H1:2 W:2 H1:1; b: H2:2 H9:2 H2:1"},
        {"a: H1:8 | 4 4", EDIT(it.replace(3, 2, animation("a: H9:5"))), "a: H1:3 H9:5 H1:3 | 3 3"},

        {"a: H1:6", EDIT(it.insert(animation("b: H9:3"), 4)), "a: H1:4 W:3 H1:2; b: W:4 H9:3"},
        {"a: H1:6 | 2 3", EDIT(it.insert(animation("a: H9:3"), 1)), "a: H1:1 H9:3 H1:5 | 5 3"},

        {"a: H1:5 H2:3 | 2 3", EDIT(it.pushBack(animation("a: H8:2 H9:4 | 2 1"), false, false)),
         "a: H1:5 H9:4 | 2 1"},

        {"a: H1:3 H2:5 | 3 0", EDIT(it.remove(1, 4)), "a: H1:1 H2:3 | 1 0"},

        // The second layer is created and filled; its filler is cut, and the rest of that moved.
        {"a: H1:4 H2:4", EDIT(it.overrideLayersWith(animation("a: H9:4; b: H8:2"), 4)),
         "a: H1:4 H9:4; b: W:4 H8:2 W:4"},
    };
    for (const auto& row : rows) {
        Animation it = animation(row.before);
        row.make(it);
        EXPECT_EQ(it, animation(row.after))
            << "line " << row.line << ": " << row.call << " of " << row.before;
    }
}

TEST(EditTest, IntroBodyAndOutroAreAppendedToMaps) {
    LayerMap intro = animation("a: H9:1; z: H8:1").layers;
    LayerMap body;
    LayerMap outro;
    animation("a: H1:4 H2:6 | 3 2").introBodyOutroLayers(intro, body, outro);
    EXPECT_EQ(intro, animation("a: H9:1 H1:3; z: H8:1").layers);
    EXPECT_EQ(body, animation("a: H1:1 H2:4").layers);
    EXPECT_EQ(outro, animation("a: H2:2").layers);
}

TEST(EditTest, KeysThatCannotBeBuiltCreateNoLayer) {
    Animation it;
    EXPECT_NE(refusal([&] { it.pushBackInLayer("b", Hold, {}, 2); }), "");
    EXPECT_EQ(it, Animation());
}

TEST(EditTest, LoopsUpToTheLimit) {
    const std::string refused =
        "Animation looped 2 times would last 2147483648 frames but should last less than "
        "2147483648";
    const Animation intro = animation("a: H1:1 H2:1073741823 | 1 0");
    EXPECT_EQ(intro.loop(2, false, false).durationInFrames(), 2147483647U);
    EXPECT_EQ(refusal([&] { return intro.loop(2, true, false); }), refused);
    const Animation outro = animation("a: H1:1 H2:1073741823 | 0 1");
    EXPECT_EQ(outro.loop(2, false, false).durationInFrames(), 2147483647U);
    EXPECT_EQ(refusal([&] { return outro.loop(2, false, true); }), refused);
    const Animation bodiless = animation("a: T0,30:3 | 2 1");
    EXPECT_EQ(bodiless.loop(4294967295, false, false), bodiless);
}

TEST(EditTest, LoopsCheckTheDefaultFrameRateOnlyWhereTheyRepeat) {
    Animation some = animation("a: H1:4 | 2 1");
    some.fps = 40;
    const Animation none(40);
    Animation::defaultFps = 0;
    EXPECT_EQ(some.loop(1, false, false), some);
    EXPECT_EQ(none.loop(2, false, false), none);
    EXPECT_EQ(refusal([&] { return some.loop(2, false, false); }),
              "FPS should be strictly higher than 0");
    Animation::defaultFps = 25;
}

TEST(EditTest, MarksAreMadeByTheFirstLayerThatReachesTheBoundary) {
    const struct {
        const char* source;
        unsigned int frame;
        const char* pieceBefore;
    } rows[] = {
        {"a: H1:8; b: H2:10 | 0 3", 9, "a: H1:8; b: H2:9 | 0 1"},
        {"a: H1:10; b: H2:8 | 0 3", 9, "a: H1:9; b: H2:8 | 0 2"},
        {"a: H1:4; b: H2:10 | 7 0", 6, "a: H1:4; b: H2:6 | 0 0"},
        {"a: ; b: H2:10 | 0 10", 6, "a: ; b: H2:6 | 0 0"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(animation(row.source).splitAt(row.frame, true, true)[0],
                  animation(row.pieceBefore))
            << row.source;
}

TEST(EditTest, PiecesKeepTheFrameRate) {
    Animation it = animation("a: H1:4 | 2 1");
    it.fps = 40;
    EXPECT_EQ(it.splitAt(0, true, true)[1].fps, 40);
    it.fps = 0;
    EXPECT_EQ(refusal([&] { return it.splitAt(2, true, true); }),
              "FPS should be strictly higher than 0");
}

TEST(EditTest, SplitsEachSoManyFramesUpToTheLimit) {
    const Animation longest = animation("a: W:4294967295");
    EXPECT_EQ(longest.splitEach(1U << 31, true, true).size(), 3U);
    EXPECT_EQ(refusal([&] { return longest.splitEach(0, true, true); }),
              "Could not split Animation each 0 frame: This number should be strictly higher than "
              "0");
}

} // namespace
