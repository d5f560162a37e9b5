/** A plan as a drawing for papers. */
#ifndef TARNEX_REPORT_DRAWING_H
#define TARNEX_REPORT_DRAWING_H

#include "formats/plan.h"

#include <ostream>

namespace tarnex::report
{

/** Draws the network as SVG, its links coloured by what they reserve in their fullest class, as the
 * page does. */
void writeSvg(std::ostream &out, const Plan &plan);

/** The same as DOT, with the places of nodes in points for `neato -n2`. */
void writePlacedDot(std::ostream &out, const Plan &plan);

} // namespace tarnex::report

#endif
