/**
 * The error manager: a growing stack of graded messages (unit "error/error").
 *
 * Every operation that fails pushes one message and returns a failure code; its caller usually adds
 * its own, so the stack reads from the innermost cause outwards. A stack belongs to a session; the
 * operations below work on the current session's, `errorManager`. Nothing is printed until
 * printErrorStack. While no stack is live, messages are dropped.
 */
#ifndef TARNEX_ERROR_ERROR_H
#define TARNEX_ERROR_ERROR_H

#include "common/types.h"

/** Grade of a message. */
enum GravityLevel : int { INFO = 0, WARNING = 1, CRITICAL = 2, PANIC = 3 };

/** One message. */
struct ErrorElem_ {
    GravityLevel gravity;
    char message[200]; ///< terminated text of at most 199 characters
};
using ErrorElem = ErrorElem_;

/** The stack; 0 <= top <= size while it is live. */
struct ErrorList_ {
    Long size;       ///< capacity in entries; 0 when the stack is not live
    Long top;        ///< entries in use; the newest is at top - 1
    ErrorElem *list; ///< counted block, owned
};
using ErrorList = ErrorList_;

extern ErrorList errorManager; ///< error stack of the current session

/** Replaces the current stack, which the caller has saved elsewhere, by a new empty one. */
void errorInit();

/**
 * Pushes a message on the current stack; a text beyond 199 characters is cut.
 *
 * @param level grade of the message
 * @param msg printf format, followed by its arguments
 */
void addError(GravityLevel level, const char *msg, ...);

/** Writes the stack to standard error, newest message first; the stack is not changed. */
void printErrorStack();

/** Frees the entries; the stack is then no longer live. */
void errorDestroy();

#endif
