/** Sets of class types and of preemption levels. */
#ifndef TARNEX_COMMON_CLASS_TYPES_H
#define TARNEX_COMMON_CLASS_TYPES_H

#include "common/types.h"

#include <bit>
#include <cstddef>

/** A set of numbers below `size`, in one byte; zeroed, it is empty. Iterated, it gives them
 * ascending. */
template <class Tag, int size>
struct SmallSet {
    unsigned char bits;

    static_assert(size <= 8);

    /** The set of one number. */
    static constexpr SmallSet only(int number) { return of(1U << number); }
    /** The set of all. */
    static constexpr SmallSet all() { return of((1U << size) - 1U); }

    bool isEmpty() const { return bits == 0; }
    bool has(int number) const { return (bits >> number & 1U) != 0; }
    int count() const { return std::popcount(bits); }
    void set(int number, bool isMember)
    {
        *this = isMember ? *this | only(number) : without(only(number));
    }

    bool operator==(const SmallSet &other) const = default;
    SmallSet operator|(SmallSet others) const { return of(bits | others.bits); }
    SmallSet without(SmallSet others) const { return of(bits & ~unsigned{others.bits}); }

    /** Position in an iteration. */
    struct Iterator {
        using value_type = int;
        using difference_type = std::ptrdiff_t;

        unsigned rest;

        int operator*() const { return std::countr_zero(rest); }
        Iterator &operator++()
        {
            rest &= rest - 1;
            return *this;
        }
        void operator++(int) { ++*this; }
        bool operator==(const Iterator &other) const = default;
    };
    Iterator begin() const { return {bits}; }
    Iterator end() const { return {0}; }

private:
    static constexpr SmallSet of(unsigned bits) { return {static_cast<unsigned char>(bits)}; }
};

/** A set of class types. */
using ClassTypes = SmallSet<struct ClassTypeTag, MAXOA>;
/** A set of preemption levels. */
using Levels = SmallSet<struct LevelTag, MAXPL>;

#endif
