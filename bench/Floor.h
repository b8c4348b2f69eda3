#pragma once

#include <animationmodel/AnimationKeyCommand.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <map>
#include <set>
#include <span>
#include <string>
#include <utility>
#include <vector>

/// Frames of every key.
constexpr unsigned int keyFrames = 10;

/// A key without a library.
struct PlainKey {
    int effect;
    unsigned int count;
    float values[2];
    unsigned int duration;

    std::vector<PlainKey> splitEach(unsigned int /*step*/) const {
        return std::vector<PlainKey>(duration, *this);
    }
};
using Row = std::vector<PlainKey>;
using RowMap = std::map<std::string, Row>;

inline void scan(std::span<const PlainKey> keys) {
    unsigned int frames = 0; // eight at a time: faster than what compilers make of a loop
    for (; keys.size() >= 8; keys = keys.subspan(8))
        frames += ((keys[0].duration + keys[1].duration) + (keys[2].duration + keys[3].duration)) +
                  ((keys[4].duration + keys[5].duration) + (keys[6].duration + keys[7].duration));
    for (const PlainKey& key : keys)
        frames += key.duration;
    benchmark::DoNotOptimize(frames);
}

inline Row& added(RowMap& rows, const std::string& name) {
    return rows.emplace_hint(rows.end(), name, Row())->second;
}

inline void append(Row& out, const Row& row, std::size_t from, std::size_t to) {
    out.insert(out.end(), row.data() + from, row.data() + to);
}

inline void insert_at(Row& row, std::size_t place, std::span<const PlainKey> keys) {
    row.insert(row.begin() + static_cast<long>(place), keys.begin(), keys.end());
}

inline void erase(Row& row, std::size_t from, std::size_t to) {
    row.erase(row.begin() + static_cast<long>(from), row.begin() + static_cast<long>(to));
}

/// With keys over those from `place` on, and one more, for the key that is cut at their end.
inline void replace_at(Row& row, std::size_t place, const Row& keys) {
    const PlainKey cut = row[place];
    insert_at(row, place + keys.size(), {&cut, 1});
    std::copy(keys.begin(), keys.end(), row.begin() + static_cast<long>(place) + 1);
}

/// An animation that only does the memory work: an operation reads the durations that it has to
/// know, and makes room, copies or moves as many keys as the result asks for. All rows are equally
/// long.
struct Floor {
    void pushBackInLayer(const std::string& name, const PlainKey& key) {
        layers.find(name)->second.push_back(key);
    }
    void durationInFrames() const {
        for (const auto& [name, row] : layers)
            scan(row);
    }
    void replaceInLayer(const std::string& name, unsigned int start, unsigned int count,
                        const Row& keys) {
        Row& row = layers.find(name)->second;
        scan({row.data(), (start + count) / keyFrames});
        replace_at(row, start / keyFrames, keys);
    }
    void insertInLayer(const std::string& name, const PlainKey& key, unsigned int frame) {
        Row& row = layers.find(name)->second;
        const PlainKey keys[] = {key, key}; // it, and the other half of the key that it cuts
        scan({row.data(), frame / keyFrames});
        insert_at(row, frame / keyFrames, keys);
    }
    void removeInLayer(const std::string& name, unsigned int start, unsigned int count) {
        Row& row = layers.find(name)->second;
        scan({row.data(), (start + count) / keyFrames});
        erase(row, start / keyFrames, (start + count) / keyFrames);
    }
    /// With keys that wait, each fourth key is followed by one that overrides.
    static void override_row(Row& row, const Row& keys) {
        const bool waits = std::ranges::find(keys, int{Kiv::Wait}, &PlainKey::effect) != keys.end();
        const std::size_t run = waits ? 4 : row.size();
        scan(keys);
        Row result;
        result.reserve(row.size() + row.size() / run + 1);
        for (std::size_t i = 0; i + run <= row.size(); i += run) {
            append(result, row, i, i + run);
            append(result, row, i, i + waits);
        }
        row.swap(result);
    }
    void overrideLayerWith(const std::string& name, const Row& keys, unsigned int /*frame*/) {
        durationInFrames();
        override_row(layers.find(name)->second, keys);
    }
    void replace(unsigned int start, unsigned int /*count*/, Floor other) {
        durationInFrames();
        for (auto replacing = other.layers.begin(); auto& [name, row] : layers)
            replace_at(row, start / keyFrames, replacing++->second);
    }
    void insert(Floor other, unsigned int frame) {
        durationInFrames();
        for (auto inserted = other.layers.begin(); auto& [name, row] : layers)
            insert_at(row, frame / keyFrames, inserted++->second);
    }
    void pushBack(Floor other, bool /*keepOutro*/, bool /*keepIntro*/) {
        insert(std::move(other), unsigned(size() * keyFrames));
    }
    void remove(unsigned int start, unsigned int count) {
        durationInFrames();
        for (auto& [name, row] : layers)
            erase(row, start / keyFrames, (start + count) / keyFrames);
    }
    void overrideLayersWith(const Floor& other, unsigned int /*frame*/) {
        durationInFrames();
        for (auto overriding = other.layers.begin(); auto& [name, row] : layers)
            override_row(row, overriding++->second);
    }
    void introBodyOutroLayers(RowMap& intro, RowMap& body, RowMap& outro) const {
        const std::size_t end = introSize / keyFrames;
        for (const auto& [name, row] : layers) {
            scan(row);
            append(added(intro, name), row, 0, end);
            append(added(body, name), row, end, row.size() - end);
            append(added(outro, name), row, row.size() - end, row.size());
        }
    }
    /// Bodies with intro and outro around them have two more halves of keys that were cut.
    Floor loop(unsigned int times, bool around, bool /*repeatOutro*/) const {
        Floor result;
        const std::size_t begin = around ? 0 : introSize / keyFrames, halves = around ? 2 : 0;
        for (const auto& [name, row] : layers) {
            scan(row);
            Row& out = added(result.layers, name);
            out.reserve(2 * begin + times * (row.size() - 2 * begin + halves) + 2);
            append(out, row, 0, begin);
            for (unsigned int i = 0; i < times; ++i) {
                append(out, row, begin, row.size() - begin);
                append(out, row, 0, halves);
            }
            append(out, row, row.size() - begin, row.size());
        }
        return result;
    }
    /// Pieces of `step` keys.
    std::vector<Floor> split(std::size_t step) const {
        std::vector<Floor> pieces(size() / step + 1);
        for (const auto& [name, row] : layers) {
            scan(row);
            for (std::size_t i = 0; i < pieces.size(); ++i)
                append(added(pieces[i].layers, name), row, std::min(i * step, row.size()),
                       std::min((i + 1) * step, row.size()));
        }
        return pieces;
    }
    std::vector<Floor> splitAt(unsigned int frame, bool, bool) const {
        return split(frame / keyFrames + 1);
    }
    std::vector<Floor> splitAt(const std::set<unsigned int>& frames, bool, bool) const {
        return split(std::max<std::size_t>(1, size() / frames.size()));
    }
    std::vector<Floor> splitEach(unsigned int step, bool, bool) const {
        return split(step / keyFrames);
    }
    /// A plain loop over the keys of one layer after another.
    void sample(unsigned int count, float* place) const {
        for (const auto& [name, row] : layers) {
            float* value = place++;
            unsigned int left = count;
            for (const PlainKey& key : row) {
                const unsigned int frames = std::min(key.duration, left);
                for (unsigned int i = 0; i < frames; ++i, value += layers.size())
                    *value = static_cast<float>(i) * (key.values[1] - key.values[0]) /
                                 static_cast<float>(key.duration) +
                             key.values[0];
                left -= frames;
            }
        }
    }
    std::size_t size() const { return layers.begin()->second.size(); }

    RowMap layers;
    unsigned int introSize = 0, outroSize = 0;
};
