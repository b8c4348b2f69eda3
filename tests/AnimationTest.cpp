#include "Text.h"

#include <cmath>
#include <gtest/gtest.h>
#include <locale>

using namespace Kiv;

namespace {

constexpr float nan = std::numeric_limits<float>::quiet_NaN();

TEST(AnimationTest, ConstructionFillsAndChecks) {
    const std::string size = " should be lower or equal to duration of the animation (10)";
    const std::string overlap = ") should not overlap (animation duration = 10)";
    const struct {
        unsigned int intro, outro;
        std::string refused;
    } rows[] = {
        {0, 0, ""},
        {5, 5, ""},
        {0, 10, ""},
        {10, 0, ""},
        {6, 5, "Intro (which size = 6) and outro (which size = 5" + overlap},
        {11, 0, "Intro size (11) and outro size (0)" + size},
        {0, 11, "Intro size (0) and outro size (11)" + size},
        {4294967295, 2, "Intro size (4294967295) and outro size (2)" + size},
    };
    const LayerMap given = animation("a: H1:7 H2:3; b: N:4; c: ").layers;
    for (const auto& [intro, outro, refused] : rows) {
        EXPECT_EQ(refusal([&, i = intro, o = outro] {
                      const Animation built(given, i, o);
                      EXPECT_EQ(show(built.layers), "a: H1:7 H2:3; b: N:4 W:6; c: W:10");
                      EXPECT_EQ(built.introSize, i);
                      EXPECT_EQ(built.outroSize, o);
                      EXPECT_EQ(built.fps, 25);
                  }),
                  refused);
    }
    EXPECT_EQ(show(given), "a: H1:7 H2:3; b: N:4; c: ");
    EXPECT_EQ(show(Animation(animation("a: ; b: ").layers)), "a: ; b:  | 0 0");
}

TEST(AnimationTest, ChecksTheFrameRateFirst) {
    const std::string refused = "FPS should be strictly higher than 0";
    EXPECT_EQ(refusal([] { Animation(0.0F); }), refused);
    EXPECT_EQ(refusal([] { Animation(-2.5F); }), refused);
    EXPECT_TRUE(std::isnan(Animation(nan).fps));

    const Animation before = animation("a: H1:3");
    const DefaultFps none(0);
    EXPECT_EQ(refusal([] { Animation(); }), refused);
    EXPECT_EQ(refusal([&] { Animation{before.layers}; }), refused);
    EXPECT_EQ(refusal([&] { Animation(before.layers, 9, 9); }), refused);
    Animation copy = before;
    EXPECT_EQ(copy.fps, 25);
    Animation::defaultFps = 30;
    copy.reset();
    EXPECT_EQ(copy, Animation(30));
}

TEST(AnimationTest, RefusesLayersOfTwoToThe31Frames) {
    Animation longest = animation("a: H1:1; b: H1:2147483646 H2:1");
    EXPECT_EQ(Animation(longest).durationInFrames(), 2147483647U);
    longest.layers["b"].push_back(AnimationKey(Wait, 4294967295));
    longest.introSize = 1;
    EXPECT_EQ(refusal([&] { Animation copy(longest); }),
              "Layer (b) lasts 6442450942 frames but should last less than 2147483648");
}

TEST(AnimationTest, CopiesFillAndMovesDoNot) {
    const Animation source = animation("a: H1:10; b: H2:4 | 3 2");
    const std::string filled = "a: H1:10; b: H2:4 W:6 | 3 2";
    Animation copy = source;
    EXPECT_EQ(show(copy), filled);
    copy.layers["a"][0].command.args[0] = 7;
    EXPECT_EQ(show(source), "a: H1:10; b: H2:4 | 3 2");

    Animation other;
    other = source;
    EXPECT_EQ(show(other), filled);
    other = animation("a: H1:5 | 3 3"); // moved in, overlap and all
    EXPECT_EQ(show(other), "a: H1:5 | 3 3");
    copy.fps = 10;
    EXPECT_NE(refusal([&] { copy = other; }), "");
    EXPECT_EQ(show(copy), "a: H7:10; b: H2:4 W:6 | 3 2");
    other = std::move(copy);
    EXPECT_EQ(other.fps, 10);
    EXPECT_EQ(show(copy), " | 0 0");
    Animation& self = other;
    other = std::move(self);
    EXPECT_EQ(show(other), "a: H7:10; b: H2:4 W:6 | 3 2");
}

TEST(AnimationTest, AnswersForItsLayers) {
    Animation some = animation("a: ; b: H1:2");
    EXPECT_FALSE(some.empty());
    EXPECT_EQ(show(some.layer("b")), "H1:2");
    EXPECT_FALSE(some.hasLayer("x y"));
    EXPECT_EQ(refusal([&] { some.layer("x y"); }),
              "Layer name given as parameter (x y) does not exist in animation");
    EXPECT_EQ(some.layers.size(), 2U);
    some.layers["b"].clear();
    EXPECT_TRUE(some.empty());
}

TEST(AnimationTest, MeasuresFramesAndSeconds) {
    Animation some = animation("a: H1:10; b: H1:20 N:30; c: W:30 | 0 20");
    EXPECT_EQ(some.durationInFrames(), 50U);
    EXPECT_EQ(Animation::durationInFramesOf(some.layers["c"]), 30U);
    EXPECT_EQ(some.outroStartFrame(), 30U);
    some.outroSize = 51;
    EXPECT_EQ(some.outroStartFrame(), 0U);
    EXPECT_EQ(some.durationInSeconds(), 2);
    EXPECT_EQ(some.simulatedDurationInSeconds(100), 0.5F);
    EXPECT_TRUE(std::isnan(some.simulatedDurationInSeconds(nan)));
    some.setFPSToFitDurationInSeconds(4);
    EXPECT_EQ(some.fps, 12.5F);
    some.fps = -25;
    EXPECT_EQ(some.durationInSeconds(), 2);
    EXPECT_EQ(animation("a: W:16777217").simulatedDurationInSeconds(1), 16777216);

    Animation none;
    none.setFPSToFitDurationInSeconds(3);
    EXPECT_EQ(none.fps, 0);
    EXPECT_TRUE(std::isnan(none.durationInSeconds()));
    none.pushBackInLayer("a", AnimationKey(Wait, 1));
    EXPECT_EQ(none.durationInSeconds(), std::numeric_limits<float>::infinity());
}

struct German : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    std::string do_grouping() const override { return "\3"; }
};

TEST(AnimationTest, RefusesRatesAndDurationsInTheSameWordsInEveryLocale) {
    const std::locale before = std::locale::global(std::locale(std::locale(), new German));
    Animation some = animation("a: W:1000");
    const struct {
        float seconds;
        std::string shown;
    } rows[] = {
        {0, "0"}, {-0.0F, "-0"}, {-2.5F, "-2.5"}, {-1e-6F, "-1e-06"}, {-1234567, "-1.23457e+06"}};
    for (const auto& [seconds, shown] : rows)
        EXPECT_EQ(refusal([&, s = seconds] { some.setFPSToFitDurationInSeconds(s); }),
                  "Duration given as argument is " + shown +
                      " but should be strictly higher than 0 to calculate FPS");
    EXPECT_EQ(some.fps, 25);
    for (const float fps : {0.0F, -1.0F})
        EXPECT_EQ(refusal([&] { some.simulatedDurationInSeconds(fps); }),
                  "Simulated FPS given as argument should be different from 0 to calculate "
                  "duration in seconds");
    some.outroSize = 1001;
    EXPECT_EQ(refusal([&] { Animation copy(some); }),
              "Intro size (0) and outro size (1001) should be lower or equal to duration of the "
              "animation (1000)");
    std::locale::global(before);
}

} // namespace
