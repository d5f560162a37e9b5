/** Where the nodes of a network are drawn. */
#ifndef TARNEX_REPORT_LAYOUT_H
#define TARNEX_REPORT_LAYOUT_H

#include "formats/network.h"

#include <string>
#include <vector>

namespace tarnex::report
{

/** A point on the drawing, y downwards. */
struct Point {
    double x = 0.0;
    double y = 0.0;

    friend bool operator==(const Point &, const Point &) = default;
};

/** A line of the map under a network. */
struct MapLine {
    std::string kind; ///< "coast", "border" or "state"
    std::vector<Point> points;
};

/** Places of all nodes, in a box as wide as `width`, and the land around them. */
struct Layout {
    static constexpr double width = 1000.0;

    double height = 0.0;
    std::vector<Point> nodes;
    std::vector<MapLine> land; ///< none unless nodes have coordinates
};

/**
 * Lays a network out: by the coordinates of its nodes if any have them, each that has none at the
 * middle of its neighbours; else so that distances on the drawing are like those in hops (stress
 * majorization; Gansner, Koren and North, 2004). The same on every machine: only +, -, *, / and
 * square roots are used.
 */
Layout layoutOf(const Network &network);

} // namespace tarnex::report

#endif
