#include "common/page_arena.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <sys/mman.h>

namespace
{

constexpr std::size_t chunkBytes = std::size_t{64} * 1024 * 1024;
/** Larger blocks have mappings of their own. */
constexpr std::size_t maxSharedBytes = chunkBytes / 4;

void *map(std::size_t bytes)
{
    void *pages = mmap(nullptr, bytes, PROT_READ | PROT_WRITE,
                       MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    return pages == MAP_FAILED ? nullptr : pages;
}

/** Gives the memory of pages back; they read as zero from then on. */
void dropContents(char *pages, std::size_t bytes)
{
    if (bytes > 0 && madvise(pages, bytes, MADV_DONTNEED) != 0)
        std::memset(pages, 0, bytes);
}

/** The blocks of one size that have been given back. */
class FreeBlocks
{
public:
    /** Without memory to list it the block's address space is lost, though not its memory. */
    void push(char *block)
    {
        if (used == capacity) {
            const std::size_t grown = std::max<std::size_t>(64, 2 * capacity);
            void *larger = std::realloc(blocks, grown * sizeof(char *));
            if (!larger)
                return;
            blocks = static_cast<char **>(larger);
            capacity = grown;
        }
        blocks[used++] = block;
    }
    char *pop() { return used > 0 ? blocks[--used] : nullptr; }

private:
    char **blocks = nullptr;
    std::size_t used = 0;
    std::size_t capacity = 0;
};

/** What is left of the chunk taken last. */
struct Rest {
    char *start = nullptr;
    std::size_t bytes = 0;
};

Rest rest;
std::array<FreeBlocks, std::bit_width(maxSharedBytes)> freeBlocks; ///< by logarithm of their size

/** What a block of so many bytes takes of its chunk. */
std::size_t reservedFor(std::size_t bytes) { return std::bit_ceil(bytes); }

FreeBlocks &freeBlocksOf(std::size_t bytes)
{
    return freeBlocks[static_cast<std::size_t>(std::countr_zero(reservedFor(bytes)))];
}

/** Without room for a whole chunk the block gets a mapping of its own size. */
char *takeFromChunk(std::size_t bytes)
{
    if (rest.bytes < bytes) {
        void *chunk = map(chunkBytes);
        if (!chunk)
            return static_cast<char *>(map(bytes));
        rest = {static_cast<char *>(chunk), chunkBytes};
    }
    char *block = rest.start;
    rest = {rest.start + bytes, rest.bytes - bytes};
    return block;
}

} // namespace

void copyNonZero(char *to, const char *from, std::size_t bytes)
{
    constexpr std::size_t stretch = 1024;
    static constexpr char zeros[stretch] = {};
    for (std::size_t at = 0; at < bytes; at += stretch) {
        const std::size_t length = std::min(stretch, bytes - at);
        if (std::memcmp(from + at, zeros, length) != 0)
            std::memcpy(to + at, from + at, length);
    }
}

void *acquirePages(std::size_t bytes)
{
    if (bytes > maxSharedBytes)
        return map(bytes);
    char *block = freeBlocksOf(bytes).pop();
    return block ? block : takeFromChunk(reservedFor(bytes));
}

void *resizePages(void *pages, std::size_t oldBytes, std::size_t newBytes)
{
    if (oldBytes > maxSharedBytes && newBytes > maxSharedBytes) {
        void *moved = mremap(pages, oldBytes, newBytes, MREMAP_MAYMOVE);
        return moved == MAP_FAILED ? nullptr : moved;
    }
    char *block = static_cast<char *>(pages);
    if (oldBytes <= maxSharedBytes && reservedFor(newBytes) == reservedFor(oldBytes)) {
        if (newBytes < oldBytes)
            dropContents(block + newBytes, oldBytes - newBytes);
        return block;
    }
    void *moved = acquirePages(newBytes);
    if (!moved)
        return nullptr;
    copyNonZero(static_cast<char *>(moved), block, std::min(oldBytes, newBytes));
    releasePages(pages, oldBytes);
    return moved;
}

void releasePages(void *pages, std::size_t bytes)
{
    if (bytes > maxSharedBytes) {
        munmap(pages, bytes);
        return;
    }
    char *block = static_cast<char *>(pages);
    dropContents(block, bytes);
    freeBlocksOf(bytes).push(block);
}
