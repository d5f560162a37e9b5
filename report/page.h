/** A plan as one page that works by itself. */
#ifndef TARNEX_REPORT_PAGE_H
#define TARNEX_REPORT_PAGE_H

#include "formats/plan.h"

#include <ostream>
#include <string>

namespace tarnex::report
{

/** A plan, which must outlive this, and what it is called. */
struct NamedPlan {
    const Plan &plan;
    std::string name;
};

/** Writes the page of a plan: HTML with everything in it, which asks the network for nothing. */
void writePage(std::ostream &out, const Plan &plan, const std::string &title);

/** Writes a page with two plans side by side, and what differs between them; both count bandwidth
 * in the same unit. */
void writeComparison(std::ostream &out, const NamedPlan &before, const NamedPlan &after,
                     const std::string &title);

} // namespace tarnex::report

#endif
