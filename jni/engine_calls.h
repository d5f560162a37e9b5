/**
 * The calls on an engine of org.kestro.tarnex.Engine, with arguments and results as flat lists of
 * doubles, in which ids and levels are exact. The order of values in each list is the one in which
 * the Java side (Native, Answer) writes and reads them.
 */
#ifndef TARNEX_JNI_ENGINE_CALLS_H
#define TARNEX_JNI_ENGINE_CALLS_H

#include <tarnex/engine.h>

#include <span>
#include <string>
#include <vector>

/** What a call answers. */
struct EngineAnswer {
    std::vector<double> values;
    std::vector<std::string> texts; ///< the sentences of refusals in their order, or the trail
};

/**
 * Performs an operation, numbered as the constants of the Java class Native.
 *
 * @throws tarnex::WrongUse also for an unknown operation and for missing arguments
 */
EngineAnswer callEngine(tarnex::Engine &engine, int operation, std::span<const double> arguments);

/** Options from class types, levels, testsCapacity, explainsRefusals, allowsBackups, seven weights
 * in the order of tarnex::Weights and prices by class type and level. */
tarnex::Options readOptions(std::span<const double> arguments);

#endif
