#pragma once

#include "LayerCursor.h"

namespace Kiv {

/// One edit of one layer, in which some of its keys give way to others. What can fail is done on
/// construction, and leaves the layer as it is; what changes it cannot fail. So an edit of many
/// layers first constructs all its splices and then commits them.
class Splice {
public:
    /// Prepares to put `keys` in the place of the frames [start, start + count) of `layer`.
    ///
    ///     layer      | A A A A | B B B B | C C C C |      start 2, count 4, keys X(3)
    ///     replaced   | A A A A | B B B B |                the keys [first, last)
    ///     by         | A A | X X X | B B |                replacement
    ///
    /// If the layer ends before `start`, a `Wait` key stands before `keys`; without `keys`, nothing
    /// does. `cursor` stands in the layer, at or before `start`; afterwards it stands at the end of
    /// the range. The layer and `keys`, which may be any part of the layer, must stay until the
    /// commit.
    Splice(KeyVector& layer, LayerCursor& cursor, unsigned int start, unsigned int count,
           Keys keys);

    /// Prepares to have the layer consist of `keys`.
    Splice(KeyVector& layer, KeyVector keys);

    /// Changes the layer; once.
    void commit() noexcept;

private:
    KeyVector* layer;
    std::size_t first, last; ///< The keys [first, last) give way.
    Stretch replacement;     ///< What takes their place.
    KeyVector built;         ///< The layer as it will be, if it cannot be changed in place.
};

} // namespace Kiv
