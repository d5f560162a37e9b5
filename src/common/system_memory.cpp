#include "common/system_memory.h"

#include <cstdlib>
#include <sys/mman.h>

namespace
{

void *map(std::size_t bytes)
{
    void *pages = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return pages == MAP_FAILED ? nullptr : pages;
}

void *remap(void *pages, std::size_t oldBytes, std::size_t newBytes)
{
    void *moved = mremap(pages, oldBytes, newBytes, MREMAP_MAYMOVE);
    return moved == MAP_FAILED ? nullptr : moved;
}

void unmap(void *pages, std::size_t bytes) { munmap(pages, bytes); }

} // namespace

SystemMemory systemMemory{std::malloc, std::calloc, std::realloc, std::free, map, remap, unmap};
