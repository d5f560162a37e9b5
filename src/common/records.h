/**
 * Ownership of records by scope, and spans over the library's vectors.
 *
 * A record that is not handed over yet sits in an Owned (heap record) or a Guard (record on the
 * stack) whose deleter is the record's own Destroy or End: every return releases it, and
 * handOver() marks the point from which somebody else owns it.
 */
#ifndef TARNEX_COMMON_RECORDS_H
#define TARNEX_COMMON_RECORDS_H

#include "common/common.h"

#include <cstddef>
#include <memory>
#include <span>

/** Deleter that calls the record's own release function; its result says nothing new by then. */
template <auto releaseRecord>
struct Releaser {
    template <class T>
    void operator()(T *record) const
    {
        static_cast<void>(releaseRecord(record));
    }
};

/** Heap record, owned until handed over. */
template <class T, auto releaseRecord>
using Owned = std::unique_ptr<T, Releaser<releaseRecord>>;

/** Stack record whose contents are released at the end of the scope. */
template <class T, auto endRecord>
using Guard = std::unique_ptr<T, Releaser<endRecord>>;

/** A vector record as a member or on the stack, ended with its scope if it was initialised. */
template <class Vec, auto endRecord>
struct Scoped : Vec {
    Scoped() { static_cast<Vec &>(*this) = {}; }
    ~Scoped()
    {
        if (this->cont)
            static_cast<void>(endRecord(this));
    }
    Scoped(const Scoped &) = delete;
    Scoped &operator=(const Scoped &) = delete;
};

/** Ends a heap record and frees it, as every Destroy does; -1 when its End refuses it. */
template <auto endRecord, class T>
int destroyRecord(T *record)
{
    if (endRecord(record) != 0)
        return -1;
    myfree(record);
    return 0;
}

/** Gives records up to whoever owns them from here on: the point of no return. */
template <class... Owners>
void handOver(Owners &...owners)
{
    (static_cast<void>(owners.release()), ...);
}

/** The slots in use of a vector. */
template <class Vec>
auto inUse(const Vec &vec)
{
    return std::span{vec.cont, static_cast<std::size_t>(vec.top)};
}

/** All slots of a vector, used or not. */
template <class Vec>
auto slots(const Vec &vec)
{
    return std::span{vec.cont, static_cast<std::size_t>(vec.size)};
}

#endif
