/** How C++ calls the native methods that are linked into its program. */
#ifndef TARNEX_TESTS_SUPPORT_NATIVE_CALLS_H
#define TARNEX_TESTS_SUPPORT_NATIVE_CALLS_H

#include <org_kestro_repository_TARNEX_JNITARNEX.h>

/** Calls a native method, named without its prefix, on `engine` with `env`. */
#define CALL(method, ...)                                                                          \
    Java_org_kestro_repository_TARNEX_JNITARNEX_jni##method(env, engine __VA_OPT__(, ) __VA_ARGS__)

#endif
