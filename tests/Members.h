#pragma once

#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace Kiv {

/// Each change of a value, which changes one member, is seen by comparisons, and is kept by copies,
/// assignments, moves and swaps.
template <class Value>
void expectEveryMember(const Value& base, const std::vector<void (*)(Value&)>& changes) {
    for (std::size_t i = 0; i < changes.size(); ++i) {
        SCOPED_TRACE(testing::Message() << "change " << i);
        Value changed = base;
        changes[i](changed);
        EXPECT_NE(changed, base);
        EXPECT_FALSE(changed == base);

        Value copy(changed);
        EXPECT_EQ(copy, changed);
        Value other = base;
        EXPECT_EQ(other, base);
        using std::swap;
        swap(copy, other);
        EXPECT_EQ(copy, base);
        EXPECT_EQ(other, changed);
        copy = changed;
        EXPECT_EQ(copy, changed);
        other = base;
        other = std::move(copy);
        EXPECT_EQ(other, changed);
        const Value moved(std::move(other));
        EXPECT_EQ(moved, changed);
    }
}

} // namespace Kiv
