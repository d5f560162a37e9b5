/**
 * The one place where the counted allocator meets the C library. Tests replace these functions to
 * make a chosen allocation fail; nothing outside the library sees them.
 */
#ifndef TARNEX_COMMON_SYSTEM_MEMORY_H
#define TARNEX_COMMON_SYSTEM_MEMORY_H

#include <cstddef>

struct SystemMemory {
    void *(*acquire)(std::size_t bytes);                          ///< as malloc
    void *(*acquireZeroed)(std::size_t count, std::size_t bytes); ///< as calloc
    void *(*resize)(void *block, std::size_t bytes);              ///< as realloc
    void (*release)(void *block);                                 ///< as free
};

extern SystemMemory systemMemory;

#endif
