/**
 * Types and bounds that every unit shares.
 */
#ifndef TARNEX_COMMON_TYPES_H
#define TARNEX_COMMON_TYPES_H

#include <cstdint>

/** Identifiers and counts: a signed integer of 32 bits on every platform. */
using Long = std::int32_t;

/** Number of class types (ordered aggregates) that every per-class array has room for. */
inline constexpr int MAXOA = 8;
/** Number of preemption levels that every per-level array has room for; 0 is the most important. */
inline constexpr int MAXPL = 8;

/** Kind of an LSP. */
using DBLSPType = unsigned char;
inline constexpr DBLSPType primaryLSP = 0;      ///< a working path from ingress to egress
inline constexpr DBLSPType localBackupLSP = 1;  ///< a detour around one element of a primary path
inline constexpr DBLSPType globalBackupLSP = 2; ///< an alternative path to the egress of a primary

/** Whether an LSP of that kind protects another. */
constexpr bool isBackup(DBLSPType type)
{
    return type == localBackupLSP || type == globalBackupLSP;
}

#endif
