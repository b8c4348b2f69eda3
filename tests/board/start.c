/* Starts a program on an emulated Cortex-M3 with semihosting, where the start-up of the C library
   does not come up: the table of vectors is at 0, code from 0x8000 on, memory ends at 4 MB. */

#include <stdlib.h>

extern void __libc_init_array(void);
extern void initialise_monitor_handles(void);
extern int main(void);

void* __dso_handle = 0;
void _init(void) {}
void _fini(void) {}

static void start(void) {
    initialise_monitor_handles();
    __libc_init_array();
    exit(main());
}

__attribute__((section(".vectors"), used)) void (*const vectors[])(void) = {
    (void (*)(void))0x003ffff0, start};
