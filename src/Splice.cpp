#include "Splice.h"

#include <algorithm>

namespace Kiv {

namespace {

KeyVector::iterator at(KeyVector& layer, std::size_t index) {
    return layer.begin() + static_cast<std::ptrdiff_t>(index);
}

} // namespace

Splice::Splice(KeyVector& layer, std::size_t first, std::size_t last, const KeyRow& row)
    : layer(&layer), first(first), last(last), row(row) {
    const std::size_t size = layer.size() - (last - first) + row.size();
    const bool aliased = !row.run.empty() && row.run.data() == layer.data();
    if (size <= layer.capacity() && !aliased)
        return;
    built.reserve(std::max(size, 2 * layer.size()));
    built.insert(built.end(), layer.begin(), at(layer, first));
    row.appendTo(built);
    built.insert(built.end(), at(layer, last), layer.end());
}

void Splice::commit() noexcept {
    if (!built.empty()) {
        layer->swap(built);
        return;
    }
    if (last == layer->size()) {
        layer->erase(at(*layer, first), layer->end());
        row.appendTo(*layer);
        return;
    }
    const std::size_t end = first + row.size();
    if (end > last)
        layer->insert(at(*layer, last), end - last, AnimationKey(Wait, 1)); // makes room
    else
        layer->erase(at(*layer, end), at(*layer, last));
    row.writeTo(at(*layer, first));
}

KeyVector::iterator Splice::behindFront() const {
    return at(*layer, first + row.front.has_value());
}

Splice insertion(LayerCursor& cursor, KeyVector& layer, Keys keys, unsigned int frame,
                 bool dropRest) {
    const std::size_t first = cursor.walkTo(frame).run.size();
    KeyRow row{cursor.cutAt(frame), keys, std::nullopt};
    if (cursor.frame < frame && !keys.empty())
        row.front = AnimationKey(Wait, frame - cursor.frame);
    if (dropRest)
        return Splice(layer, first, layer.size(), row);
    row.back = cursor.rest().front;
    return Splice(layer, first, layer.size() - cursor.rest().run.size(), row);
}

Splice removal(LayerCursor& cursor, KeyVector& layer, unsigned int start, unsigned int count) {
    cursor.walkTo(start);
    const std::size_t first = layer.size() - cursor.rest().run.size();
    const std::optional<AnimationKey> head = cursor.cutAt(start);
    const unsigned int end = end_of_range(start, count);
    cursor.walkTo(end);
    LayerCursor behind = cursor;
    behind.cutAt(end);
    const KeyRow rest = behind.rest();
    return Splice(layer, first, layer.size() - rest.run.size(), {head, {}, rest.front});
}

unsigned int end_of_range(unsigned int start, unsigned int count) {
    return count <= lastFrame - start ? start + count : lastFrame;
}

} // namespace Kiv
