#pragma once

#include "LayerCursor.h"

namespace Kiv {

/// One edit of one layer, in which some of its keys give way to others. What can fail is done on
/// construction, and leaves the layer as it is; what changes it cannot fail. So an edit of many
/// layers first constructs all its splices and then commits them.
class Splice {
public:
    /// Prepares to have the layer consist of its first `kept` keys, of `row`, and of what `behind`,
    /// which reads the layer, has still to come. The layer and the run of `row`, which may be any
    /// part of the layer, must stay until the commit.
    Splice(KeyVector& layer, std::size_t kept, const Stretch& row, const LayerCursor& behind);

    /// Prepares to have the layer consist of `keys`.
    Splice(KeyVector& layer, KeyVector keys);

    /// Frames of the layer before the commit. Costs the keys behind the edit.
    unsigned int lengthBefore() const;

    /// Changes the layer; once.
    void commit() noexcept;

private:
    KeyVector* layer;
    std::size_t first, last; ///< The keys [first, last) give way.
    unsigned int lastFrame;  ///< At which key `last` begins.
    Stretch row;             ///< What takes their place.
    KeyVector built;         ///< The layer as it will be, if it cannot be changed in place.
};

/// Puts `keys` in the place of the frames [start, start + count) of `layer`, behind a `Wait` key if
/// the layer ends before. `cursor` stands in the layer, at or before `start`. Every insertion and
/// removal is made here.
Splice replacement(KeyVector& layer, LayerCursor cursor, unsigned int start, unsigned int count,
                   Keys keys);

} // namespace Kiv
