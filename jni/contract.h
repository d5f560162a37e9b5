/**
 * What Java may pass, and what it means: checks of arguments, and arrays read with their checks.
 *
 * Each check is true when the argument is within the contract; otherwise the call is refused, or an
 * exception of the JVM itself is pending, and the call must return. They change nothing.
 */
#ifndef TARNEX_JNI_CONTRACT_H
#define TARNEX_JNI_CONTRACT_H

#include "admission/placement.h"
#include "common/types.h"
#include "session_call.h"

#include <jni.h>

/** @name Checks of one argument; `name` is what the exception calls it. */
///@{
bool checkCount(EngineCall &call, const char *name, jint count, int max);
bool checkLevel(EngineCall &call, jint level);
bool checkBandwidth(EngineCall &call, const char *name, jfloat bandwidth);
bool checkArray(EngineCall &call, const char *name, jarray array, jsize minLength);
///@}

/** Reads `rows` rows of `columns` floats into the front of the rows of `matrix`. */
bool readMatrix(EngineCall &call, const char *name, jobjectArray array, int rows, int columns,
                double (&matrix)[MAXOA][MAXPL]);
/** Reads a new link's capacities and reservations, of the class types and levels in use. */
bool readLinkState(EngineCall &call, jfloatArray cap, jobjectArray rbw, double (&capacities)[MAXOA],
                   double (&reservations)[MAXOA][MAXPL]);

/** What a path computation is to do with the network beside computing. */
inline PlacementGoal goalOf(jboolean addLSP, jboolean preempt)
{
    return addLSP ? PlacementGoal::lsp : preempt ? PlacementGoal::room : PlacementGoal::pathOnly;
}

#endif
