#include "Colour.h"
#include "Picture.h"
#include "Recording.h"
#include "Text.h"
#include "Timeline.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace Kiv;

TEST(ViewTest, ColoursAnyRangeOfValues) {
    const ValueRange range(animation("a: T-3e38,3e38:2 Hinf:1 Hnan:1"));
    EXPECT_EQ(range.level(-3e38F), 0);
    EXPECT_EQ(range.level(0), 128);
    EXPECT_EQ(range.level(3e38F), 255);
    EXPECT_EQ(range.level(INFINITY), 255);
    EXPECT_EQ(range.level(NAN), 0);
    EXPECT_EQ(ValueRange(animation("a: H0:1")).level(0), 0);
    EXPECT_EQ(ValueRange(animation("a: H-7:1")).level(-7), 255);
}

TEST(ViewTest, ShowsTheLongestLayers) {
    const Animation it = animation("a: H1:4294967295 H2:4294967295; b: W:9 | 3 4294967295");
    std::ostringstream timeline;
    print_timeline(timeline, it, 40, false);
    EXPECT_NE(timeline.str().find("8589934590 frames, 3.43597e+08 s at 25 fps"), std::string::npos)
        << timeline.str();
    EXPECT_NE(timeline.str().find("|1              |2               |"), std::string::npos);
    EXPECT_NE(timeline.str().find("=               outro============"), std::string::npos);
    EXPECT_LT(svg_of("Long", it).size(), 10000U);
}

TEST(ViewTest, LampsOfManyLayersAreSmall) {
    Animation it;
    for (int number = 0; number < 32; ++number)
        it.layers[std::to_string(number)];
    EXPECT_NE(svg_of("32", it).find(" r=\"16\""), std::string::npos);
    it.layers["one more"];
    EXPECT_NE(svg_of("33", it).find(" r=\"8\""), std::string::npos);
}

TEST(ViewTest, PicturesAreXmlWhateverTheNames) {
    const std::string bad = "\xef\xbf\xbd";
    const std::string svg = svg_of("a<b>&\x01\x7f\xff\xed\xa0\x80\xc3\xa9\xf0\x9f\x92\xa1", {});
    EXPECT_NE(
        svg.find(">a&lt;b&gt;&amp;" + bad + bad + bad + bad + bad + bad + "\u00e9\U0001f4a1<"),
        std::string::npos)
        << svg;
}

/// A text after which nothing can be read.
struct Torn : std::stringbuf {
    using std::stringbuf::stringbuf;
    int_type underflow() override { throw std::runtime_error("read error"); }
};

TEST(RecordingTest, IsRefusedIfItCannotBeReadToItsEnd) {
    Torn file("OLA Show\n1 255\n40\n");
    std::istream in(&file);
    EXPECT_THROW(read_recording(in, "torn"), std::runtime_error);
}
