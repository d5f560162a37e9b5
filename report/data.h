/** What the page of a plan is drawn from. */
#ifndef TARNEX_REPORT_DATA_H
#define TARNEX_REPORT_DATA_H

#include "formats/plan.h"

#include <string>
#include <vector>

namespace tarnex::report
{

/** A list of names as JSON that can stand in a page. */
std::string textFor(const std::vector<std::string> &names);

/**
 * A plan as JSON that can stand in a page: with places for its nodes, what it reserves, its
 * figures, and what failures of lines and nodes do to it. page/plan.js reads it; the lists stand in
 * for objects, and paths for a character per hop, because there are many.
 */
std::string dataOf(const Plan &plan);

/** What happened to demands from one plan to another, as JSON that can stand in a page: for each
 * that differs a list of the change in words, the name, and its place in either plan or null. */
std::string changesOf(const Plan &before, const Plan &after);

} // namespace tarnex::report

#endif
