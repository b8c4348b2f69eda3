#include "Text.h"

#include <gtest/gtest.h>

using namespace Kiv;

namespace {

/// The cursor primitives, on a layer of 4, 6 and 5 frames.
struct Cursor : Animation {
    KeyVector layer = keys("H1:4 T0,60:6 H3:5"), out;
    KeyVector::iterator it = layer.begin();
    unsigned int frame = 0;

    Cursor& go(unsigned int target) { return _goToFrame(frame, it, target, layer), *this; }
    Cursor& goToEnd() { return _iterateOnLayer(frame, it, 0, layer, true, nullptr), *this; }
    Cursor& copy(unsigned int target) { return _subLayer(frame, it, target, layer, out), *this; }
    Cursor& copyTail() { return _tailLayer(frame, it, layer, out), *this; }
    Cursor& drop(unsigned int to) { return _removeKeysOnTheWay(frame, it, to, layer), *this; }
    Cursor& remove(unsigned int start, unsigned int count) {
        return _removeKeys(frame, it, layer, start, count), *this;
    }
    void expect(unsigned int expectedFrame, const KeyVector& before, const KeyVector& behind) {
        EXPECT_EQ(frame, expectedFrame);
        EXPECT_EQ(KeyVector(layer.begin(), it), before);
        EXPECT_EQ(KeyVector(it, layer.end()), behind);
    }
};

TEST(LayerCursorTest, WalksStopOnTheKeyUnderTheTarget) {
    const KeyVector all = Cursor().layer;
    for (unsigned int target = 0; target < 20; ++target) {
        const auto passed = all.begin() + (target >= 4) + (target >= 10) + (target >= 15);
        const KeyVector before(all.begin(), passed), behind(passed, all.end());
        const unsigned int frame = Animation::durationInFramesOf(before);
        Cursor cursor;
        cursor.go(target).expect(frame, before, behind);
        cursor.goToEnd().expect(15, all, {});
        Cursor().drop(target).expect(frame, {}, behind);
        Cursor copying;
        copying.copy(target).expect(frame, before, behind);
        EXPECT_EQ(copying.out, before);
        copying.copyTail().expect(15, all, {});
        EXPECT_EQ(copying.out, all);
    }
}

/// What is removed is what the public operation removes, from a cursor on any key before.
TEST(LayerCursorTest, RemoveKeysCutsBothEnds) {
    for (unsigned int start = 0; start < 18; ++start)
        for (const unsigned int count : {0U, 1U, 2U, 3U, 5U, 6U, 9U, 20U, 4294967295U})
            for (const unsigned int from : {0U, start}) {
                Animation whole;
                whole.layers["a"] = Cursor().layer;
                whole.removeInLayer("a", start, count);
                const std::vector<Animation> parts = whole.splitAt(start, false, false);
                const auto expected = [&](std::size_t i) {
                    return parts[i].empty() ? KeyVector() : parts[i].layer("a");
                };
                const unsigned int walked = Cursor().go(count > 20 ? 15 : start + count).frame;
                Cursor()
                    .go(from)
                    .remove(start, count)
                    .expect(std::max(walked, std::min(start, 15U)), expected(0), expected(1));
            }
}

} // namespace
