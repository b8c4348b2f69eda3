#include "Text.h"

#include <gtest/gtest.h>

using namespace Kiv;

namespace {

/// The cursor primitives, on a layer of 4, 6 and 5 frames.
struct LayerCursorTest : testing::Test, Animation {
    const KeyVector all = keys("H1:4 T0,60:6 H3:5");
    const unsigned int total = 15;
    KeyVector layer;
    KeyVector::iterator it;
    unsigned int frame = 0;

    void restart() {
        layer = all;
        it = layer.begin();
        frame = 0;
    }
    KeyVector passed() { return {layer.begin(), it}; }
};

TEST_F(LayerCursorTest, WalksStopOnTheKeyUnderTheTarget) {
    for (unsigned int target = 0; target < 20; ++target) {
        restart();
        _goToFrame(frame, it, target, layer);
        EXPECT_LE(frame, target);
        EXPECT_EQ(frame, durationInFramesOf(passed()));
        if (it != layer.end()) {
            EXPECT_GT(frame + it->duration, target);
        }
        const unsigned int walked = frame;
        const KeyVector before = passed();
        _iterateOnLayer(frame, it, 0, layer, true, nullptr);
        EXPECT_EQ(frame, total);
        EXPECT_EQ(passed(), all);

        KeyVector out;
        restart();
        _subLayer(frame, it, target, layer, out);
        EXPECT_EQ(out, before);
        EXPECT_EQ(frame, walked);
        _tailLayer(frame, it, layer, out);
        EXPECT_EQ(out, all);
        EXPECT_EQ(frame, total);

        restart();
        _removeKeysOnTheWay(frame, it, target, layer);
        EXPECT_EQ(frame, walked);
        EXPECT_EQ(it, layer.begin());
        EXPECT_EQ(layer, KeyVector(all.end() - std::ptrdiff_t(layer.size()), all.end()));
        EXPECT_EQ(durationInFramesOf(layer), total - walked);
    }
}

/// What is removed is what the public operation removes, from a cursor on any key before.
TEST_F(LayerCursorTest, RemoveKeysCutsBothEnds) {
    for (unsigned int start = 0; start < 18; ++start)
        for (const unsigned int count : {0U, 1U, 2U, 3U, 5U, 6U, 9U, 20U, 4294967295U})
            for (const unsigned int from : {0U, start}) {
                const auto call = testing::Message() << "start " << start << ", count " << count;
                layers["a"] = all;
                removeInLayer("a", start, count);
                restart();
                _goToFrame(frame, it, count > 20 ? total : start + count, layer);
                const unsigned int kept = std::min(start, total);
                const unsigned int end = std::max(frame, kept);
                restart();
                _goToFrame(frame, it, from, layer);
                _removeKeys(frame, it, layer, start, count);
                EXPECT_EQ(layer, layers["a"]) << call;
                EXPECT_EQ(frame, end) << call;
                EXPECT_EQ(durationInFramesOf(passed()), kept) << call;
            }
}

} // namespace
