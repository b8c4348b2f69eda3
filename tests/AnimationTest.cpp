#include "Text.h"

#include <cmath>
#include <gtest/gtest.h>
#include <locale>

using namespace Kiv;

namespace {

TEST(AnimationTest, ConstructionFillsAndChecks) {
    const std::string overlap = ") should not overlap (animation duration = 10)";
    const std::string size = " should be lower or equal to duration of the animation (10)";
    // Intro, outro, and what is refused.
    const std::tuple<unsigned int, unsigned int, std::string> rows[] = {
        {3, 7, ""},
        {6, 5, "Intro (which size = 6) and outro (which size = 5" + overlap},
        {11, 0, "Intro size (11) and outro size (0)" + size},
        {4294967295, 2, "Intro size (4294967295) and outro size (2)" + size},
        {0, 11, "Intro size (0) and outro size (11)" + size}};
    struct Checked : Animation {
        using Animation::_checkAttr;
    } it;
    it.layers = animation("a: H1:7 H2:3; b: N:4; c: ").layers;
    Animation filled = animation("a: H1:7 H2:3; b: N:4 W:6; c: W:10");
    for (const auto& [intro, outro, refused] : rows) {
        filled.introSize = it.introSize = intro;
        filled.outroSize = it.outroSize = outro;
        EXPECT_EQ(
            refusal([&] { EXPECT_EQ(Animation(it.layers, it.introSize, it.outroSize), filled); }),
            refused);
        EXPECT_EQ(refusal([&] { it._checkAttr(); }), refused);
    }
    filled.introSize = filled.outroSize = 0;
    EXPECT_EQ(Animation(it.layers), filled);
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
    EXPECT_TRUE(std::isnan(Animation(NAN).fps) && Animation(1e-6F).fps > 0);
    Animation it = animation("a: H1:3 | 1 1");
    Animation::defaultFps = 0;
    EXPECT_EQ(refusal([&] { Animation(it.layers, 9, 9); }), refused);
    EXPECT_EQ(Animation(it).fps, 25);
    Animation::defaultFps = 30;
    it.reset();
    EXPECT_EQ(it, Animation(30));
    Animation::defaultFps = 25;
}

TEST(AnimationTest, CopiesFillAndMovesDoNot) {
    Animation source = animation("a: H1:10; b: H2:4 | 3 2"), copy = source, &self = copy;
    source.fps = 10;
    copy.layers["a"][0].command.args[0] = 7;
    self = std::move(copy);
    EXPECT_EQ(self.layers, animation("a: H7:10; b: H2:4 W:6").layers);
    self = std::move(source);
    EXPECT_TRUE(copy.fps == 10 && copy.layers["b"] == keys("H2:4") && source == Animation(10));
}

TEST(AnimationTest, AnswersForItsLayers) {
    Animation it = animation("a: ; b: H1:20 N:30; c: W:30 | 0 20");
    EXPECT_FALSE(it.empty() || it.hasLayer("x y"));
    EXPECT_EQ(it.layer("b"), it.layers.at("b"));
    EXPECT_EQ(refusal([&] { it.layer("x y"); }),
              "Layer name given as parameter (x y) does not exist in animation");
    EXPECT_TRUE(it.layers.size() == 3 && it.outroStartFrame() == 30);
    it.outroSize = 51;
    EXPECT_EQ(it.outroStartFrame(), 0U);
    EXPECT_TRUE(it.simulatedDurationInSeconds(100) == 0.5F &&
                std::isnan(it.simulatedDurationInSeconds(NAN)));
    it.setFPSToFitDurationInSeconds(4);
    EXPECT_EQ(it.fps, 12.5F);
    it.fps = -25;
    EXPECT_EQ(it.durationInSeconds(), 2);
    EXPECT_EQ(animation("a: W:16777217").simulatedDurationInSeconds(1), 16777216);
    it = animation("a: ; b: ");
    it.setFPSToFitDurationInSeconds(3);
    EXPECT_TRUE(it.empty() && std::isnan(it.durationInSeconds()));
}

struct German : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    std::string do_grouping() const override { return "\3"; }
};

TEST(AnimationTest, RefusesAndPrintsTheSameInEveryLocale) {
    Animation it = animation("a: W:1000; b: ; c: T0.1,-2e+20:3 H1e-45:2 E4:1 | 1234 5678");
    const std::locale before = std::locale::global(std::locale(std::locale(), new German));
    it.fps = 29.97F;
    std::ostringstream out;
    out << it;
    EXPECT_EQ(out.str(),
              "29.97 fps, intro 1234, outro 5678\na: Wait over 1000\nb: no keys\n"
              "c: Transition (0.1, -2e+20) over 3, Hold (1e-45) over 2, Effect 4 over 1");
    for (const auto& [seconds, shown] : std::map<float, std::string>{
             {0, "0"}, {-2.5F, "-2.5"}, {-1e-6F, "-1e-06"}, {-1234567, "-1.23457e+06"}})
        EXPECT_EQ(refusal([&, s = seconds] { it.setFPSToFitDurationInSeconds(s); }),
                  "Duration given as argument is " + shown +
                      " but should be strictly higher than 0 to calculate FPS");
    EXPECT_EQ(refusal([&] { it.simulatedDurationInSeconds(0); }),
              "Simulated FPS given as argument should be different from 0 to calculate duration in "
              "seconds");
    std::locale::global(before);
}

} // namespace
