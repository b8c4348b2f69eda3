#include "Splice.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace Kiv {

namespace {

KeyVector::iterator at(KeyVector& layer, std::size_t index) {
    return layer.begin() + static_cast<std::ptrdiff_t>(index);
}

bool stands_in(Keys run, const KeyVector& layer) {
    const std::less<> before; // orders any two pointers
    return !run.empty() && !before(run.data(), layer.data()) &&
           before(run.data(), layer.data() + layer.size());
}

} // namespace

Splice::Splice(KeyVector& layer, LayerCursor& cursor, unsigned int start, unsigned int count,
               Keys keys)
    : layer(&layer), row{cursor.takeFrames(start).back, keys, {}} {
    first = layer.size() - cursor.rest.size(); // of a key that was cut, the rest is to come
    if (cursor.frame < start && !keys.empty())
        row.front = AnimationKey(Wait, start - cursor.frame);
    cursor.takeFrames(end_of_range(start, count));
    row.back = cursor.rest.front;
    last = layer.size() - cursor.rest.run.size();

    const std::size_t size = layer.size() - (last - first) + row.size();
    if (size <= layer.capacity() && !stands_in(keys, layer))
        return;
    built.reserve(std::max(size, 2 * layer.size()));
    built.insert(built.end(), layer.begin(), at(layer, first));
    row.appendTo(built);
    built.insert(built.end(), at(layer, last), layer.end());
}

Splice::Splice(KeyVector& layer, KeyVector keys)
    : layer(&layer), first(0), last(layer.size()), built(std::move(keys)) {}

void Splice::commit() noexcept {
    if (!built.empty()) {
        *layer = std::move(built); // frees the keys before while they are at hand
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

} // namespace Kiv
