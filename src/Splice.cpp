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
    : layer(&layer), replacement{cursor.takeFrames(start).back, keys, {}} {
    first = layer.size() - cursor.rest.size(); // of a key that was cut, the rest is to come
    if (cursor.frame < start && !keys.empty())
        replacement.front = AnimationKey(Wait, start - cursor.frame);
    cursor.takeFrames(end_of_range(start, count));
    replacement.back = cursor.rest.front;
    last = layer.size() - cursor.rest.run.size();

    const std::size_t size = layer.size() - (last - first) + replacement.size();
    if (size <= layer.capacity() && !stands_in(keys, layer))
        return;
    built.reserve(std::max(size, 2 * layer.size()));
    built.insert(built.end(), layer.begin(), at(layer, first));
    replacement.appendTo(built);
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
        replacement.appendTo(*layer);
        return;
    }
    const std::size_t end = first + replacement.size();
    if (end > last)
        layer->insert(at(*layer, last), end - last, AnimationKey(Wait, 1)); // makes room
    else
        layer->erase(at(*layer, end), at(*layer, last));
    replacement.writeTo(at(*layer, first));
}

} // namespace Kiv
