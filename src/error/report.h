/**
 * How a unit reports a failure: one statement that pushes the message, with the unit's name and the
 * line of the report, and gives back the failure value.
 */
#ifndef TARNEX_ERROR_REPORT_H
#define TARNEX_ERROR_REPORT_H

#include "error/error.h"

#include <cstddef>

/** A format ending in " in %s at line %d" and, filled in by the compiler, the line it stands on. */
struct Message {
    const char *format;
    int line;
    consteval Message(const char *text, int at = __builtin_LINE()) : format(text), line(at) {}
};

/** The name under which a source file reports; one constant `here` per file. */
struct Unit {
    const char *name;

    /** Pushes a message whose arguments come before unit and line; `%ld` takes a plain long. */
    template <class... Args>
    void push(GravityLevel gravity, Message message, Args... args) const
    {
        addError(gravity, message.format, args..., name, message.line);
    }

    /** Pushes a CRITICAL message; returns -1. */
    template <class... Args>
    int fail(Message message, Args... args) const
    {
        push(CRITICAL, message, args...);
        return -1;
    }

    /** Pushes a WARNING; returns -1. */
    template <class... Args>
    int warn(Message message, Args... args) const
    {
        push(WARNING, message, args...);
        return -1;
    }

    /** Pushes a CRITICAL message; returns null. */
    template <class... Args>
    std::nullptr_t null(Message message, Args... args) const
    {
        push(CRITICAL, message, args...);
        return nullptr;
    }
};

#endif
