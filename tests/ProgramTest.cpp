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

/// Three layers of as many keys each; memory is counted in copies of the animation.
TEST(ProgramTest, MemoryIsTakenForLayersAndNotForKeys) {
    for (const unsigned int size : {100U, 10000U}) {
        Animation it, other;
        for (const char* name : {"a", "b", "c"})
            it.layers[name].assign(size, AnimationKey({Hold, {1}}, 2));
        const auto expect = [size](unsigned long allocations, double copies, const auto& call) {
            const std::size_t before = memory.most = memory.inUse;
            memory.count = 0;
            call();
            EXPECT_LE(memory.count, allocations) << copies;
            EXPECT_LE(memory.most - before, copies * 64 * size + 5000) << allocations;
        };
        expect(0, 0, [&] { it.outroStartFrame(), it.durationInSeconds(); });
        expect(6, 1, [&] { other = it; });
        expect(14, 1, [&] { it.splitAt(size, true, true); });
        LayerMap maps[3];
        expect(18, 1, [&] { it.introBodyOutroLayers(maps[0], maps[1], maps[2]); });
        expect(8, 5.4, [&] { it.loop(5, false, false); });
        expect(1, 1,
               [&] { it.insertInLayer("a", Hold, {2}, 5, size), it.removeInLayer("a", 0, 5); });
        expect(1, 2 / 3.0, [&] { it.overrideLayerWith("b", it.layers["c"], size); });
        expect(5, 3, [&] { it.overrideLayersWith(other, size); });
        expect(4, 5, [&] { it.pushBack(std::move(other), true, true); });
    }
}

} // namespace
