// Times every operation against its floor: the plain memory work it cannot avoid, done over rows of
// a bare 20-byte struct. Prints one table in the end.

#include <animationmodel/Rotation.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <malloc.h>
#include <map>
#include <new>
#include <string>
#include <vector>

namespace {

std::size_t allocations = 0;

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

/// A key without a library.
struct Plain {
    int effect;
    unsigned int count;
    float values[2];
    unsigned int duration;
};
static_assert(sizeof(Plain) == sizeof(AnimationKey));
using PlainRow = std::vector<Plain>;
using PlainMap = std::map<std::string, PlainRow>;

constexpr unsigned int keyFrames = 10;
constexpr Plain plainKey{Transition, 2, {0, 1}, keyFrames};

const AnimationKey& anyKey() {
    static const AnimationKey key({Transition, {0, 1}}, keyFrames);
    return key;
}

std::string layerName(std::size_t index) {
    return "layer" + std::to_string(index);
}

unsigned int scan(const PlainRow& row, std::size_t count) {
    unsigned int frames = 0;
    const Plain* key = row.data(); // eight at a time: faster than what compilers make of a loop
    for (; count >= 8; count -= 8, key += 8)
        frames += ((key[0].duration + key[1].duration) + (key[2].duration + key[3].duration)) +
                  ((key[4].duration + key[5].duration) + (key[6].duration + key[7].duration));
    for (; count > 0; --count, ++key)
        frames += key->duration;
    return frames;
}

unsigned int scan(const PlainMap& rows) {
    unsigned int longest = 0;
    for (const auto& [name, row] : rows)
        longest = std::max(longest, scan(row, row.size()));
    return longest;
}

/// What so many overriding keys are read for: where they wait, and how long they last.
void readOverriding(const PlainRow& row, std::size_t count) {
    benchmark::DoNotOptimize(
        std::ranges::find_if(row.begin(), row.begin() + static_cast<long>(count),
                             [](const Plain& key) { return key.effect == Wait; }));
    benchmark::DoNotOptimize(scan(row, count));
}

PlainRow& added(PlainMap& rows, const std::string& name) {
    return rows.emplace_hint(rows.end(), name, PlainRow())->second;
}

void append(PlainRow& out, const PlainRow& row, std::size_t from, std::size_t to) {
    const auto begin = row.begin();
    out.insert(out.end(), begin + static_cast<long>(from), begin + static_cast<long>(to));
}

/// The key in the middle of a layer of so many, and a frame inside it.
struct Middle {
    explicit Middle(std::size_t keys)
        : key(keys / 2), frame(static_cast<unsigned int>(key) * keyFrames + 3) {}
    std::size_t key;
    unsigned int frame;
};

/// What one call works on, for the library and for the floor, and where it leaves its results.
struct Work {
    Animation animation, other;
    PlainMap plain, plainOther;
    std::vector<Animation> pieces;
    LayerMap maps[3];
    std::vector<PlainMap> results;
    KeyVector keys;
    PlainRow row;
    std::size_t perLayer = 0;

    Work(std::size_t size, std::size_t layers) : perLayer(size / layers) {
        for (std::size_t i = 0; i < layers; ++i) {
            animation.layers[layerName(i)].assign(perLayer, anyKey());
            plain[layerName(i)].assign(perLayer, plainKey);
        }
    }
    KeyVector& layer() { return animation.layers.begin()->second; }
    PlainRow& plainLayer() { return plain.begin()->second; }
};

/// One operation: how its work is set up, the call, its floor and the keys that it reads or writes.
struct Operation {
    std::string name;
    std::function<void(Work&)> set;
    std::function<void(Work&)> call;
    std::function<void(Work&)> floor;
    std::size_t divisor = 1; ///< The source has 1/divisor of the keys of the result.
    bool eightOnly = false;
};

void nothing(Work& /*work*/) {}

void giveOther(Work& work) {
    work.other = work.animation;
    work.plainOther = work.plain;
}

void leaveRoom(Work& work) {
    for (auto& [name, layer] : work.animation.layers)
        layer.reserve(2 * layer.size() + 16);
    for (auto& [name, row] : work.plain)
        row.reserve(2 * row.size() + 16);
}

std::function<void(Work&)> loopFloor(std::size_t times, bool ends, std::size_t pieces = 0) {
    return [times, ends, pieces](Work& work) {
        PlainMap result;
        for (const auto& [name, row] : work.plain) {
            benchmark::DoNotOptimize(scan(row, row.size()));
            PlainRow& out = added(result, name);
            const std::size_t end = ends ? row.size() / 10 : 0;
            const std::size_t body = row.size() - 2 * end;
            out.reserve(2 * end + times * (body + pieces) + 2);
            append(out, row, 0, end);
            for (std::size_t i = 0; i < times; ++i) {
                append(out, row, end, end + body);
                append(out, row, 0, pieces); // the other halves of keys that are cut
            }
            append(out, row, end + body, row.size());
        }
        work.results.push_back(std::move(result));
    };
}

std::function<void(Work&)> splitFloor(const std::function<std::size_t(std::size_t)>& stepOf) {
    return [stepOf](Work& work) {
        const std::size_t step = stepOf(work.perLayer);
        const std::size_t pieces = work.perLayer / step + 1;
        work.results.resize(pieces);
        for (const auto& [name, row] : work.plain) {
            benchmark::DoNotOptimize(scan(row, row.size()));
            for (std::size_t i = 0; i < pieces; ++i)
                append(added(work.results[i], name), row, std::min(i * step, row.size()),
                       std::min((i + 1) * step, row.size()));
        }
    };
}

std::set<unsigned int> cuts(std::size_t count, std::size_t keys) {
    std::set<unsigned int> frames;
    const std::size_t frameCount = keys * keyFrames;
    for (std::size_t i = 1; i <= count; ++i)
        frames.insert(static_cast<unsigned int>(i * frameCount / (count + 1) + 1));
    return frames;
}

std::vector<Operation> operations() {
    std::vector<Operation> all;
    const auto add = [&](Operation operation) { all.push_back(std::move(operation)); };

    add({"pushBackInLayer, one by one",
         [](Work& w) {
             for (auto& [name, layer] : w.animation.layers)
                 layer = KeyVector();
             for (auto& [name, row] : w.plain)
                 row = PlainRow();
         },
         [](Work& w) {
             for (auto& [name, layer] : w.animation.layers)
                 for (std::size_t i = 0; i < w.perLayer; ++i)
                     w.animation.pushBackInLayer(name, anyKey());
         },
         [](Work& w) {
             for (auto& [name, row] : w.plain)
                 for (std::size_t i = 0; i < w.perLayer; ++i)
                     w.plain.find(name)->second.push_back(plainKey);
         }});
    add({"copy", nothing, [](Work& w) { w.pieces.emplace_back(w.animation); },
         [](Work& w) { w.results.emplace_back(w.plain); }});
    add({"durationInFrames", nothing,
         [](Work& w) { benchmark::DoNotOptimize(w.animation.durationInFrames()); },
         [](Work& w) { benchmark::DoNotOptimize(scan(w.plain)); }});
    add({"insertInLayer, middle key", leaveRoom,
         [](Work& w) { w.animation.insertInLayer("layer0", anyKey(), Middle(w.perLayer).frame); },
         [](Work& w) {
             PlainRow& row = w.plainLayer();
             const std::size_t middle = Middle(w.perLayer).key;
             benchmark::DoNotOptimize(scan(row, middle));
             row.insert(row.begin() + static_cast<long>(middle), 2, plainKey);
         }});
    add({"removeInLayer, middle half", leaveRoom,
         [](Work& w) {
             const auto half = static_cast<unsigned int>(w.perLayer / 2) * keyFrames;
             w.animation.removeInLayer("layer0", half / 2 + 3, half);
         },
         [](Work& w) {
             PlainRow& row = w.plainLayer();
             const auto quarter = static_cast<long>(w.perLayer / 4);
             benchmark::DoNotOptimize(scan(row, w.perLayer * 3 / 4));
             row.erase(row.begin() + quarter, row.begin() + 3 * quarter);
         }});
    add({"overrideLayerWith, one run", [](Work& w) { w.keys.assign(w.perLayer / 2, anyKey()); },
         [](Work& w) {
             w.animation.overrideLayerWith("layer0", w.keys, Middle(w.perLayer / 2).frame);
         },
         [](Work& w) {
             benchmark::DoNotOptimize(scan(w.plain));
             readOverriding(w.plainLayer(), w.perLayer / 2);
             PlainRow& row = w.plainLayer();
             PlainRow result;
             result.reserve(row.size() + 2);
             append(result, row, 0, row.size());
             row.swap(result);
         }});
    add({"overrideLayerWith, N/4 runs",
         [](Work& w) {
             w.keys.assign(w.perLayer / 2, anyKey());
             for (std::size_t i = 1; i < w.keys.size(); i += 2)
                 w.keys[i] = AnimationKey(Wait, keyFrames);
         },
         [](Work& w) { w.animation.overrideLayerWith("layer0", w.keys, 3); },
         [](Work& w) {
             benchmark::DoNotOptimize(scan(w.plain));
             readOverriding(w.plainLayer(), w.perLayer / 2);
             PlainRow& row = w.plainLayer();
             PlainRow result;
             result.reserve(row.size() * 5 / 4);
             for (std::size_t i = 0; i + 4 <= row.size(); i += 4) {
                 append(result, row, i, i + 4);
                 append(result, row, i, i + 1);
             }
             row.swap(result);
         }});
    add({"insert", giveOther,
         [](Work& w) { w.animation.insert(w.other, Middle(w.perLayer).frame); },
         [](Work& w) {
             const PlainMap other = w.plainOther;
             benchmark::DoNotOptimize(scan(w.plain));
             for (auto& [name, row] : w.plain) {
                 const std::size_t middle = Middle(w.perLayer).key;
                 PlainRow result;
                 result.reserve(2 * row.size() + 2);
                 append(result, row, 0, middle);
                 append(result, other.find(name)->second, 0, row.size());
                 append(result, row, middle, row.size());
                 row.swap(result);
             }
         },
         2, true});
    add({"pushBack",
         [](Work& w) {
             giveOther(w);
             leaveRoom(w);
         },
         [](Work& w) { w.animation.pushBack(w.other, true, true); },
         [](Work& w) {
             const PlainMap other = w.plainOther;
             benchmark::DoNotOptimize(scan(w.plain));
             for (auto& [name, row] : w.plain)
                 append(row, other.find(name)->second, 0, row.size());
         },
         2, true});
    add({"remove, middle half", nothing,
         [](Work& w) {
             const auto half = static_cast<unsigned int>(w.perLayer / 2) * keyFrames;
             w.animation.remove(half / 2 + 3, half);
         },
         [](Work& w) {
             benchmark::DoNotOptimize(scan(w.plain));
             for (auto& [name, row] : w.plain) {
                 const auto quarter = static_cast<long>(w.perLayer / 4);
                 row.erase(row.begin() + quarter, row.begin() + 3 * quarter);
             }
         },
         1, true});
    add({"overrideLayersWith, one run",
         [](Work& w) {
             giveOther(w);
             for (auto& [name, layer] : w.other.layers)
                 layer.resize(w.perLayer / 2, anyKey());
         },
         [](Work& w) { w.animation.overrideLayersWith(w.other, Middle(w.perLayer / 2).frame); },
         [](Work& w) {
             benchmark::DoNotOptimize(scan(w.plain));
             for (auto& [name, row] : w.plain) {
                 readOverriding(row, row.size() / 2);
                 PlainRow result;
                 result.reserve(row.size() + 2);
                 append(result, row, 0, row.size());
                 row.swap(result);
             }
         },
         1, true});
    add({"introBodyOutroLayers",
         [](Work& w) {
             w.animation.introSize = Middle(w.perLayer / 2).frame;
             w.animation.outroSize = w.animation.introSize;
         },
         [](Work& w) { w.animation.introBodyOutroLayers(w.maps[0], w.maps[1], w.maps[2]); },
         [](Work& w) {
             w.results.resize(3);
             for (const auto& [name, row] : w.plain) {
                 benchmark::DoNotOptimize(scan(row, row.size()));
                 const std::size_t quarter = row.size() / 4;
                 append(added(w.results[0], name), row, 0, quarter);
                 append(added(w.results[1], name), row, quarter, row.size() - quarter);
                 append(added(w.results[2], name), row, row.size() - quarter, row.size());
             }
         }});
    add({"loop(100)", nothing,
         [](Work& w) { w.pieces.push_back(w.animation.loop(100, false, false)); },
         loopFloor(100, false), 100});
    add({"loop(100), intro and outro",
         [](Work& w) {
             w.animation.introSize = Middle(w.perLayer / 5).frame;
             w.animation.outroSize = w.animation.introSize;
         },
         [](Work& w) { w.pieces.push_back(w.animation.loop(100, true, true)); },
         loopFloor(100, false, 2), 100});
    add({"loop(10000), short body",
         [](Work& w) {
             w.animation.introSize = w.animation.durationInFrames() / 10 + 1;
             w.animation.outroSize = w.animation.introSize;
         },
         [](Work& w) {
             const auto count = static_cast<unsigned int>(10000);
             w.pieces.push_back(w.animation.loop(count, false, false));
         },
         loopFloor(10000, true), 10000});
    add({"splitAt, one frame", nothing,
         [](Work& w) { w.pieces = w.animation.splitAt(Middle(w.perLayer).frame, true, true); },
         splitFloor([](std::size_t keys) { return keys / 2 + 1; })});
    add({"splitAt, 1000 frames", nothing,
         [](Work& w) { w.pieces = w.animation.splitAt(cuts(1000, w.perLayer), true, true); },
         [](Work& w) {
             benchmark::DoNotOptimize(cuts(1000, w.perLayer));
             const std::size_t step = std::max<std::size_t>(1, w.perLayer / 1000);
             splitFloor([step](std::size_t) { return step; })(w);
         }});
    add({"splitEach(100)", nothing,
         [](Work& w) { w.pieces = w.animation.splitEach(100, true, true); },
         splitFloor([](std::size_t) { return 100 / keyFrames; })});
    add({"AnimationKey::splitEach(1)", nothing,
         [](Work& w) {
             w.keys = AnimationKey({Transition, {0, 1}}, static_cast<unsigned int>(w.perLayer))
                          .splitEach(1);
         },
         [](Work& w) { w.row = PlainRow(w.perLayer, plainKey); }});
    add({"Rotation", nothing, [](Work& w) { w.pieces.push_back(Rotation(1, 0, 2, 3, 1)); },
         [](Work& w) {
             PlainMap result;
             for (std::size_t i = 0; i < 8; ++i)
                 added(result, layerName(i)).assign(7, plainKey);
             w.results.push_back(std::move(result));
         }});
    return all;
}

/// Times batches of calls, each on work of its own that is set up and torn down off the clock.
void measure(benchmark::State& state, const Operation& operation, bool library, std::size_t size,
             std::size_t layers) {
    const std::size_t sourceSize = std::max(size / operation.divisor, 10 * layers);
    const std::size_t batch = std::clamp<std::size_t>(10000 / size, 1, 10);
    const auto& call = library ? operation.call : operation.floor;
    std::size_t counted = 0;
    for (auto _ : state) {
        std::vector<Work> works;
        works.reserve(batch);
        for (std::size_t i = 0; i < batch; ++i) {
            operation.set(works.emplace_back(sourceSize, layers));
            works.back().pieces.reserve(1);
            works.back().results.reserve(1);
        }
        const std::size_t before = allocations;
        const auto start = std::chrono::steady_clock::now();
        for (Work& work : works)
            call(work);
        const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
        counted = (allocations - before) / batch;
        state.SetIterationTime(time.count() / static_cast<double>(batch));
    }
    state.counters["allocations"] = static_cast<double>(counted);
}

/// Keeps the medians, and prints them as one table.
class Table : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context& /*context*/) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs)
            if (run.run_type == Run::RT_Iteration)
                keep(run);
        std::fputc('.', stderr);
    }
    void keep(const Run& run) {
        times[run.run_name.function_name].push_back(run.GetAdjustedRealTime());
        counts[run.run_name.function_name] = run.counters.at("allocations");
    }
    void print(const std::vector<Operation>& all, const std::vector<std::size_t>& sizes);

    double median(const std::string& name) {
        auto& values = times.at(name);
        std::ranges::sort(values);
        return values[values.size() / 2];
    }

    std::map<std::string, std::vector<double>> times; ///< Nanoseconds per call.
    std::map<std::string, double> counts;
};

std::string nameOf(const Operation& operation, bool library, std::size_t size, std::size_t layers) {
    return operation.name + (library ? " library " : " floor ") + std::to_string(size) + " " +
           std::to_string(layers);
}

/// Growth is the exponent between the two largest numbers of keys: 1 is linear. It grows where the
/// caches end, for the floor as for the library.
void Table::print(const std::vector<Operation>& all, const std::vector<std::size_t>& sizes) {
    std::printf("\n%-28s %6s %8s %11s %7s %6s %7s %7s %7s\n", "operation", "layers", "keys",
                "ns/call", "ns/key", "ratio", "allocs", "growth", "floor's");
    for (const Operation& operation : all)
        for (const std::size_t layers : {1, 8}) {
            double last = 0, lastFloor = 0;
            for (const std::size_t size : sizes) {
                const std::string name = nameOf(operation, true, size, layers);
                if (!times.contains(name))
                    continue;
                const double time = median(name);
                const double floor = median(nameOf(operation, false, size, layers));
                std::printf("%-28s %6zu %8zu %11.0f %7.3f %6.2f %7.0f", operation.name.c_str(),
                            layers, size, time, time / static_cast<double>(size), time / floor,
                            counts[name]);
                if (last > 0 && size == sizes.back())
                    std::printf(" %7.2f %7.2f", std::log10(time / last),
                                std::log10(floor / lastFloor));
                std::printf("\n");
                last = time;
                lastFloor = floor;
            }
        }
}

} // namespace

int main(int argc, char** argv) {
    // Freed memory is kept: else the page faults of fresh memory cost more than what is measured.
    mallopt(M_MMAP_MAX, 0);
    mallopt(M_TRIM_THRESHOLD, 2000000000);
    mallopt(M_TOP_PAD, 64 << 20);

    benchmark::Initialize(&argc, argv);
    const std::vector<std::size_t> sizes{1000, 10000, 100000, 1000000};
    const std::vector<Operation> all = operations();
    for (const Operation& operation : all)
        for (const std::size_t layers : {1, 8}) {
            if (operation.eightOnly && layers == 1)
                continue;
            for (const std::size_t size : sizes)
                for (const bool library : {true, false})
                    benchmark::RegisterBenchmark(
                        nameOf(operation, library, size, layers).c_str(),
                        [&operation, library, size, layers](benchmark::State& state) {
                            measure(state, operation, library, size, layers);
                        })
                        ->UseManualTime();
        }
    Table table;
    benchmark::RunSpecifiedBenchmarks(&table);
    table.print(all, sizes);
}
