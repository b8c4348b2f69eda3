#include "Program.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <new>
#include <random>

void* operator new(std::size_t size) {
    ++Kiv::memory.count;
    const bool fails = Kiv::memory.failAt > 0 && --Kiv::memory.failAt == 0;
    void* place = fails || size > Kiv::memory.largest ? nullptr : std::malloc(size);
    return place != nullptr ? place : throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return std::malloc(size);
}
#pragma GCC diagnostic ignored "-Wmismatched-new-delete" // both sides are here
void operator delete(void* place) noexcept {
    std::free(place);
}
void operator delete(void* place, std::size_t) noexcept {
    std::free(place);
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

} // namespace
