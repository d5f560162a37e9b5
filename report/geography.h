/** The earth under a network. */
#ifndef TARNEX_REPORT_GEOGRAPHY_H
#define TARNEX_REPORT_GEOGRAPHY_H

#include "report/layout.h"

#include <vector>

namespace tarnex::report
{

/** Coordinates on a plane, true in the middle of a network (equirectangular), y downwards. */
class Projection
{
public:
    /** For a network some of whose nodes have coordinates. */
    explicit Projection(const Network &network);

    Point operator()(const Coordinates &at) const
    {
        return {at.longitude * narrowing, -at.latitude};
    }

private:
    double narrowing; ///< of degrees of longitude, as against those of latitude
};

/** Coast lines and borders of the whole earth. */
std::vector<MapLine> landLines(const Projection &projection);

} // namespace tarnex::report

#endif
