/** Where names stand beside their nodes. */
#ifndef TARNEX_REPORT_LABELS_H
#define TARNEX_REPORT_LABELS_H

#include "report/layout.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tarnex::report
{

/** The sizes that count for names, in units of the drawing. */
struct LabelSizes {
    double text;   ///< height of the letters
    double radius; ///< of a node
    double width;  ///< of the drawing, which names stay within
};

/**
 * The beginning of the base line of each name: to the right of its node or, where it would lie over
 * a node or a name before it in the list, to the left, above or below; nothing where all of these
 * are taken.
 */
std::vector<std::optional<Point>> placeLabels(std::span<const Point> nodes,
                                              std::span<const std::string> names,
                                              const LabelSizes &sizes);

} // namespace tarnex::report

#endif
