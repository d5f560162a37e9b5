/**
 * Counted allocation, and the growable vectors and sorted lists of integers and doubles that the
 * whole library is built on (unit "common/common").
 *
 * Every heap block of the library comes from the counted allocator. A vector owns one counted block
 * of `size` slots, of which the first `top` are in use; slots beyond `top` are part of the capacity
 * and can be read. Pushing is amortised constant time, a sorted insertion is linear. A vector whose
 * `cont` is null is not initialised: every operation but Init refuses it.
 *
 * Operations return 0, or -1 after pushing a message on the error stack; they leave the vector as
 * it was when they fail.
 */
#ifndef TARNEX_COMMON_COMMON_H
#define TARNEX_COMMON_COMMON_H

#include "common/types.h"

#include <cstddef>

/** Bytes in use in all counted blocks (user areas only), modulo 2^32. */
extern Long allocatedMemory;

/**
 * Obtains a counted block of `sz` bytes, aligned for any type.
 *
 * @return the user area, or null when there is no memory or the size does not fit the 31 bits of
 * the block's size word; no message is pushed
 */
[[nodiscard]] void *mymalloc(std::size_t sz);

/** As mymalloc for `nmemb` times `sz` bytes, all zero; pages nobody writes to cost no memory. */
[[nodiscard]] void *mycalloc(std::size_t nmemb, std::size_t sz);

/**
 * Resizes a live counted block to `sz` bytes; added bytes are not cleared.
 *
 * @return the block, possibly moved, or null with the old block still valid
 */
[[nodiscard]] void *myrealloc(void *ptr, std::size_t sz);

/**
 * Grows a live counted block to at least `sz` bytes with the added bytes zero and untouched; a
 * block that is long enough stays as it is.
 *
 * @return the block, possibly moved, or null with the old block still valid
 */
[[nodiscard]] void *mygrow(void *ptr, std::size_t sz);

/**
 * Releases a counted block. A block that was released before is reported on standard error and left
 * alone: the 256 blocks released last, up to 16 MiB together, are held back from the system so that
 * their mark stays readable.
 */
void myfree(void *ptr);

/** Growable vector of integers; also used as a sorted list under the name LongList. */
struct LongVec_ {
    Long size;  ///< capacity in slots
    Long top;   ///< slots in use
    Long *cont; ///< counted block of `size` slots, owned
};
using LongVec = LongVec_;
using LongList = LongVec_;

/** Growable vector of doubles. */
struct DoubleVec_ {
    Long size;    ///< capacity in slots
    Long top;     ///< slots in use
    double *cont; ///< counted block of `size` slots, owned
};
using DoubleVec = DoubleVec_;

/** New empty vector of capacity `size` (-1: one slot), all slots 0; null on failure. */
[[nodiscard]] LongVec *longVecNew(Long size);
/** Makes an existing record an empty vector of capacity `size` (-1: one slot), all slots 0. */
[[nodiscard]] int longVecInit(LongVec *vec, Long size);
/** Releases the contents; a second call is refused. */
int longVecEnd(LongVec *vec);
/** Releases the contents and the record made by longVecNew. */
int longVecDestroy(LongVec *vec);
/** Copies the whole capacity of `src` to the front of `dst`, which grows if it is smaller. */
[[nodiscard]] int longVecCopy(LongVec *dst, LongVec *src);
/** Grows the capacity to `newsize` slots, the new ones 0. */
[[nodiscard]] int longVecResize(LongVec *vec, Long newsize);
/** Appends `val`, doubling a full vector. */
[[nodiscard]] int longVecPushBack(LongVec *vec, Long val);
/** Removes the last element into `val`. */
[[nodiscard]] int longVecPopBack(LongVec *vec, Long *val);
/** Reads slot `index`, which must lie within the capacity. */
[[nodiscard]] int longVecGet(LongVec *vec, Long index, Long *val);
/** Writes slot `index`, growing, zero-filled, to the larger of `index` + 1 and twice `size`. */
[[nodiscard]] int longVecSet(LongVec *vec, Long index, Long val);

/** Inserts `val` before position `index` (0 to `top`). */
[[nodiscard]] int longListInsert(LongList *list, Long index, Long val);
/** Removes position `index`; a position not in use is a WARNING and -1. */
[[nodiscard]] int longListRemove(LongList *list, Long index);
/**
 * Writes the sorted union of `la` and `lb` into `dest`, which may be one of them; both inputs are
 * sorted in place. A value repeated in one list is matched by at most one equal value of the other.
 */
[[nodiscard]] int longListMerge(LongList *la, LongList *lb, LongList *dest);
/** Compares two integers through pointers: -1, 0 or 1. */
int longCompare(const void *a, const void *b);
/** Sorts the elements in use, ascending. */
int longListSort(LongList *list);

/** @name Vectors of doubles: as the LongVec operation of the same name. */
///@{
[[nodiscard]] DoubleVec *dblVecNew(Long size);
[[nodiscard]] int dblVecInit(DoubleVec *vec, Long size);
int dblVecEnd(DoubleVec *vec);
int dblVecDestroy(DoubleVec *vec);
[[nodiscard]] int dblVecCopy(DoubleVec *dst, DoubleVec *src);
[[nodiscard]] int dblVecResize(DoubleVec *vec, Long newsize);
[[nodiscard]] int dblVecPushBack(DoubleVec *vec, double val);
[[nodiscard]] int dblVecPopBack(DoubleVec *vec, double *val);
[[nodiscard]] int dblVecGet(DoubleVec *vec, Long index, double *val);
[[nodiscard]] int dblVecSet(DoubleVec *vec, Long index, double val);
///@}

#endif
