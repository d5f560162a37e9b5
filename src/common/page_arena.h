/**
 * Pages for large blocks, most of which nobody ever writes to.
 *
 * They come out of chunks of address space that a process takes once, so that however many blocks
 * there are, they count as few mappings (a process may have some 65 000). A block may grow in place
 * up to the next power of two; only pages that have been written to take memory, and a block that
 * is given back keeps none.
 */
#ifndef TARNEX_COMMON_PAGE_ARENA_H
#define TARNEX_COMMON_PAGE_ARENA_H

#include <cstddef>

/** So many bytes, a whole number of pages, all zero; null when none are to be had. */
void *acquirePages(std::size_t bytes);

/** Gives a block another length, what is new being zero; where it stands then, or null, nothing
 * changed, when there is no room. */
void *resizePages(void *pages, std::size_t oldBytes, std::size_t newBytes);

/** Gives a block back. */
void releasePages(void *pages, std::size_t bytes);

/** Copies into zeroed memory; where the source is zero, the destination is not touched. */
void copyNonZero(char *to, const char *from, std::size_t bytes);

#endif
