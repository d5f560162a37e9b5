#include "common/common.h"
#include "common/page_arena.h"
#include "common/system_memory.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(start, bytes) static_cast<void>(0)
#define ASAN_UNPOISON_MEMORY_REGION(start, bytes) static_cast<void>(0)
#endif

Long allocatedMemory = 0;
namespace
{

/** What stands in front of the user area and keeps it aligned for any type. */
struct Prefix {
    std::uint64_t mappedBytes; ///< length of the block's own mapping; 0: a block of the C library
    std::uint32_t unused;
    std::uint32_t sizeWord; ///< bytes of the user area, or the freed mark
};
constexpr std::size_t prefixBytes = sizeof(Prefix);
static_assert(prefixBytes % alignof(std::max_align_t) == 0);

constexpr std::size_t maxUserBytes = std::numeric_limits<Long>::max() - prefixBytes;
constexpr std::uint32_t freedMark = 0xFFFFFFFF;

// Zeroed blocks from this size on get pages of their own: memory that nobody writes to stays
// without pages, and what is released does not come back as memory that a smaller table wastes.
constexpr std::size_t minMappedBytes = std::size_t{16} * 1024;

Prefix *prefixOf(void *user)
{
    return reinterpret_cast<Prefix *>(static_cast<char *>(user) - prefixBytes);
}

void count(std::uint32_t added, std::uint32_t removed)
{
    allocatedMemory =
        static_cast<Long>(static_cast<std::uint32_t>(allocatedMemory) + added - removed);
}

/** Turns a fresh system block, in a mapping of its own or not, into a counted one. */
void *counted(void *block, std::size_t sz, std::size_t mappedBytes = 0)
{
    if (!block)
        return nullptr;
    const auto size = static_cast<std::uint32_t>(sz);
    *static_cast<Prefix *>(block) = {mappedBytes, 0, size};
    count(size, 0);
    return static_cast<char *>(block) + prefixBytes;
}

/** Length of a mapping that holds a block of `sz` user bytes. */
std::size_t mappingFor(std::size_t sz)
{
    constexpr std::size_t page = 4096;
    return (sz + prefixBytes + page - 1) / page * page;
}

/** What lies between the user area of a mapped block and the end of its pages. */
struct Tail {
    char *start;
    std::size_t bytes;
};

Tail tailOf(Prefix *block)
{
    char *user = reinterpret_cast<char *>(block + 1);
    return {user + block->sizeWord, block->mappedBytes - prefixBytes - block->sizeWord};
}

/** Lets a memory checker see a use of the tail of a mapped block; null stays null. */
void *withGuardedTail(void *user)
{
    if (user) {
        [[maybe_unused]] const Tail tail = tailOf(prefixOf(user));
        ASAN_POISON_MEMORY_REGION(tail.start, tail.bytes);
    }
    return user;
}

/** A zeroed counted block on pages of its own; null when there are none. */
void *mapBlock(std::size_t sz)
{
    return withGuardedTail(counted(systemMemory.map(mappingFor(sz)), sz, mappingFor(sz)));
}

/** Resizes a mapped block, its pages staying as they are; null, nothing changed, on failure. */
void *remapBlock(void *ptr, std::size_t sz)
{
    const Prefix old = *prefixOf(ptr);
    const std::size_t bytes = mappingFor(sz);
    ASAN_UNPOISON_MEMORY_REGION(prefixOf(ptr), old.mappedBytes);
    void *moved = systemMemory.remap(prefixOf(ptr), old.mappedBytes, bytes);
    if (!moved) {
        withGuardedTail(ptr);
        return nullptr;
    }
    count(0, old.sizeWord);
    return withGuardedTail(counted(moved, sz, bytes));
}

void releaseToSystem(Prefix *block, [[maybe_unused]] std::size_t userBytes)
{
    ASAN_UNPOISON_MEMORY_REGION(block + 1, userBytes);
    if (block->mappedBytes == 0)
        return systemMemory.release(block);
    ASAN_UNPOISON_MEMORY_REGION(block, block->mappedBytes);
    systemMemory.unmap(block, block->mappedBytes);
}

/**
 * The blocks released last, oldest first, not yet handed back to the system. The C library writes
 * its own links over a block it takes back, or unmaps it, and the freed mark would be gone when a
 * second release looks for it. The newest block always stays; the others as long as they are few
 * and not too large together.
 */
class Quarantine
{
public:
    void hold(Prefix *block, std::size_t bytes)
    {
        if (held == ring.size())
            evictOldest();
        ring[(first + held) % ring.size()] = {block, bytes};
        ++held;
        heldBytes += bytes;
        while (held > 1 && heldBytes > maxHeldBytes)
            evictOldest();
    }

private:
    struct Entry {
        Prefix *block;
        std::size_t bytes;
    };
    static constexpr std::size_t maxHeldBytes = std::size_t{16} * 1024 * 1024;

    void evictOldest()
    {
        releaseToSystem(ring[first].block, ring[first].bytes);
        heldBytes -= ring[first].bytes;
        first = (first + 1) % ring.size();
        --held;
    }

    std::array<Entry, 256> ring{};
    std::size_t first = 0;
    std::size_t held = 0;
    std::size_t heldBytes = 0;
};

Quarantine quarantine;

} // namespace

void *mymalloc(std::size_t sz)
{
    return sz > maxUserBytes ? nullptr : counted(systemMemory.acquire(sz + prefixBytes), sz);
}

void *mycalloc(std::size_t nmemb, std::size_t sz)
{
    std::size_t bytes = 0;
    if (__builtin_mul_overflow(nmemb, sz, &bytes) || bytes > maxUserBytes)
        return nullptr;
    return bytes >= minMappedBytes
               ? mapBlock(bytes)
               : counted(systemMemory.acquireZeroed(1, bytes + prefixBytes), bytes);
}

void *myrealloc(void *ptr, std::size_t sz)
{
    const Prefix old = *prefixOf(ptr);
    if (sz > maxUserBytes)
        return nullptr;
    if (old.mappedBytes > 0)
        return remapBlock(ptr, sz);
    void *block = systemMemory.resize(prefixOf(ptr), sz + prefixBytes);
    if (!block)
        return nullptr;
    count(0, old.sizeWord);
    return counted(block, sz);
}

void *mygrow(void *ptr, std::size_t sz)
{
    const Prefix old = *prefixOf(ptr);
    if (sz <= old.sizeWord)
        return ptr;
    if (sz > maxUserBytes)
        return nullptr;
    if (old.mappedBytes > 0) {
        // What a shrunk block left behind on its last pages is cleared; further pages are zero.
        const Tail tail = tailOf(prefixOf(ptr));
        ASAN_UNPOISON_MEMORY_REGION(tail.start, tail.bytes);
        std::memset(tail.start, 0, tail.bytes);
        return remapBlock(ptr, sz);
    }
    void *grown = mycalloc(1, sz);
    if (!grown)
        return nullptr;
    copyNonZero(static_cast<char *>(grown), static_cast<const char *>(ptr), old.sizeWord);
    myfree(ptr);
    return grown;
}

void myfree(void *ptr)
{
    Prefix *block = prefixOf(ptr);
    const std::uint32_t size = block->sizeWord;
    if (size == freedMark) {
        std::fputs("Warning already freed\n", stderr);
        return;
    }
    count(0, size);
    block->sizeWord = freedMark;
    ASAN_POISON_MEMORY_REGION(ptr, size);
    quarantine.hold(block, size);
}
