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

Splice::Splice(KeyVector& layer, std::size_t kept, const Stretch& row, const LayerCursor& behind)
    : layer(&layer), first(kept), last(layer.size() - behind.rest.run.size()),
      lastFrame(behind.frame), row(row) {
    if (behind.rest.front) {
        lastFrame += behind.rest.front->duration;
        this->row.back = behind.rest.front;
    }
    const std::size_t size = layer.size() - (last - first) + this->row.size();
    if (size <= layer.capacity() && !stands_in(row.run, layer))
        return;
    built.reserve(std::max(size, 2 * layer.size()));
    built.insert(built.end(), layer.begin(), at(layer, first));
    this->row.appendTo(built);
    built.insert(built.end(), at(layer, last), layer.end());
}

Splice::Splice(KeyVector& layer, KeyVector keys)
    : layer(&layer), first(0), last(layer.size()), lastFrame(0), built(std::move(keys)) {}

unsigned int Splice::lengthBefore() const {
    return lastFrame + static_cast<unsigned int>(total_of(Keys(*layer).subspan(last)));
}

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

Splice replacement(KeyVector& layer, LayerCursor cursor, unsigned int start, unsigned int count,
                   Keys keys) {
    cursor.takeKeys(start);
    const std::size_t kept = layer.size() - cursor.rest.run.size();
    Stretch row{cursor.takeFrames(start).back, keys, {}};
    if (cursor.frame < start && !keys.empty())
        row.front = AnimationKey(Wait, start - cursor.frame);
    cursor.takeFrames(end_of_range(start, count));
    return Splice(layer, kept, row, cursor);
}

} // namespace Kiv
