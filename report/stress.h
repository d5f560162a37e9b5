/** A drawing of a network that has no places of its own. */
#ifndef TARNEX_REPORT_STRESS_H
#define TARNEX_REPORT_STRESS_H

#include "report/layout.h"

#include <vector>

namespace tarnex::report
{

/** Places nodes so that they are as far from each other as they are hops apart, as well as that
 * goes (Gansner, Koren and North, 2004). Time and memory grow with the square of the nodes. */
std::vector<Point> placedByStress(const Network &network);

} // namespace tarnex::report

#endif
