/** Sets of class types and of preemption levels. */
#ifndef TARNEX_COMMON_CLASS_TYPES_H
#define TARNEX_COMMON_CLASS_TYPES_H

#include "common/types.h"

#include <bit>
#include <cstddef>

/** A set of class types, in one byte; zeroed, it is empty. Iterated, it gives them ascending. */
struct ClassTypes {
    unsigned char bits;

    static_assert(MAXOA <= 8);

    /** The set of one class type. */
    static constexpr ClassTypes only(int oa) { return of(1U << oa); }
    /** The set of all. */
    static constexpr ClassTypes all() { return of((1U << MAXOA) - 1U); }

    bool isEmpty() const { return bits == 0; }
    bool has(int oa) const { return (bits >> oa & 1U) != 0; }
    int count() const { return std::popcount(bits); }
    void set(int oa, bool isMember) { *this = isMember ? *this | only(oa) : without(only(oa)); }

    bool operator==(const ClassTypes &other) const = default;
    ClassTypes operator|(ClassTypes others) const { return of(bits | others.bits); }
    ClassTypes without(ClassTypes others) const { return of(bits & ~unsigned{others.bits}); }

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
    static constexpr ClassTypes of(unsigned bits) { return {static_cast<unsigned char>(bits)}; }
};

/** A set of preemption levels: a bit for each. */
using Levels = unsigned char;
inline constexpr Levels allLevels = 0xff;
static_assert(MAXPL <= 8);

#endif
