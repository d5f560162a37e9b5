/**
 * The one place where the counted allocator meets the system. Tests replace these functions to make
 * a chosen allocation fail; nothing outside the library sees them.
 */
#ifndef TARNEX_COMMON_SYSTEM_MEMORY_H
#define TARNEX_COMMON_SYSTEM_MEMORY_H

#include <cstddef>

struct SystemMemory {
    void *(*acquire)(std::size_t bytes);                          ///< as malloc
    void *(*acquireZeroed)(std::size_t count, std::size_t bytes); ///< as calloc
    void *(*resize)(void *block, std::size_t bytes);              ///< as realloc
    void (*release)(void *block);                                 ///< as free

    /** Pages of their own, zero and without memory until they are written; null when none are. */
    void *(*map)(std::size_t bytes);
    /** The same pages in a mapping of another length; null, nothing changed, when it fails. */
    void *(*remap)(void *pages, std::size_t oldBytes, std::size_t newBytes);
    void (*unmap)(void *pages, std::size_t bytes);
};

extern SystemMemory systemMemory;

#endif
