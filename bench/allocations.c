// Loaded ahead of the C library: counts the calls that ask it for memory.
#define _GNU_SOURCE
#include <stddef.h>

extern void* __libc_malloc(size_t size);
extern void* __libc_calloc(size_t count, size_t size);
extern void* __libc_realloc(void* block, size_t size);
extern void* __libc_memalign(size_t alignment, size_t size);

unsigned long allocations = 0;

void* malloc(size_t size) {
    ++allocations;
    return __libc_malloc(size);
}

void* calloc(size_t count, size_t size) {
    ++allocations;
    return __libc_calloc(count, size);
}

void* realloc(void* block, size_t size) {
    ++allocations;
    return __libc_realloc(block, size);
}

void* aligned_alloc(size_t alignment, size_t size) {
    ++allocations;
    return __libc_memalign(alignment, size);
}
