/**
 * The operations that every growable vector of the library shares, for records with the fields
 * `size`, `top` and `cont` over trivially copyable elements. Each takes the unit under whose name
 * it reports. The public functions of the units (longVecPushBack, bkConnectVecSet, ...) are calls
 * of these.
 */
#ifndef TARNEX_COMMON_VECTOR_H
#define TARNEX_COMMON_VECTOR_H

#include "common/common.h"
#include "error/report.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>

/**
 * Without a comment of its own, an operation does what the LongVec operation of that name does
 * (common/common.h), for any element, and reports under `unit`.
 */
namespace vec
{

/** What a vector holds. */
template <class Vec>
using Element = std::remove_pointer_t<decltype(Vec::cont)>;

/** Whether a vector is there and initialised. */
template <class Vec>
bool isLive(const Vec *vec)
{
    return vec && vec->cont;
}

/** Size in bytes of so many slots. */
template <class Vec>
std::size_t bytesFor(std::int64_t slots)
{
    return static_cast<std::size_t>(slots) * sizeof(Element<Vec>);
}

/** The capacity that a constructor's size argument asks for; -1 is the default. */
inline Long capacityFor(Long size) { return size < 0 ? 1 : size; }

/** Capacity after growing for slot `index`: the larger of `index` + 1 and twice the old one. */
inline std::int64_t grownSize(Long size, Long index)
{
    return std::max(std::int64_t{index} + 1, std::int64_t{size} * 2);
}

/** Makes the contents of a new vector, all slots zero; false when there is no memory. */
template <class Vec>
[[nodiscard]] bool make(Vec &vec, Long size)
{
    const Long capacity = capacityFor(size);
    void *cont = mycalloc(static_cast<std::size_t>(capacity), sizeof(Element<Vec>));
    if (!cont)
        return false;
    vec.cont = static_cast<Element<Vec> *>(cont);
    vec.size = capacity;
    vec.top = 0;
    return true;
}

/** Puts a larger block in place of the contents; false, and nothing changed, when there is none. */
template <class Vec>
[[nodiscard]] bool adopt(Vec &vec, void *cont, std::int64_t newSize)
{
    if (!cont)
        return false;
    vec.cont = static_cast<Element<Vec> *>(cont);
    vec.size = static_cast<Long>(newSize);
    return true;
}

/** Grows to `newSize` slots, the new ones zero; false, and nothing changed, without memory. */
template <class Vec>
[[nodiscard]] bool grow(Vec &vec, std::int64_t newSize)
{
    if (newSize <= vec.size)
        return true;
    return newSize <= std::numeric_limits<Long>::max() &&
           adopt(vec, mygrow(vec.cont, bytesFor<Vec>(newSize)), newSize);
}

/** Makes room for `count` more elements, at least by doubling; added slots are not cleared. */
template <class Vec>
[[nodiscard]] bool makeRoom(Vec &vec, Long count = 1)
{
    const std::int64_t needed = std::int64_t{vec.top} + count;
    if (needed <= vec.size)
        return true;
    const std::int64_t newSize = std::max(needed, std::int64_t{vec.size} * 2);
    return newSize <= std::numeric_limits<Long>::max() &&
           adopt(vec, myrealloc(vec.cont, bytesFor<Vec>(newSize)), newSize);
}

/** Frees the contents; the vector is then not initialised. */
template <class Vec>
void release(Vec &vec)
{
    myfree(vec.cont);
    vec.cont = nullptr;
    vec.size = 0;
    vec.top = 0;
}

template <class Vec>
Vec *create(const Unit &unit, Long size)
{
    auto *vec = static_cast<Vec *>(mycalloc(1, sizeof(Vec)));
    if (vec && !make(*vec, size)) {
        myfree(vec);
        vec = nullptr;
    }
    return vec ? vec : unit.null("Critical lack of memory in %s at line %d");
}

template <class Vec>
int init(const Unit &unit, Vec *vec, Long size)
{
    if (!vec)
        return unit.fail("Bad argument (NULL) in %s at line %d");
    return make(*vec, size) ? 0 : unit.fail("Critical lack of memory in %s at line %d");
}

template <class Vec>
int end(const Unit &unit, Vec *vec)
{
    if (!isLive(vec))
        return unit.fail("Bad argument (NULL) in %s at line %d");
    release(*vec);
    return 0;
}

template <class Vec>
int destroy(const Unit &unit, Vec *vec)
{
    if (end(unit, vec) != 0)
        return -1;
    myfree(vec);
    return 0;
}

template <class Vec>
int copy(const Unit &unit, Vec *dst, const Vec *src)
{
    if (!isLive(dst) || !isLive(src))
        return unit.fail("Bad argument (NULL) in %s at line %d");
    if (dst->size < src->size &&
        !adopt(*dst, myrealloc(dst->cont, bytesFor<Vec>(src->size)), src->size))
        return unit.fail("Critical lack of memory in %s at line %d");
    std::copy_n(src->cont, src->size, dst->cont);
    dst->top = src->top;
    return 0;
}

template <class Vec>
int resize(const Unit &unit, Vec *vec, std::int64_t newSize)
{
    if (!isLive(vec))
        return unit.fail("Bad argument (NULL) in %s at line %d");
    return grow(*vec, newSize) ? 0 : unit.fail("Critical lack of memory in %s at line %d");
}

template <class Vec>
int pushBack(const Unit &unit, Vec *vec, Element<Vec> val)
{
    if (!isLive(vec))
        return unit.fail("Bad argument (NULL) in %s at line %d");
    if (!makeRoom(*vec))
        return unit.fail("Critical lack of memory in %s at line %d");
    vec->cont[vec->top++] = val;
    return 0;
}

template <class Vec>
int popBack(const Unit &unit, Vec *vec, Element<Vec> *val)
{
    if (!isLive(vec) || !val)
        return unit.fail("Bad argument (NULL) in %s at line %d");
    if (vec->top == 0)
        return unit.fail("Pop on empty stack in %s at line %d");
    *val = vec->cont[--vec->top];
    return 0;
}

/** Refuses an index outside the capacity, in the order and words of every Get. */
template <class Vec>
int checkIndex(const Unit &unit, const Vec *vec, Long index)
{
    if (index < 0)
        return unit.fail("Bad argument (index < 0) in %s at line %d");
    if (index >= vec->size)
        return unit.fail("Bad argument (wrong index) in %s at line %d");
    return 0;
}

template <class Vec>
int get(const Unit &unit, const Vec *vec, Long index, Element<Vec> *val)
{
    if (!isLive(vec) || !val)
        return unit.fail("Bad argument (NULL) in %s at line %d");
    if (checkIndex(unit, vec, index) != 0)
        return -1;
    *val = vec->cont[index];
    return 0;
}

/** `growthFailed` is the unit's own message for a vector that could not grow. */
template <class Vec>
int set(const Unit &unit, Vec *vec, Long index, Element<Vec> val, Message growthFailed)
{
    if (!isLive(vec))
        return unit.fail("Bad argument (NULL) in %s at line %d");
    if (index < 0)
        return unit.fail("Bad argument (index < 0) in %s at line %d");
    if (index >= vec->size && resize(unit, vec, grownSize(vec->size, index)) != 0)
        return unit.fail(growthFailed);
    vec->cont[index] = val;
    vec->top = std::max(vec->top, index + 1);
    return 0;
}

} // namespace vec

#endif
