/** What the page of a plan is drawn from. */
#ifndef TARNEX_REPORT_DATA_H
#define TARNEX_REPORT_DATA_H

#include "formats/plan.h"

#include <string>

namespace tarnex::report
{

/**
 * A plan as JSON that can stand in a page: with places for its nodes, what it reserves, its
 * figures, and what failures of lines and nodes do to it. page/plan.js reads it; the lists stand in
 * for objects, and paths for a character per hop, because there are many.
 *
 * @param title what the plan is called
 */
std::string dataOf(const Plan &plan, const std::string &title);

} // namespace tarnex::report

#endif
