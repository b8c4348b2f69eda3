#include "Program.h"
#include "Text.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <malloc.h>
#include <new>
#include <random>

#ifdef _WIN32
#define malloc_usable_size _msize
#endif

namespace {

void* allocate(std::size_t size) noexcept {
    const bool fails = Kiv::memory.failAt > 0 && --Kiv::memory.failAt == 0;
    void* place = fails || size > Kiv::memory.largest ? nullptr : std::malloc(size);
    Kiv::memory.count += place != nullptr ? 1 : 0;
    Kiv::memory.inUse += place != nullptr ? malloc_usable_size(place) : 0;
    Kiv::memory.most = std::max(Kiv::memory.most, Kiv::memory.inUse);
    return place;
}

} // namespace

void* operator new(std::size_t size) {
    void* place = allocate(size);
    return place != nullptr ? place : throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}
#pragma GCC diagnostic ignored "-Wmismatched-new-delete" // both sides are here
void operator delete(void* place) noexcept {
    Kiv::memory.inUse -= place != nullptr ? malloc_usable_size(place) : 0;
    std::free(place);
}
void operator delete(void* place, std::size_t) noexcept {
    operator delete(place);
}

using namespace Kiv;

namespace {

/// Runs programs that come from their number alone; KIV_PROGRAMS sets how many, in thousands.
void expectPrograms(Check check, unsigned int thousandths, unsigned long leastCalls) {
    const char* wish = std::getenv("KIV_PROGRAMS");
    const double thousands = wish != nullptr ? std::strtod(wish, nullptr) : 10;
    unsigned long calls = 0;
    for (unsigned int seed = 0; seed < thousands * thousandths; ++seed) {
        std::mt19937 random(seed);
        std::vector<unsigned char> bytes(random() % 800);
        for (unsigned char& byte : bytes)
            byte = static_cast<unsigned char>(random());
        const std::string fault = run_program(bytes, check, calls);
        if (!fault.empty())
            FAIL() << "program " << seed << ": " << fault;
    }
    EXPECT_GT(static_cast<double>(calls), static_cast<double>(leastCalls) * thousands / 10);
    testing::Test::RecordProperty("calls", std::to_string(calls));
}

TEST(ProgramTest, PlaysLikeTheModelAtEveryFrame) {
    expectPrograms(Check::Frames, 1000, 100000);
}

TEST(ProgramTest, RunningOutOfMemoryChangesNothing) {
    expectPrograms(Check::Memory, 50, 5000);
}

// What matters is that each call comes back, and that the sanitizers have nothing to say.
TEST(ProgramTest, ExtremeArgumentsAreSafe) {
    memory.largest = 1 << 24;
    expectPrograms(Check::Extremes, 500, 50000);
    memory.largest = SIZE_MAX;
}

/// Layers "a", "b" and "c" of so many keys, and others, two of which have the same names.
struct Case {
    explicit Case(unsigned int size)
        : size(size), keys(size, AnimationKey({Hold, {1}}, 2)),
          it({{"a", keys}, {"b", keys}, {"c", keys}}, size, size / 2),
          other({{"b", keys}, {"c", keys}, {"e", keys}}, size, size / 2) {}

    unsigned int size;
    KeyVector keys;
    Animation it;
    Animation other;
    LayerMap intro, body, outro;
};

/// What the header promises of memory, with as much of it as there is taken.
TEST(ProgramTest, MemoryIsTakenForLayersAndNotForKeys) {
    const struct {
        const char* name;
        unsigned long allocations;
        double layers; ///< So many times the bytes of a layer.
        void (*call)(Case&);
    } rows[] = {
        {"questions", 0, 0,
         [](Case& c) {
             drop(c.it.empty());
             drop(c.it.hasLayer("d"));
             drop(c.it.outroStartFrame());
             drop(c.it.simulatedDurationInSeconds(c.it.durationInSeconds()));
         }},
        {"layer", 1, 1, [](Case& c) { drop(c.it.layer("a")); }},

        // An entry and its keys for each layer, and a list of totals.
        {"copy", 7, 3, [](Case& c) { Animation copy(c.it); }},
        {"loop(5)", 10, 16.2, [](Case& c) { drop(c.it.loop(5, true, true)); }},
        {"loop(0)", 9, 3, [](Case& c) { drop(c.it.loop(0, true, true)); }},
        {"splitAt", 14, 3, [](Case& c) { drop(c.it.splitAt(c.size, true, true)); }},
        {"splitEach", 20, 3, [](Case& c) { drop(c.it.splitEach(c.size, true, true)); }},
        {"introBodyOutroLayers", 18, 3,
         [](Case& c) { c.it.introBodyOutroLayers(c.intro, c.body, c.outro); }},

        // The layer, which grows as a vector does; and an entry, if it is created.
        {"fillInLayer", 1, 2, [](Case& c) { c.it.fillInLayer("a", 2 * c.size + 1); }},
        {"insertInLayer", 1, 2, [](Case& c) { c.it.insertInLayer("a", Hold, {2}, 5, c.size); }},
        {"pushBackInLayer", 1, 2, [](Case& c) { c.it.pushBackInLayer("a", c.it.layers["a"]); }},
        {"replaceInLayer", 0, 0,
         [](Case& c) { c.it.replaceInLayer("a", 3, 9, c.it.layers["b"][0]); }},
        {"removeInLayer", 0, 0, [](Case& c) { c.it.removeInLayer("a", 1, c.size); }},
        {"overrideLayerWith", 1, 2,
         [](Case& c) { c.it.overrideLayerWith("a", c.it.layers["b"], c.size); }},
        {"overrideLayerWith, one key", 2, 1,
         [](Case& c) { c.it.overrideLayerWith("a", AnimationKey(NoValue, 3), c.size); }},
        {"a new layer", 2, 1, [](Case& c) { c.it.insertInLayer("d", c.it.layers["a"], 0); }},

        // Each of four layers, and lists of totals and of edits.
        {"replace", 6, 8, [](Case& c) { c.it.replace(c.size, 0, std::move(c.other)); }},
        {"insert", 6, 8, [](Case& c) { c.it.insert(std::move(c.other), c.size); }},
        {"pushBack", 7, 8, [](Case& c) { c.it.pushBack(std::move(c.other), true, true); }},
        {"pushBack, cut", 6, 4, [](Case& c) { c.it.pushBack(std::move(c.other), false, false); }},
        {"remove", 1, 0, [](Case& c) { c.it.remove(1, c.size); }},
        {"overrideLayersWith", 6, 5, [](Case& c) { c.it.overrideLayersWith(c.other, c.size); }},
        // And a longer copy of each layer of it that has to be filled.
        {"insert one to fill", 8, 9,
         [](Case& c) {
             c.other.layers["e"].push_back(AnimationKey(Wait, 1));
             c.it.insert(std::move(c.other), c.size);
         }},
        // And a copy of the other animation.
        {"insert a copy", 13, 11, [](Case& c) { c.it.insert(c.other, c.size); }},
    };
    for (const auto& row : rows)
        for (const unsigned int size : {100U, 10000U}) {
            Case c(size);
            const std::size_t before = memory.inUse;
            memory.most = before;
            memory.count = 0;
            row.call(c);
            const unsigned long allocations = memory.count; // printing allocates too
            const std::size_t bytes = memory.most - before;
            EXPECT_LE(allocations, row.allocations) << row.name << " of " << size;
            EXPECT_LE(bytes, row.layers * 20 * size + 9000) << row.name << " of " << size;
        }
}

/// Appended piece by piece, keys are moved to other memory a few times, and not once a piece.
TEST(ProgramTest, MemoryGrowsInFewSteps) {
    const Animation piece = animation("a: H1:3 H2:3 H3:3 | 3 3");
    Animation it;
    memory.count = 0;
    for (int i = 0; i < 1000; ++i)
        it.pushBackInLayer("a", piece.layers.at("a"));
    EXPECT_LE(memory.count, 12U);
    LayerMap intro;
    LayerMap body;
    LayerMap outro;
    memory.count = 0;
    for (int i = 0; i < 1000; ++i)
        piece.introBodyOutroLayers(intro, body, outro);
    EXPECT_LE(memory.count, 36U);
}

} // namespace
