/** The pieces of the Fortz-Thorup link cost (2000), by utilization. */
#ifndef TARNEX_COMMON_LINK_COST_H
#define TARNEX_COMMON_LINK_COST_H

#include <array>

/** Slope of each piece. */
inline constexpr std::array fortzSlopes{1.0, 3.0, 10.0, 70.0, 500.0, 5000.0};

/** The piece that a utilization lies on; no number takes the last. */
inline unsigned char pieceAt(double utilization)
{
    // The breakpoints are single-precision values but for 9/10.
    constexpr std::array ends{double{1.0F / 3.0F}, double{2.0F / 3.0F}, 9.0 / 10.0, 1.0,
                              double{11.0F / 10.0F}};
    unsigned char piece = 0;
    for (const double end : ends)
        piece = static_cast<unsigned char>(piece + (utilization < end ? 0 : 1));
    return piece;
}

#endif
