#include "Members.h"
#include "Text.h"

#include <clocale>
#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <locale>

using namespace Kiv;

namespace {

/// An animation that lets its checks be called.
struct Checked : Animation {
    using Animation::_checkAttr;
};

TEST(AnimationTest, ConstructionFillsAndChecks) {
    const std::string overlap = ") should not overlap (animation duration = 10)";
    const std::string tooLong = " should be lower or equal to duration of the animation (10)";
    const struct {
        unsigned int intro;
        unsigned int outro;
        std::string refused;
    } rows[] = {
        {0, 0, ""},
        {3, 7, ""},
        {6, 5, "Intro (which size = 6) and outro (which size = 5" + overlap},
        {11, 0, "Intro size (11) and outro size (0)" + tooLong},
        {4294967295, 2, "Intro size (4294967295) and outro size (2)" + tooLong},
        {0, 11, "Intro size (0) and outro size (11)" + tooLong},
    };
    Checked given;
    given.layers = animation("a: H1:7 H2:3; b: N:4; c: ").layers;
    Animation filled = animation("a: H1:7 H2:3; b: N:4 W:6; c: W:10");
    for (const auto& row : rows) {
        Animation built;
        EXPECT_EQ(refusal([&] { built = Animation(given.layers, row.intro, row.outro); }),
                  row.refused);
        filled.introSize = row.intro;
        filled.outroSize = row.outro;
        EXPECT_EQ(built, row.refused.empty() ? filled : Animation());
        given.introSize = row.intro;
        given.outroSize = row.outro;
        EXPECT_EQ(refusal([&] { given._checkAttr(); }), row.refused);
    }
    EXPECT_EQ(Animation(given.layers), animation("a: H1:7 H2:3; b: N:4 W:6; c: W:10"));
}

TEST(AnimationTest, LayersLastLessThanTheLimit) {
    Animation longest = animation("a: H1:1; b: H1:2147483646 H2:1");
    EXPECT_EQ(Animation(longest).durationInFrames(), 2147483647U);
    longest.layers["b"].push_back(AnimationKey(Wait, 1));
    longest.introSize = 4294967295;
    EXPECT_EQ(refusal([&] { Animation copy(longest); }),
              "Layer (b) lasts 2147483648 frames but should last less than 2147483648");
}

TEST(AnimationTest, ChecksTheFrameRateFirst) {
    const std::string refused = "FPS should be strictly higher than 0";
    EXPECT_EQ(refusal([] { Animation(-2.5F); }), refused);
    EXPECT_TRUE(std::isnan(Animation(NAN).fps));
    EXPECT_EQ(Animation(1e-6F).fps, 1e-6F);
    Animation it = animation("a: H1:3 | 1 1");
    Animation::defaultFps = 0;
    EXPECT_EQ(refusal([&] { Animation(it.layers, 9, 9); }), refused);
    EXPECT_EQ(Animation(it).fps, 25);
    Animation::defaultFps = 30;
    EXPECT_EQ(Animation().fps, 30);
    EXPECT_EQ(Animation(it.layers).fps, 30);
    EXPECT_EQ(Animation({{"a", {}}}).fps, 30);
    it.reset();
    EXPECT_EQ(it, Animation(30));
    Animation::defaultFps = 25;
}

TEST(AnimationTest, EveryMemberIsAPartOfTheValue) {
    expectEveryMember<Animation>(animation("a: H1:10 | 3 2"),
                                 {[](Animation& it) { it.layers["b"] = keys("H1:10"); },
                                  [](Animation& it) { it.introSize = 5; },
                                  [](Animation& it) { it.outroSize = 5; },
                                  [](Animation& it) { it.fps = 10; }});
}

TEST(AnimationTest, CopiesShareNothingAndAreFilled) {
    Animation source = animation("a: H1:10; b: H2:4");
    Animation copy = source;
    copy.layers["a"][0].command.args[0] = 7;
    EXPECT_EQ(copy, animation("a: H7:10; b: H2:4 W:6"));
    EXPECT_EQ(source, animation("a: H1:10; b: H2:4"));
}

TEST(AnimationTest, MovesTakeAnAnimationAsItIs) {
    Animation source = animation("a: H1:10; b: H2:4 | 3 99");
    source.fps = 10;
    Animation& self = source;
    self = std::move(source);
    Animation moved;
    moved = std::move(source);
    EXPECT_EQ(source, Animation(10)); // what is left of it is part of the contract
    source = std::move(moved);
    source.fps = 25;
    EXPECT_EQ(source, animation("a: H1:10; b: H2:4 | 3 99"));
}

TEST(AnimationTest, AnswersForItsLayers) {
    const Animation it = animation("a: ; b: H1:20 N:30; c: W:30");
    EXPECT_TRUE(it.hasLayer("a"));
    EXPECT_FALSE(it.hasLayer("x y"));
    EXPECT_EQ(refusal([&] { return it.layer("x y"); }),
              "Layer name given as parameter (x y) does not exist in animation");
    EXPECT_EQ(refusal([&] { return it.layer(std::string("x\0y", 3)); }),
              "Layer name given as parameter (x"); // a NUL ends what() early, as it is in the name
    EXPECT_EQ(it.layers.size(), 3U);
}

TEST(AnimationTest, TellsTimesInFramesAndSeconds) {
    Animation it = animation("a: ; b: H1:20 N:30; c: W:30 | 0 20");
    EXPECT_EQ(it.durationInFrames(), 50U);
    EXPECT_EQ(it.outroStartFrame(), 30U);
    it.outroSize = 51;
    EXPECT_EQ(it.outroStartFrame(), 0U);
    EXPECT_EQ(it.durationInSeconds(), 2);
    EXPECT_EQ(it.simulatedDurationInSeconds(100), 0.5F);
    EXPECT_EQ(it.simulatedDurationInSeconds(1e-45F), INFINITY);
    EXPECT_TRUE(std::isnan(it.simulatedDurationInSeconds(NAN)));
    EXPECT_EQ(refusal([&] { return it.simulatedDurationInSeconds(0); }),
              "Simulated FPS given as argument should be different from 0 to calculate duration in "
              "seconds");
    it.setFPSToFitDurationInSeconds(4);
    EXPECT_EQ(it.fps, 12.5F);
    it.fps = -25;
    EXPECT_EQ(it.durationInSeconds(), 2);
    EXPECT_EQ(animation("a: W:16777217").simulatedDurationInSeconds(1), 16777216);

    it.layers = animation("a: ; b: ").layers;
    it.setFPSToFitDurationInSeconds(3);
    EXPECT_EQ(it.fps, 0);
    EXPECT_TRUE(std::isnan(it.durationInSeconds()));
}

/// Decimal commas, and points between thousands.
struct German : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    std::string do_grouping() const override { return "\3"; }
};

TEST(AnimationTest, WritesNumbersTheSameInEveryLocale) {
    Animation it = animation("a: W:1000; b: ; c: T0.1,-2e+20:3 H1e-45:2 N:1 E4:1 | 1234 5678");
    it.fps = 29.97F;
    const struct {
        float seconds;
        const char* shown;
    } refused[] = {{0, "0"}, {-2.5F, "-2.5"}, {-1e-6F, "-1e-06"}, {-1234567, "-1.23457e+06"}};

    // Streams have one locale, and printf another one, of which the environment may tell.
    const std::locale before = std::locale::global(std::locale(std::locale(), new German));
    std::setlocale(LC_ALL, "");
    if (const char* const point = std::getenv("KIV_DECIMAL_POINT")) {
        EXPECT_STREQ(std::localeconv()->decimal_point, point);
    }
    std::ostringstream out;
    out << it;
    EXPECT_EQ(
        out.str(),
        "29.97 fps, intro 1234, outro 5678\na: Wait over 1000\nb: no keys\n"
        "c: Transition (0.1, -2e+20) over 3, Hold (1e-45) over 2, NoValue over 1, Effect 4 over 1");
    for (const auto& row : refused)
        EXPECT_EQ(refusal([&] { it.setFPSToFitDurationInSeconds(row.seconds); }),
                  std::string("Duration given as argument is ") + row.shown +
                      " but should be strictly higher than 0 to calculate FPS");
    EXPECT_EQ(it.fps, 29.97F);
    std::locale::global(before);
    std::setlocale(LC_ALL, "C");
}

/// Whether a text is cut short, laid out and rounded right.
TEST(AnimationTest, PrintsFloatsInTheShortestText) {
    const struct {
        float value;
        const char* text;
    } rows[] = {
        {-0.0F, "-0"},
        {100000, "1e+05"},
        {16777216, "16777216"},
        {1073741824, "1073741824"},
        {0.001F, "0.001"},
        {0x1p-96F, "1.2621775e-29"},        // eight digits do, but are not those nearest to it
        {0x1.5c87fap-84F, "7.0385307e-26"}, // 7.038531e-26 is a double halfway to the next float
        {3.4028235e38F, "3.4028235e+38"},
        {INFINITY, "inf"},
        {NAN, "nan"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(shortest_text(row.value), row.text);
}

} // namespace
