/**
 * The session table and the switch of the current session (unit "jni_interface").
 *
 * Every engine object of the Java side names a slot of the table in its field "sessId". A call
 * copies the slot's context into the current-session globals, works on those, and copies them back
 * before it returns; SessionCall does both. While `currentSessId` is -1 the error stack in the
 * globals, if one is live, belongs to no session.
 */
#ifndef TARNEX_JNI_SESSIONS_H
#define TARNEX_JNI_SESSIONS_H

#include "common/setup.h"
#include "database/books/network.h"
#include "error/error.h"

#include <jni.h>

inline constexpr int maxSessions = 128;

/** Everything that belongs to one live session. */
struct SessionItem_ {
    DataBase *centralDB;       ///< the session's database, owned
    TARNEXConfig tarnexConfig; ///< its configuration
    ErrorList errorManager;    ///< its error stack, owned
};
using SessionItem = SessionItem_;

extern SessionItem *sessions[maxSessions]; ///< null: free slot
extern int nbSessions;                     ///< live sessions; -1 until the table has been cleared
extern int lastSession;                    ///< slot given out last, -1 before the first
extern int currentSessId; ///< slot whose context is in the globals, -1 when none is

/** Clears the table; 0. */
int init();

/** Copies the current-session globals into the live slot `sessId`; 0. */
int saveCntx(int sessId);

/**
 * Copies the context of the session that `obj` names into the globals.
 *
 * @return the slot; -1 after a message when it is not live, or with the JVM's NoSuchFieldError
 *         pending when the object has no field "sessId"; the globals then stay as they are
 */
int loadCntx(JNIEnv *env, jobject obj);

/** Replaces the error stack in the globals by a new one that no session owns yet. */
void startFreshErrorStack();

/**
 * Takes the next free slot in rotation for the context in the globals.
 *
 * @return the slot; -1 after a message when there is no memory for the session
 */
int openSession();

/** Releases the current session's slot and record; its database and stack are gone already. */
void closeSession(int slot);

#endif
