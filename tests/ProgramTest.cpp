#include "Program.h"

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
        ASSERT_EQ(run_program(bytes, check, calls), "") << "program " << seed;
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

/// What the header promises of operations on three layers of as many keys each: how often it
/// allocates, and how much it takes at most at once, in copies of the animation.
TEST(ProgramTest, MemoryIsTakenForLayersAndNotForKeys) {
    for (const unsigned int size : {100U, 10000U}) {
        const KeyVector keys(size, AnimationKey({Hold, {1}}, 2));
        const Animation abc({{"a", keys}, {"b", keys}, {"c", keys}}, size, size / 2);
        const Animation bce({{"b", keys}, {"c", keys}, {"e", keys}}, size, size / 2);
        Animation it, other;
        const auto expect = [&](unsigned long allocations, double copies, const auto& call) {
            it = abc, other = bce;
            const std::size_t before = memory.most = memory.inUse;
            memory.count = 0;
            call();
            const unsigned long count = memory.count; // before printing allocates
            const std::size_t most = memory.most - before;
            EXPECT_LE(count, allocations) << copies;
            EXPECT_LE(most, copies * 60 * size + 9000) << allocations;
        };
        expect(0, 0, [&] { it.empty(), it.hasLayer("d"), it.outroStartFrame(); });
        expect(0, 0, [&] { it.durationInSeconds(), it.simulatedDurationInSeconds(1); });
        expect(0, 0, [&] { it.setFPSToFitDurationInSeconds(1), it.reset(); });
        expect(1, 1 / 3.0, [&] { it.layer("a"); });
        // An entry and its keys for each layer; lists; one buffer.
        expect(7, 1, [&] { Animation copy(it); });
        expect(7, 1, [&] { Animation(it.layers, 1, 1); });
        expect(9, 1, [&] { it.loop(0, true, true); });
        expect(9, 5.4, [&] { it.loop(5, true, true); });
        expect(9, 5 / 3.0, [&] { it.loop(2, false, true); });
        expect(14, 1, [&] { it.splitAt(size, true, true); });
        expect(20, 1, [&] { it.splitEach(size, true, true); });
        LayerMap maps[3];
        expect(18, 1, [&] { it.introBodyOutroLayers(maps[0], maps[1], maps[2]); });
        // Once, and once for a layer that is created. Layers grow as vectors do, to twice the size.
        expect(1, 2 / 3.0, [&] { it.fillInLayer("a", 2 * size + 1); });
        expect(1, 2 / 3.0, [&] { it.insertInLayer("a", Hold, {2}, 5, size); });
        expect(1, 2 / 3.0, [&] { it.pushBackInLayer("a", it.layers["a"]); });
        expect(0, 0, [&] { it.removeInLayer("a", 1, size); });
        expect(1, 2 / 3.0, [&] { it.overrideLayerWith("a", it.layers["b"], size); });
        expect(2, 1 / 3.0, [&] { it.insertInLayer("d", it.layers["a"], 0); });
        // Once for each of four layers at most, once for one that is created, and lists.
        expect(6, 8 / 3.0, [&] { it.insert(std::move(other), size); });
        expect(7, 8 / 3.0, [&] { it.pushBack(std::move(other), true, true); });
        expect(6, 4 / 3.0, [&] { it.pushBack(std::move(other), false, false); });
        expect(1, 0, [&] { it.remove(1, size); });
        expect(6, 5 / 3.0, [&] { it.overrideLayersWith(other, size); });
    }
}

} // namespace
