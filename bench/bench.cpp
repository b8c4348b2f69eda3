// Times every operation, and in turn with it its floor: the same call on a Floor.

#include "Floor.h"

#include <animationmodel/Rotation.h>
#include <animationmodel/play.h>

#include <algorithm>
#include <bit>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <malloc.h>
#include <new>

namespace {

std::size_t allocations = 0;
std::size_t turns = 0; ///< Calls timed, of operations and floors together.

} // namespace

void* operator new(std::size_t size) {
    ++allocations;
    if (void* memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}
#pragma GCC diagnostic ignored "-Wmismatched-new-delete" // both sides are here
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace {

using namespace Kiv;

/// What one call works on, an Animation or a Floor, and where it leaves its results.
template <class A>
struct Work {
    using Layers = decltype(A::layers);
    using Keys = typename Layers::mapped_type;
    using Key = typename Keys::value_type;

    Work(std::size_t layers, std::size_t perLayer) : size(perLayer) {
        for (std::size_t i = 0; i < layers; ++i)
            animation.layers["layer" + std::to_string(i)].assign(perLayer, key);
        results.reserve(1);
    }
    unsigned int frames(std::size_t keys) const { return unsigned(keys) * keyFrames; }
    /// A frame inside the key after so many.
    unsigned int inside(std::size_t keys) const { return frames(keys) + 3; }

    Key key = std::bit_cast<Key>(AnimationKey({Transition, {0, 1}}, keyFrames));
    Key wait = std::bit_cast<Key>(AnimationKey(Wait, keyFrames));
    std::size_t size; ///< Keys in each layer.
    A animation, other;
    Keys keys;
    Layers parts[3];
    std::vector<A> results;
    std::vector<float> values;
};

/// The number of layers, and of the keys in all of them: those of the result and of the source.
struct Shape {
    std::size_t layers, keys, source;
};

/// The shapes of an operation whose result has `growth` times the keys of its source. Where there
/// are thousands of layers, each has 20 keys in the source.
std::vector<Shape> shapes(const std::vector<std::size_t>& layerCounts, std::size_t growth = 1) {
    std::vector<Shape> all;
    for (const std::size_t layers : layerCounts)
        if (layers >= 1000)
            all.push_back({layers, 20 * layers * growth, 20 * layers});
        else
            for (const std::size_t keys : {1000U, 10000U, 100000U, 1000000U})
                if (keys >= 10 * layers * growth)
                    all.push_back({layers, keys, keys / growth});
    return all;
}

/// Runs something on work of a given shape and returns the seconds that it took.
using Timed = std::function<double(const Shape&)>;

/// Times `call` on works that `set` prepares off the clock. Each time they and the results lie
/// elsewhere in memory: a layout that is unlucky for the caches would cost half in every turn.
template <class A, class Set, class Call>
Timed timed(Set set, Call call) {
    return [=](const Shape& shape) {
        const std::size_t batch = std::clamp<std::size_t>(10000 / shape.keys, 1, 10);
        std::vector<char> gaps[2]; // before the works, and before the results of the call
        gaps[0].reserve(++turns * 70032 % 1000000);
        std::vector<Work<A>> works;
        works.reserve(batch);
        for (std::size_t i = 0; i < batch; ++i)
            set(works.emplace_back(shape.layers, shape.source / shape.layers));
        gaps[1].reserve(turns * 30032 % 1000000);
        const std::size_t before = allocations;
        const auto start = std::chrono::steady_clock::now();
        for (Work<A>& work : works)
            call(work);
        const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
        allocations = (allocations - before) / batch;
        return time.count() / static_cast<double>(batch);
    };
}

double median(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

/// Times the call and its floor in turn, and over thousands of layers a copy of the animation too.
/// Reports medians, which a disturbed call does not move.
void measure(benchmark::State& state, const Shape& shape, const Timed& call, const Timed& floor,
             const Timed& copy) {
    std::vector<double> times, ratios, copies;
    for (auto _ : state) {
        const double time = call(shape);
        state.SetIterationTime(time);
        state.counters["allocations"] = static_cast<double>(allocations);
        times.push_back(time / static_cast<double>(shape.keys));
        ratios.push_back(time / floor(shape));
        if (shape.layers >= 1000)
            copies.push_back(time / copy(shape));
    }
    state.counters["ns/key"] = median(times) * 1e9;
    state.counters["ratio"] = median(ratios);
    if (!copies.empty())
        state.counters["copies"] = median(copies);
}

constexpr auto asBuilt = [](auto& /*work*/) {};
constexpr auto copied = [](auto& w) { w.results.push_back(w.animation); };

void compare(const std::string& name, const std::vector<Shape>& shapes, const Timed& call,
             const Timed& floor) {
    const Timed copy = timed<Animation>(asBuilt, [](auto& w) { Animation dropped(w.animation); });
    for (const Shape& shape : shapes)
        benchmark::RegisterBenchmark(
            name.c_str(),
            [=](benchmark::State& state) { measure(state, shape, call, floor, copy); })
            ->ArgNames({"layers", "keys"})
            ->Args({long(shape.layers), long(shape.keys)})
            ->UseManualTime()
            ->Iterations(31);
}

/// Registers an operation: how its work is prepared, and the call, which is its floor on a Floor.
template <class Set, class Call>
void add(const std::string& name, const std::vector<Shape>& shapes, Set set, Call call) {
    compare(name, shapes, timed<Animation>(set, call), timed<Floor>(set, call));
}

template <class Push>
auto push_each(Push push) {
    return [push](auto& w) {
        for (const auto& [name, layer] : w.animation.layers)
            for (std::size_t i = 0; i < w.size; ++i)
                push(w, name);
    };
}

auto set_sizes(std::size_t part) {
    return [part](auto& w) {
        w.animation.introSize = w.animation.outroSize = w.inside(w.size / part);
    };
}

/// For each number of layers and of frames. What is counted there are values, not keys.
const std::vector<Shape> sampled = {{10000, 10000 * 60, 10000 * 60 / keyFrames},
                                    {8, 8 * 1000000, 8 * 1000000 / keyFrames},
                                    {512, 512 * 40000, 512 * 40000 / keyFrames},
                                    {1000, 1000 * 10000, 1000 * 10000 / keyFrames}};

std::set<unsigned int> cuts(std::size_t count, unsigned int frames) {
    std::set<unsigned int> result;
    for (std::size_t i = 1; i <= count; ++i)
        result.insert(unsigned(i * frames / (count + 1) + 1));
    return result;
}

void add_operations() {
    const auto clear = [](auto& w) {
        for (auto& [name, layer] : w.animation.layers)
            layer = std::decay_t<decltype(layer)>();
    };
    const auto leaveRoom = [](auto& w) {
        for (auto& [name, layer] : w.animation.layers)
            layer.reserve(2 * layer.size() + 16);
    };
    const auto giveOther = [](auto& w) { w.other = w.animation; };
    const auto pushKeys =
        push_each([](auto& w, auto& name) { w.animation.pushBackInLayer(name, w.key); });

    add("pushBackInLayer, one by one", shapes({1, 8}), clear, pushKeys);
    compare("pushBackInLayer, braces against a key", shapes({1, 8}),
            timed<Animation>(clear, push_each([](auto& w, auto& name) {
                                 w.animation.pushBackInLayer(name, Transition, {0, 1}, keyFrames);
                             })),
            timed<Animation>(clear, pushKeys));
    add("copy", shapes({1, 8, 1000, 10000}), asBuilt, copied);
    add("durationInFrames", shapes({1, 8}), asBuilt,
        [](auto& w) { w.animation.durationInFrames(); });
    add(
        "replaceInLayer, middle half", shapes({1, 8}),
        [=](auto& w) {
            leaveRoom(w);
            w.keys.assign(w.size / 2, w.key);
        },
        [](auto& w) {
            w.animation.replaceInLayer("layer0", w.inside(w.size / 4), w.frames(w.size / 2),
                                       w.keys);
        });
    add("insertInLayer, middle key", shapes({1, 8}), leaveRoom,
        [](auto& w) { w.animation.insertInLayer("layer0", w.key, w.inside(w.size / 2)); });
    add("removeInLayer, middle half", shapes({1, 8}), leaveRoom, [](auto& w) {
        w.animation.removeInLayer("layer0", w.inside(w.size / 4), w.frames(w.size / 2));
    });
    add(
        "overrideLayerWith, one run", shapes({1, 8}),
        [](auto& w) { w.keys.assign(w.size / 2, w.key); },
        [](auto& w) { w.animation.overrideLayerWith("layer0", w.keys, w.inside(w.size / 4)); });
    add(
        "overrideLayerWith, a run every 4 keys", shapes({1, 8}),
        [](auto& w) {
            for (std::size_t i = 0; i < w.size / 4; ++i)
                w.keys.insert(w.keys.end(), {w.key, w.wait});
        },
        [](auto& w) { w.animation.overrideLayerWith("layer0", w.keys, 3); });
    const auto giveHalf = [](auto& w) {
        for (const auto& [name, layer] : w.animation.layers)
            w.other.layers[name].assign(w.size / 2, w.key);
    };
    add("replace, middle half", shapes({8, 1000, 10000}), giveHalf,
        [](auto& w) { w.animation.replace(w.inside(w.size / 4), w.frames(w.size / 2), w.other); });
    add("insert", shapes({8, 1000, 10000}, 2), giveOther,
        [](auto& w) { w.animation.insert(w.other, w.inside(w.size / 2)); });
    const auto pushBack = [](auto& w) { w.animation.pushBack(w.other, true, true); };
    add("pushBack", shapes({8, 1000, 10000}, 2), giveOther, pushBack);
    add(
        "pushBack, room left", shapes({8}, 2),
        [=](auto& w) {
            giveOther(w);
            leaveRoom(w);
        },
        pushBack);
    add("remove, middle half", shapes({8, 1000, 10000}), asBuilt,
        [](auto& w) { w.animation.remove(w.inside(w.size / 4), w.frames(w.size / 2)); });
    add("overrideLayersWith, one run", shapes({8, 1000, 10000}), giveHalf,
        [](auto& w) { w.animation.overrideLayersWith(w.other, w.inside(w.size / 4)); });
    add("introBodyOutroLayers", shapes({1, 8}), set_sizes(4),
        [](auto& w) { w.animation.introBodyOutroLayers(w.parts[0], w.parts[1], w.parts[2]); });
    add("loop(2)", shapes({1000, 10000}, 2), asBuilt,
        [](auto& w) { w.results.push_back(w.animation.loop(2, false, false)); });
    add("loop(100)", shapes({1, 8}, 100), asBuilt,
        [](auto& w) { w.results.push_back(w.animation.loop(100, false, false)); });
    add("loop(100), intro and outro", shapes({1, 8}, 100), set_sizes(10),
        [](auto& w) { w.results.push_back(w.animation.loop(100, true, true)); });
    add("loop(10000), short body", shapes({1, 8}, 10000), set_sizes(10),
        [](auto& w) { w.results.push_back(w.animation.loop(10000, false, false)); });
    add("splitAt, one frame", shapes({1, 8, 1000, 10000}), asBuilt,
        [](auto& w) { w.results = w.animation.splitAt(w.inside(w.size / 2), true, true); });
    add("splitAt, 1000 frames", shapes({1, 8}), asBuilt,
        [](auto& w) { w.results = w.animation.splitAt(cuts(1000, w.frames(w.size)), true, true); });
    add("splitEach(100)", shapes({1, 8}), asBuilt,
        [](auto& w) { w.results = w.animation.splitEach(100, true, true); });
    const auto makeRoom = [](auto& w) {
        w.values.resize(w.animation.layers.size() * w.frames(w.size));
    };
    compare("sample", sampled,
            timed<Animation>(
                makeRoom,
                [](auto& w) { sample(w.animation.layers, 0, w.frames(w.size), w.values.data()); }),
            timed<Floor>(makeRoom,
                         [](auto& w) { w.animation.sample(w.frames(w.size), w.values.data()); }));
    add("AnimationKey::splitEach(1)", shapes({1}), asBuilt, [](auto& w) {
        w.key.duration = unsigned(w.size);
        w.keys = w.key.splitEach(1);
    });
    compare(
        "Rotation", {{8, 56, 56}},
        timed<Animation>(asBuilt, [](auto& w) { w.results.push_back(Rotation(1, 0, 2, 3, 1)); }),
        timed<Floor>(asBuilt,
                     [](auto& w) { w.results.push_back(std::move(Work<Floor>(8, 7).animation)); }));
}

} // namespace

int main(int argc, char** argv) {
    // Freed memory is kept, and there is enough from the start: else the page faults of fresh
    // memory cost more than what is measured. It is joined at once: else each call finds the
    // scattered pieces that the one before has left.
    mallopt(M_MMAP_MAX, 0);
    mallopt(M_TRIM_THRESHOLD, 2000000000);
    mallopt(M_MXFAST, 0);
    benchmark::DoNotOptimize(std::vector<char>(256 << 20).data());

    benchmark::Initialize(&argc, argv);
    add_operations();
    benchmark::RunSpecifiedBenchmarks();
}
