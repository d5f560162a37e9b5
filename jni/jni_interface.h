/**
 * The Java binding as a whole (unit "jni_interface"): the exported native methods of
 * org.kestro.repository.TARNEX.JNITARNEX, declared by the header that the Java compiler generates,
 * and the session table. For whoever binds to the library from outside; inside the project the
 * finer headers are used.
 */
#ifndef TARNEX_JNI_JNI_INTERFACE_H
#define TARNEX_JNI_JNI_INTERFACE_H

#include "sessions.h" // IWYU pragma: export

#include <org_kestro_repository_TARNEX_JNITARNEX.h> // IWYU pragma: export

#endif
