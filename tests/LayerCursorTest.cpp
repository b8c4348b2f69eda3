#include "Text.h"

#include <gtest/gtest.h>

using namespace Kiv;

namespace {

/// A cursor at the start of a layer of 4, 6 and 5 frames.
struct LayerCursorTest : testing::Test, Animation {
    const KeyVector all = keys("H1:4 T0,60:6 H3:5");
    KeyVector layer, out;
    KeyVector::iterator it;
    unsigned int frame = 0;

    void restart() {
        layer = all;
        out.clear();
        it = layer.begin();
        frame = 0;
    }
    void expect(unsigned int expectedFrame, const KeyVector& before, const KeyVector& behind) {
        EXPECT_EQ(frame, expectedFrame);
        EXPECT_EQ(KeyVector(layer.begin(), it), before);
        EXPECT_EQ(KeyVector(it, layer.end()), behind);
    }
};

TEST_F(LayerCursorTest, WalksStopOnTheKeyUnderTheTarget) {
    for (unsigned int target = 0; target < 20; ++target) {
        const auto passed = all.begin() + (target >= 4) + (target >= 10) + (target >= 15);
        const KeyVector before(all.begin(), passed), behind(passed, all.end());
        const unsigned int end = durationInFramesOf(before);
        restart();
        _goToFrame(frame, it, target, layer);
        expect(end, before, behind);
        _iterateOnLayer(frame, it, 0, layer, true, nullptr);
        expect(15, all, {});
        restart();
        _subLayer(frame, it, target, layer, out);
        expect(end, out, behind);
        _tailLayer(frame, it, layer, out);
        expect(15, out, {});
        restart();
        _removeKeysOnTheWay(frame, it, target, layer);
        expect(end, {}, behind);
    }
}

/// What is removed is what the public operation removes, from a cursor on any key before.
TEST_F(LayerCursorTest, RemoveKeysCutsBothEnds) {
    for (unsigned int start = 0; start < 18; ++start)
        for (const unsigned int count : {0U, 1U, 2U, 3U, 5U, 6U, 9U, 20U, 4294967295U})
            for (const unsigned int from : {0U, start}) {
                layers["a"] = all;
                removeInLayer("a", start, count);
                restart();
                _goToFrame(frame, it, count > 20 ? 15 : start + count, layer);
                const unsigned int kept = std::min(start, 15U), end = std::max(frame, kept);
                restart();
                _goToFrame(frame, it, from, layer);
                _removeKeys(frame, it, layer, start, count);
                EXPECT_EQ(layer, layers["a"]) << start << ' ' << count;
                EXPECT_EQ(frame, end);
                EXPECT_EQ(durationInFramesOf(KeyVector(layer.begin(), it)), kept);
            }
}

} // namespace
