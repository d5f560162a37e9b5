/**
 * Memory that runs out on purpose. While it lives, a MemoryProbe stands between the counted
 * allocator and the C library and can make the n-th allocation fail, alone or with all that follow.
 * A block handed back is overwritten at its start, as a C library does, and kept, so that one
 * handed back twice is seen.
 */
#ifndef TARNEX_TESTS_SUPPORT_MEMORY_PROBE_H
#define TARNEX_TESTS_SUPPORT_MEMORY_PROBE_H

#include "common/system_memory.h"
#include "error/error.h"

#include <algorithm>
#include <cstring>
#include <vector>

enum class Lasting { once, fromThenOn };

class MemoryProbe
{
public:
    /** `nth` counts from 1; 0 fails none. Makes room for messages first. */
    explicit MemoryProbe(int nth = 0, Lasting howLong = Lasting::once)
        : failAt(nth), lasting(howLong)
    {
        const Long top = errorManager.top;
        while (errorManager.size < 2048)
            addError(INFO, "room");
        errorManager.top = top;
        active = this;
        systemMemory = {
            [](std::size_t n) { return refuses(n) ? nullptr : active->real.acquire(n); },
            [](std::size_t k, std::size_t n) {
                return refuses(k * n) ? nullptr : active->real.acquireZeroed(k, n);
            },
            [](void *p, std::size_t n) { return refuses(n) ? nullptr : active->real.resize(p, n); },
            [](void *block) { active->release(block); },
            [](std::size_t n) {
                void *pages = refuses(n) ? nullptr : active->real.map(n);
                active->mappings += pages ? 1 : 0;
                return pages;
            },
            [](void *p, std::size_t old, std::size_t n) {
                return refuses(n) ? nullptr : active->real.remap(p, old, n);
            },
            [](void *pages, std::size_t n) {
                --active->mappings;
                active->real.unmap(pages, n);
            }};
    }
    ~MemoryProbe()
    {
        systemMemory = real;
        std::ranges::for_each(released, real.release);
    }

    bool faulted() const { return failAt > 0 && allocations >= failAt; }

    std::size_t largestRequest = 0;
    int mappings = 0; ///< mapped while it lives and not unmapped yet
    int repeatedReleases = 0;
    std::vector<void *> released;

private:
    static bool refuses(std::size_t bytes)
    {
        active->largestRequest = std::max(active->largestRequest, bytes);
        ++active->allocations;
        if (active->lasting == Lasting::fromThenOn)
            return active->failAt > 0 && active->allocations >= active->failAt;
        return active->allocations == active->failAt;
    }

    void release(void *block)
    {
        std::memset(block, 0x5A, 2 * sizeof(void *));
        if (std::ranges::find(released, block) == released.end())
            released.push_back(block);
        else
            ++repeatedReleases;
    }

    static inline MemoryProbe *active = nullptr;
    SystemMemory real = systemMemory;
    int failAt;
    Lasting lasting;
    int allocations = 0;
};

/** Counted bytes in use, without those of the error stack. */
inline Long bytesInUse()
{
    return allocatedMemory - errorManager.size * static_cast<Long>(sizeof(ErrorElem));
}

#endif
