#include "common/common.h"
#include "common/system_memory.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

Long allocatedMemory = 0;
SystemMemory systemMemory{std::malloc, std::calloc, std::realloc, std::free};

namespace
{

// A block is a prefix that keeps the user area aligned for any type, its last four bytes holding
// the size word, and the user area behind it.
constexpr std::size_t prefixBytes = alignof(std::max_align_t);
constexpr std::size_t maxUserBytes = std::numeric_limits<Long>::max() - prefixBytes;
constexpr std::uint32_t freedMark = 0xFFFFFFFF;

char *blockOf(void *user) { return static_cast<char *>(user) - prefixBytes; }

char *sizeWordOf(void *user) { return static_cast<char *>(user) - sizeof(std::uint32_t); }

std::uint32_t sizeWord(void *user)
{
    std::uint32_t word = 0;
    std::memcpy(&word, sizeWordOf(user), sizeof word);
    return word;
}

void setSizeWord(void *user, std::uint32_t word)
{
    std::memcpy(sizeWordOf(user), &word, sizeof word);
}

void count(std::uint32_t added, std::uint32_t removed)
{
    allocatedMemory =
        static_cast<Long>(static_cast<std::uint32_t>(allocatedMemory) + added - removed);
}

/** Turns a fresh system block into a counted one. */
void *counted(void *block, std::size_t sz)
{
    if (!block)
        return nullptr;
    void *user = static_cast<char *>(block) + prefixBytes;
    setSizeWord(user, static_cast<std::uint32_t>(sz));
    count(static_cast<std::uint32_t>(sz), 0);
    return user;
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
    void hold(void *block, std::size_t bytes)
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
        void *block;
        std::size_t bytes;
    };
    static constexpr std::size_t maxHeldBytes = std::size_t{16} * 1024 * 1024;

    void evictOldest()
    {
        systemMemory.release(ring[first].block);
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
    return counted(systemMemory.acquireZeroed(1, bytes + prefixBytes), bytes);
}

void *myrealloc(void *ptr, std::size_t sz)
{
    const std::uint32_t oldSize = sizeWord(ptr);
    void *block = sz > maxUserBytes ? nullptr : systemMemory.resize(blockOf(ptr), sz + prefixBytes);
    if (!block)
        return nullptr;
    count(0, oldSize);
    return counted(block, sz);
}

void *mygrow(void *ptr, std::size_t sz)
{
    const std::uint32_t oldSize = sizeWord(ptr);
    if (sz <= oldSize)
        return ptr;
    void *grown = mycalloc(1, sz);
    if (!grown)
        return nullptr;
    std::memcpy(grown, ptr, oldSize);
    myfree(ptr);
    return grown;
}

void myfree(void *ptr)
{
    const std::uint32_t size = sizeWord(ptr);
    if (size == freedMark) {
        std::fputs("Warning already freed\n", stderr);
        return;
    }
    count(0, size);
    setSizeWord(ptr, freedMark);
    quarantine.hold(blockOf(ptr), size);
}
