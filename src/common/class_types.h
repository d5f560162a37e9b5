/** Sets of class types. */
#ifndef TARNEX_COMMON_CLASS_TYPES_H
#define TARNEX_COMMON_CLASS_TYPES_H

/** A set of class types; zeroed, it is empty. */
struct ClassTypes {
    unsigned bits;

    bool has(int oa) const { return (bits >> oa & 1U) != 0; }
    void set(int oa, bool isMember) { bits = isMember ? bits | 1U << oa : bits & ~(1U << oa); }
};

#endif
