/**
 * The engine's one lock. The current session stands in globals, and the counted memory, the error
 * stack and the session table are the process's, so whoever calls the core from several threads
 * holds the lock from loading a session to saving it.
 */
#ifndef TARNEX_COMMON_ENGINE_LOCK_H
#define TARNEX_COMMON_ENGINE_LOCK_H

#include <mutex>

/** The lock, held to the end of the scope or to unlock(). */
using EngineLock = std::unique_lock<std::mutex>;

/** Waits for the lock. A thread that holds it must not ask again: nothing in the core does. */
[[nodiscard]] EngineLock lockEngine();

#endif
