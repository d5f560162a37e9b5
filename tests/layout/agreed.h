/**
 * What programs may rely on in a unit's header: each file here includes one such header alone, and
 * takes every function by exactly its type and every record field by field, in order.
 */
#ifndef TARNEX_TESTS_LAYOUT_AGREED_H
#define TARNEX_TESTS_LAYOUT_AGREED_H

#include <gtest/gtest.h>

#include <type_traits>

/** Expects functions of exactly the type `Agreed`; others do not compile. */
template <class Agreed, class... Functions>
void expectAgreed(Functions *...functions)
{
    static_assert((std::is_same_v<Functions, Agreed> && ...));
    EXPECT_TRUE((functions && ...));
}

#endif
