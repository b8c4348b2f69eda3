// One thread edits while another one plays, which allocates and frees nothing. The thread sanitizer
// has nothing to say.

#include "live.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <thread>

static thread_local unsigned long allocations = 0; ///< And how often memory was freed.

void* operator new(std::size_t size) {
    ++allocations;
    if (void* memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}
#pragma GCC diagnostic ignored "-Wmismatched-new-delete" // both sides are here
void operator delete(void* memory) noexcept {
    ++allocations;
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    operator delete(memory);
}

using namespace Kiv;

int main() {
    constexpr float last = 300;
    Animation show({{"a", {{{Transition, {0, -1}}, 50}}}}, 2, 3);
    Playhead head(show);
    Handover handover;
    std::atomic<float> shown = 0; // the greatest value
    unsigned long counted = 1;
    unsigned long taken = 0;

    std::thread playing([&, scene = std::make_unique<Scene>(show)]() mutable {
        const unsigned long before = allocations;
        for (; !head.ended(); head.next()) {
            taken += handover.take(scene);
            scene->player.seek(head.frame());
            shown = std::max(shown.load(), scene->player[0].value().value_or(0));
        }
        counted = allocations - before;
    });
    for (float value = 1; value <= last; ++value) {
        show.insertInLayer("a", Hold, {value}, 9, static_cast<unsigned int>(value) % 20);
        handover.offer(std::make_unique<Scene>(show));
    }
    while (shown < last)
        std::this_thread::yield();
    head.finish();
    playing.join();
    std::printf("%lu scenes taken, %lu allocations while playing\n", taken, counted);
    return counted == 0 && taken > 0 ? 0 : 1;
}
