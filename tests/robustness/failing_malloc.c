/* Makes allocations of the calling thread fail on request. Loaded ahead of the C library with LD_PRELOAD. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <stddef.h>

static __thread long before = 0; /* allocations that still succeed */
static __thread long failing = 0; /* allocations that fail after those */

static int fails(void) {
    if (failing == 0) {
        return 0;
    }
    if (before > 0) {
        --before;
        return 0;
    }
    --failing;
    return 1;
}

void fail_after(long allocations, long count) {
    before = allocations;
    failing = count;
}

extern void *__libc_malloc(size_t);
extern void *__libc_calloc(size_t, size_t);
extern void *__libc_realloc(void *, size_t);

void *malloc(size_t size) { return fails() ? NULL : __libc_malloc(size); }
void *calloc(size_t count, size_t size) { return fails() ? NULL : __libc_calloc(count, size); }
void *realloc(void *old, size_t size) { return fails() ? NULL : __libc_realloc(old, size); }
