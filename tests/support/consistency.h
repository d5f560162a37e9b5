/**
 * What must hold of every database at every moment, worked out from nothing but its LSP records and
 * its topology.
 */
#ifndef TARNEX_TESTS_SUPPORT_CONSISTENCY_H
#define TARNEX_TESTS_SUPPORT_CONSISTENCY_H

#include "support/plain_evaluation.h"

#include <cstddef>
#include <string>

namespace property
{

/** The links and LSPs of a database, without reservations. */
PlainNetwork contentsOf(const DataBase &db);

/**
 * Recomputes counters, neighbour lists, translators, LSP lists and reservations and compares them
 * with what is stored; bandwidths must be such that sums are exact.
 *
 * @param undefined links whose reservations and lists depend on history: a link that their LSPs
 *        cross was removed
 * @return the first thing that differs, empty when nothing does
 */
std::string inconsistencyOf(const DataBase &db, const std::set<Hop> &undefined = {});

/** Size of a counted block. */
std::size_t countedBytes(const void *block);

/** Counted bytes that a database holds: its record, tables, nodes, links and LSPs. */
std::size_t ownedBytes(const DataBase &db);

} // namespace property

#endif
