#include "database/reservations/failure_tables.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <span>

namespace
{

/** The slots of a block that a table has; empty beyond its capacity. */
constexpr Long blockSlots = 64;
std::span<const double> blockOf(const DoubleVec &table, Long first)
{
    const Long last = std::min(first + blockSlots, table.size);
    return {table.cont + std::min(first, last),
            static_cast<std::size_t>(std::max(last - first, 0))};
}

/** All bits that are set in any of the values: one cheap reduction over many slots at once. */
std::int64_t bitsOf(std::span<const double> values)
{
    std::int64_t bits = 0;
    for (const double value : values)
        bits |= std::bit_cast<std::int64_t>(value);
    return bits;
}

/** False only when none of the slots from `first` on is needy. */
bool blockMayBeNeedy(const StateTables &tables, int oa, Long first)
{
    for (int p = 0; p < MAXPL; ++p) {
        const bool anyBackup = bitsOf(blockOf(tables.bbw[oa][p], first)) != 0;
        const bool anyBelowZero = bitsOf(blockOf(tables.fbw[oa][p], first)) < 0;
        if (anyBackup || anyBelowZero)
            return true;
    }
    return false;
}

} // namespace

bool isNeedy(const StateTables &tables, int oa, Long k)
{
    for (int p = 0; p < MAXPL; ++p) {
        if (tables.backup(oa, p, k) > 0.0 || tables.freed(oa, p, k) < 0.0)
            return true;
    }
    return false;
}

Long nextNeedySlot(const StateTables &tables, int oa, Long from, Long end)
{
    for (Long k = from; k < end; ++k) {
        const bool startsBlock = k % blockSlots == 0;
        if (startsBlock && !blockMayBeNeedy(tables, oa, k))
            k += blockSlots - 1;
        else if (isNeedy(tables, oa, k))
            return k;
    }
    return end;
}

Long nextUsedSlot(const DoubleVec &table, Long from, Long end)
{
    for (Long k = from; k < end; ++k) {
        const bool startsBlock = k % blockSlots == 0;
        if (startsBlock && bitsOf(blockOf(table, k)) == 0)
            k += blockSlots - 1;
        else if (table.cont[k] != 0.0)
            return k;
    }
    return end;
}

Long longestTable(const StateTables &tables, int oa)
{
    Long longest = 0;
    for (int p = 0; p < MAXPL; ++p)
        longest = std::max({longest, tables.bbw[oa][p].size, tables.fbw[oa][p].size});
    return longest;
}
