#pragma once

#include <animationmodel/Animation.h>

#include <cstddef>
#include <iterator>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

using SharedAnimation = std::shared_ptr<Kiv::Animation>;

class Key;

/// A list of keys as Python holds it: a layer of an animation, which it looks up by its name
/// whenever it is used, or, once it is taken out of the animation, keys of its own. So it points at
/// no memory that an edit may move.
class Layer : public std::enable_shared_from_this<Layer> {
public:
    /// The layer of that name: the same one as long as any is held.
    /// Throws std::out_of_range if there is none.
    static std::shared_ptr<Layer> of(const SharedAnimation& animation, const std::string& name);

    /// Ends the tie of what is held to the animation: layers with what they hold now, keys
    /// likewise.
    static void take_all_out(const Kiv::Animation& animation);
    /// Makes an edit of the animation. When it has succeeded, the keys that are held are what they
    /// were before it, and of their own; the layers stay in the animation.
    template <class Edit>
    static void edit(const Kiv::Animation& animation, const Edit& make) {
        for_each_of(animation, [](Layer& layer) { layer.note_keys(); });
        make();
        for_each_of(animation, [](Layer& layer) { layer.release_keys(); });
    }

    ~Layer();

    Kiv::KeyVector& keys() { return animation ? animation->layers.at(name) : own; }

    bool isIn(const SharedAnimation& other, const std::string& otherName) const {
        return animation == other && name == otherName;
    }

    // What changes the list keeps the keys that are held on what they were taken for.
    /// The key of that index: the same one as long as it is held.
    std::shared_ptr<Key> take(std::size_t index);
    void replace(std::size_t index, const Kiv::AnimationKey& key);
    void insert(std::size_t index, const Kiv::AnimationKey& key);
    void erase(std::size_t index);
    void replace_all(Kiv::KeyVector keys);

    /// Ends the tie to the animation. The layer there is left without keys.
    void take_out();

private:
    friend class Key;
    using Taken = std::map<std::size_t, Key*>;
    using Held = std::map<std::pair<const Kiv::Animation*, std::string>, Layer*>;

    Layer(SharedAnimation animation, std::string name)
        : animation(std::move(animation)), name(std::move(name)) {}
    void note_keys();
    void release_keys();
    Taken::iterator move_taken(Taken::iterator from, Taken::iterator after, std::size_t index);

    /// All that are in an animation. Python lets one thread at a time come here.
    static Held& held() {
        static Held& layers = *new Held; // outlives what Python lets go of at its end
        return layers;
    }
    template <class Visit>
    static void for_each_of(const Kiv::Animation& animation, const Visit& visit) {
        auto it = held().lower_bound({&animation, ""});
        while (it != held().end() && it->first.first == &animation) {
            const auto layer = it++->second->shared_from_this(); // until the visit is over
            visit(*layer);
        }
    }

    SharedAnimation animation; ///< None if the keys are its own.
    std::string name;
    Kiv::KeyVector own;
    Taken taken; ///< By index.
};

/// A key as Python holds it: one in a layer, by its index, or, once it is out of that, of its own.
class Key : public std::enable_shared_from_this<Key> {
public:
    explicit Key(const Kiv::AnimationKey& key) : own(key) {}
    Key(std::shared_ptr<Layer> from, std::size_t index)
        : layer(std::move(from)), index(index), own(Kiv::Wait, 1) {
        layer->taken.emplace(index, this);
    }
    Key(const Key&) = delete;
    Key(Key&&) = delete;
    Key& operator=(const Key&) = delete;
    Key& operator=(Key&&) = delete;
    ~Key() {
        if (layer)
            layer->taken.erase(index);
    }

    Kiv::AnimationKey& get() { return layer ? layer->keys().at(index) : own; }

private:
    friend class Layer;

    void take_out() {
        own = get();
        release();
    }
    /// Makes it the key that was noted in `own`.
    void release() {
        layer->taken.erase(index);
        layer.reset();
    }

    std::shared_ptr<Layer> layer; ///< None if the key is its own.
    std::size_t index = 0;
    Kiv::AnimationKey own; ///< While it is in a layer, anything.
};

inline std::shared_ptr<Layer> Layer::of(const SharedAnimation& animation, const std::string& name) {
    static_cast<void>(animation->layers.at(name));
    const auto found = held().find({animation.get(), name});
    if (found != held().end())
        return found->second->shared_from_this();
    const std::shared_ptr<Layer> layer(new Layer(animation, name));
    held().emplace(std::pair(animation.get(), name), layer.get());
    return layer;
}

inline Layer::~Layer() {
    if (animation)
        held().erase({animation.get(), name});
}

inline void Layer::take_all_out(const Kiv::Animation& animation) {
    for_each_of(animation, [](Layer& layer) { layer.take_out(); });
}

inline void Layer::note_keys() {
    for (const auto& [index, key] : taken)
        key->own = key->get();
}

inline void Layer::release_keys() {
    while (!taken.empty())
        taken.begin()->second->release();
}

inline void Layer::take_out() {
    own = std::move(keys());
    held().erase({animation.get(), name});
    animation.reset();
}

inline std::shared_ptr<Key> Layer::take(std::size_t index) {
    static_cast<void>(keys().at(index));
    const auto held = taken.find(index);
    return held == taken.end() ? std::make_shared<Key>(shared_from_this(), index)
                               : held->second->shared_from_this();
}

inline void Layer::replace(std::size_t index, const Kiv::AnimationKey& key) {
    const Kiv::AnimationKey copy = key; // it may be the one that is replaced
    Kiv::AnimationKey& place = keys().at(index);
    const auto held = taken.find(index);
    if (held != taken.end())
        held->second->take_out();
    place = copy;
}

inline void Layer::insert(std::size_t index, const Kiv::AnimationKey& key) {
    keys().insert(keys().begin() + static_cast<std::ptrdiff_t>(index), key);
    for (auto it = taken.end(); it != taken.begin() && std::prev(it)->first >= index;)
        it = move_taken(std::prev(it), it, std::prev(it)->first + 1);
}

inline void Layer::erase(std::size_t index) {
    replace(index, keys().at(index)); // takes out what is held of it
    keys().erase(keys().begin() + static_cast<std::ptrdiff_t>(index));
    for (auto it = taken.lower_bound(index); it != taken.end();) {
        const auto next = std::next(it);
        move_taken(it, next, it->first - 1);
        it = next;
    }
}

/// Changes the index under which a key is held. Needs no memory, so that it cannot fail.
inline Layer::Taken::iterator Layer::move_taken(Taken::iterator from, Taken::iterator after,
                                                std::size_t index) {
    auto node = taken.extract(from);
    node.key() = node.mapped()->index = index;
    return taken.insert(after, std::move(node));
}

inline void Layer::replace_all(Kiv::KeyVector replacement) {
    note_keys();
    release_keys();
    keys() = std::move(replacement);
}
