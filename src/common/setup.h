/**
 * Configuration of a session, and the globals that hold the current session's context (unit
 * "common/setup").
 *
 * The core reads and writes these globals directly and never sees a session number; the Java
 * binding copies a session's context in before a call and out after it. Calls may come from any
 * thread: whoever uses the globals holds the engine's lock (engine_lock.h), the core takes none.
 */
#ifndef TARNEX_COMMON_SETUP_H
#define TARNEX_COMMON_SETUP_H

#include "common/types.h"

struct DataBase_;

/** Weights of the primary path score; a weight of 0 switches its criterion off. */
struct PrimaryComputationConfig_ {
    double Fortz;            ///< Fortz-Thorup piecewise-linear link cost
    double loadBal[MAXOA];   ///< balance of utilization over the network
    double load[MAXOA];      ///< load
    double sqLoad[MAXOA];    ///< squared load
    double relLoad[MAXOA];   ///< utilization
    double sqRelLoad[MAXOA]; ///< squared utilization
    double delay[MAXOA];     ///< queueing delay
    double rerouting[MAXOA]; ///< preemption penalty
};
using PrimaryComputationConfig = PrimaryComputationConfig_;

/** Switches of the admission predicate. */
struct PredicateConfig_ {
    bool allowReroute;   ///< count only what the request cannot preempt
    bool capacityClause; ///< test capacities
    bool colorClause;    ///< test forbidden link colours
};
using PredicateConfig = PredicateConfig_;

/** Price of preemption. */
struct ReroutingConfig_ {
    double scoreCoef[MAXOA][MAXPL]; ///< penalty per unit of bandwidth taken, `[oa][p]`
};
using ReroutingConfig = ReroutingConfig_;

/** Everything that a session configures. */
struct TARNEXConfig_ {
    PrimaryComputationConfig primaryComputationConfig;
    PredicateConfig predicateConfig;
    ReroutingConfig reroutingConfig;
};
using TARNEXConfig = TARNEXConfig_;

extern DataBase_ *centralDB;      ///< database of the current session; null when there is none
extern TARNEXConfig tarnexConfig; ///< configuration of the current session

extern int NBOA; ///< class types in use, at most MAXOA; the last initialisation's value
extern int NBPL; ///< preemption levels in use, at most MAXPL; the last initialisation's value

/** Whether backup searches print their remarks (on standard output and error, as the Java side has
 * always seen them); the C++ library switches it off while a call of its own runs. */
extern bool printsRemarks;

/** Whether a primary request fails over a link into what its source reaches from a node that it
 * does not reach, with a larger id than all that it does: the search in passes always has. The C++
 * library switches it off while a call of its own runs, and gets the path. */
extern bool failsOverOddLinks;

/** Total score of the primary paths computed since the last initialisation. */
extern "C" __attribute__((visibility("default"))) double COST;

#endif
