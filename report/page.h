/** A plan as one page that works by itself. */
#ifndef TARNEX_REPORT_PAGE_H
#define TARNEX_REPORT_PAGE_H

#include "formats/plan.h"

#include <ostream>
#include <string>

namespace tarnex::report
{

/** Writes the page of a plan: HTML with everything in it, which asks the network for nothing. */
void writePage(std::ostream &out, const Plan &plan, const std::string &title);

} // namespace tarnex::report

#endif
