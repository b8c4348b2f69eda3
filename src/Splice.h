#pragma once

#include "LayerCursor.h"

namespace Kiv {

/// One edit of one layer, in which some of its keys give way to a row of others. What can fail is
/// done on construction, and leaves the layer as it is; what changes it cannot fail. So an edit of
/// many layers first constructs all its splices and then commits them.
class Splice {
public:
    /// Prepares to put `row` in place of the keys [first, last) of `layer`. The layer, and the keys
    /// in the run of `row`, which may be all of the layer's own, must stay until the commit.
    Splice(KeyVector& layer, std::size_t first, std::size_t last, const KeyRow& row);

    /// Changes the layer; once.
    void commit() noexcept;

    /// The place, after the commit, behind the front key of the row.
    KeyVector::iterator behindFront() const;

private:
    KeyVector* layer;
    std::size_t first, last;
    KeyRow row;
    KeyVector built; ///< The layer as it will be, if it cannot be changed in place.
};

/// Puts `keys` at `frame` of `layer`, behind a `Wait` key if it ends before; what stands there
/// follows them, or goes if `dropRest`. Moves `cursor`, at the start of the layer, to `frame`, or
/// to the end of the layer if that comes before.
Splice insertion(LayerCursor& cursor, KeyVector& layer, Keys keys, unsigned int frame,
                 bool dropRest = false);

/// Takes the frames [start, start + count) out of `layer`. Moves `cursor`, somewhere before, to the
/// first key behind the range, or the one that the range ends inside.
Splice removal(LayerCursor& cursor, KeyVector& layer, unsigned int start, unsigned int count);

/// The end of the range of `count` frames from `start`, or the last frame there can be.
unsigned int end_of_range(unsigned int start, unsigned int count);

} // namespace Kiv
