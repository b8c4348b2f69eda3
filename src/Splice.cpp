#include "Splice.h"

#include <algorithm>
#include <functional>

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

Splice insertion(KeyVector& layer, Keys keys, unsigned int frame, bool dropRest) {
    LayerCursor cursor(layer);
    const std::size_t first = cursor.walkTo(frame).run.size();
    KeyRow row{cursor.cutAt(frame), keys, std::nullopt};
    if (cursor.frame < frame && !keys.empty())
        row.front = AnimationKey(Wait, frame - cursor.frame);
    if (dropRest)
        return Splice(layer, first, layer.size(), row);
    row.back = cursor.piece();
    return Splice(layer, first, layer.size() - cursor.whole().size(), row);
}

Splice removal(KeyVector& layer, std::size_t from, unsigned int& frame, unsigned int start,
               unsigned int count) {
    const unsigned int end = end_of_range(start, count);
    LayerCursor cursor(frame, Keys(layer).subspan(from));
    const std::size_t first = from + cursor.walkTo(start).run.size();
    const std::optional<AnimationKey> head = cursor.cutAt(start);
    cursor.walkTo(end);
    frame = cursor.frame;
    cursor.cutAt(end);
    return Splice(layer, first, layer.size() - cursor.whole().size(), {head, {}, cursor.piece()});
}

unsigned int end_of_range(unsigned int start, unsigned int count) {
    return count <= lastFrame - start ? start + count : lastFrame;
}

} // namespace Kiv
